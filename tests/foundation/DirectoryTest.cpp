#include <algorithm>
#include <filesystem>
#include <string>
#include <support/TemporaryFolder.h>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/foundation/Directory.h>

namespace {

// The paths that are found, in order and each behind a "|", without what they begin with.
template <class List>
std::string Found(const std::string& pattern, std::size_t startLength) {
    List list;
    list.Append("kept");
    ReadDirectory(NUBString(pattern.c_str()), list);
    ReadDirectory(pattern.c_str(), list);
    std::vector<std::string> paths;
    const int count = (list.Size() - 1) / 2;
    for (int i = 2; i <= count + 1; ++i) paths.emplace_back(NUBString(list[i]).CastToCharPtr());
    EXPECT_EQ(NUBString(list[1]), "kept");
    EXPECT_EQ(FileSelectionSize(pattern.c_str()), count);
    std::sort(paths.begin(), paths.end());
    std::string all;
    for (const std::string& path : paths) all.append("|").append(path, std::min(startLength, path.size()));
    return all;
}

TEST(ReadDirectory, SelectsByPattern) {
    const TemporaryFolder folder;
    for (const char* file : {"A/In/x.h", "A/In/y.h", "A/In/z.idl", "B.tst/In/x.h", ".C/In/.h", "file"})
        folder.Add(file);
    std::filesystem::create_symlink("nowhere", "A/dangling");
    std::filesystem::create_symlink("around", "A/around");
    std::filesystem::create_directory_symlink(".", "B.tst/self");
    struct Row {
        const char *pattern, *paths;
    };
    for (const Row& row :
         {Row{"*", "|.C|A|B.tst|file"}, Row{"*/In/*.h", "|.C/In/.h|A/In/x.h|A/In/y.h|B.tst/In/x.h"},
          Row{"*//In/x*", "|A/In/x.h|B.tst/In/x.h"}, Row{"*.tst/In", "|B.tst/In"},
          Row{"A/*", "|A/In|A/around|A/dangling"}, Row{"A/*/*.idl", "|A/In/z.idl"}, Row{"A/dangling", ""},
          Row{"A/around/x", ""}, Row{"file", "|file"}, Row{"file/*", ""}, Row{"A/", "|A"},
          Row{"A/../*.tst", "|A/../B.tst"}, Row{"none/*", ""}, Row{"n*/x", ""}, Row{"**", ""},
          Row{"B.tst/self/*/*/x.h", "|B.tst/self/self/In/x.h"}}) {
        const std::size_t length = folder.path.size() + 1;
        EXPECT_EQ(Found<NUBListValNUBString>(row.pattern, length), row.paths) << row.pattern;
        EXPECT_EQ(Found<NUBListValTAFileName>(row.pattern, length), row.paths) << row.pattern;
        const std::string absolute = folder.path + "/" + row.pattern;
        EXPECT_EQ(Found<NUBListValNUBString>(absolute, length), row.paths) << absolute;
        EXPECT_EQ(Found<NUBListValTAFileName>(absolute, length + 1), row.paths) << absolute;
    }
    EXPECT_EQ(GetWorkDir(), folder.path.c_str());
    EXPECT_EQ(FileExists("file"), 1);
    EXPECT_EQ(FileExists("A"), 0);
    EXPECT_EQ(FileExists("A/around"), 0);
}

TEST(ReadDirectory, JoinsTextsAndNamesInTheirOwnWays) {
    const TemporaryFolder folder;
    folder.Add("a\\b/c\xff");
    struct Row {
        const char *wanted, *pattern;
        std::string texts, names;
    };
    for (const Row& row : {Row{"root", "/", "|/", "|/"}, Row{"absolute", "/us*", "|/usr", "|//usr"},
                           Row{"start", "", "|" + folder.path + "/", "|" + folder.path},
                           Row{"backslash", "a\\*", "|" + folder.path + "/a\\b", "|" + folder.path + "/a/b"},
                           Row{"any byte", "*/*\xff", "|" + folder.path + "/a\\b/c\xff", ""}}) {
        EXPECT_EQ(Found<NUBListValNUBString>(row.pattern, 0), row.texts) << row.wanted;
        NUBListValTAFileName names;
        ReadDirectory(row.pattern, names);
        EXPECT_EQ(names.Size() ? "|" + std::string(names[1]) : "", row.names) << row.wanted;
    }
}

TEST(ReadDirectory, WorksWhereTheWorkingDirectoryHasNoUsableName) {
    const TemporaryFolder folder;
    folder.Sink();
    folder.Add("in/x");
    const std::string deepest = std::filesystem::current_path();
    EXPECT_EQ(Found<NUBListValNUBString>("i*/x", 0), "|" + deepest + "/in/x");
    EXPECT_EQ(GetWorkDir(), deepest.c_str());
    std::filesystem::remove_all("in");
    std::filesystem::remove(std::filesystem::path("../") / std::string(200, 'd'));
    EXPECT_EQ(Found<NUBListValNUBString>("*", 0), "");
    EXPECT_EQ(Found<NUBListValTAFileName>(".", 0), "|./.");
    EXPECT_EQ(GetWorkDir(), ".");

    EXPECT_EQ(SetWorkDir("none") + SetWorkDir(folder.path.c_str()), -1);
    std::string endless;
    for (int i = 0; i < 5000; ++i) endless += "./";
    EXPECT_EQ(FileSelectionSize(endless.c_str()), 0) << "longer than the system takes";
}

} // namespace
