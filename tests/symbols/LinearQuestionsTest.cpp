#include <chrono>

#include <gtest/gtest.h>

#include "support/GrowingQuestions.h"
#include "support/LoadedText.h"
#include "support/MissingIncludes.h"
#include "support/Workspace.h"

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

// Asking the system for each header in each place makes the ratio 8. One quiet moment is enough.
TEST(LinearQuestions, AskTheSystemForFoldersNotForHeaders) {
    const Workspace files;
    const std::vector<std::string> with = texts::WriteSources(files("with"), 200, 60);
    const std::vector<std::string> without = texts::WriteSources(files("without"), 200, 0);
    double ratio = 0;
    for (int attempt = 0; attempt == 0 || (attempt < 10 && ratio > 4); ++attempt)
        ratio = texts::SecondsToLoad(with) / texts::SecondsToLoad(without);
    EXPECT_LE(ratio, 4);
}

} // namespace
