#include <chrono>

#include <gtest/gtest.h>

#include "support/GrowingQuestions.h"
#include "support/LoadedText.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int size = 2'000;
#else
constexpr int size = 16'000;
#endif

// Generous: what costs as much as there is text for each line takes longer.
constexpr std::chrono::duration<double> enough{2};

TEST(LinearQuestions, CostNoMoreInLongTexts) {
    for (const texts::GrowingQuestions& shape : texts::growingQuestions) {
        const std::string text = texts::TextOf(shape, size);
        const auto start = std::chrono::steady_clock::now();
        const LoadedText loaded(text);
        ASSERT_NE(loaded.root, nullptr) << shape.name;
        texts::AskAllWords(shape, *loaded.table, *loaded.root);
        EXPECT_LT(std::chrono::steady_clock::now() - start, enough) << shape.name;
    }
}

} // namespace
