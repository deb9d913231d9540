#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "support/HostileTexts.h"
#include "support/Source.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int part = 10; // of the full size
#else
constexpr int part = 1;
#endif

using Seconds = std::chrono::duration<double>;

// Generous: a cost that grows with the square of the size needs minutes.
constexpr Seconds enough{5};

TEST(LinearCost, HostileTextsAreAnswered) {
    for (const texts::Hostile& hostile : texts::hostiles) {
        const std::string text = texts::TextOf(hostile, part);
        const auto start = std::chrono::steady_clock::now();
        Source source(text);
        source.Build();
        EXPECT_EQ(source.buildResult, hostile.result) << hostile.name;
        const std::string message = TAPSyntaxe::ErrMsg.CastToCharPtr();
        EXPECT_EQ(message.substr(0, std::strlen(hostile.message)), hostile.message) << hostile.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, enough) << hostile.name;
    }
}

TEST(LinearCost, ShapesGiveTheirTrees) {
    for (const texts::Shape& shape : texts::shapes) {
        const auto start = std::chrono::steady_clock::now();
        Source source(texts::TextOf(shape, 1'000'000 / part));
        source.Build();
        // The rows of the table are one expression, a comma deep in the other.
        EXPECT_EQ(source.buildResult, std::string_view(shape.name) == "table of numbers" ? 1 : 0)
            << shape.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, enough) << shape.name;
    }
}

TEST(LinearCost, RandomBytesAreAnswered) {
    Source source(texts::RandomBytes(1'000'000 / part));
    source.Build();
    EXPECT_TRUE(source.buildResult == 0 || TAPSyntaxe::ErrMsg.Length() > 0);
}

} // namespace
