#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "support/TreeProperties.h"

namespace {

// What once went wrong, and whatever else nobody would write.
TEST(Garbage, KeepsTheProperties) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(OSTRAKA_TEST_DATA "/garbage")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        EXPECT_EQ(TreeProperties(text).Fault(), "") << entry.path();
        ++files;
    }
    EXPECT_GT(files, 0);
}

} // namespace
