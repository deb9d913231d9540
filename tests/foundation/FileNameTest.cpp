#include <filesystem>
#include <string>
#include <support/TemporaryFolder.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <ostraka/foundation/TAFileName.h>

namespace {

std::string TextOf(const TAFileName& name) {
    return static_cast<const char*>(name);
}

TEST(TAFileName, Components) {
    struct Row {
        const char *text, *parent, *grandparent, *last, *lastButOne, *extension;
    };
    for (const Row& row :
         {Row{"/a/b", "/a", "", "b", "/a/b", ""}, Row{"/a", "", "", "/a", "/a", ""},
          Row{"a", "", "", "a", "a", ""}, Row{"", "", "", "", "", ""}, Row{"a/", "a", "", "", "a/", ""},
          Row{"/", "", "", "/", "/", ""}, Row{"a//b.h", "a/", "a", "b.h", "", "h"},
          Row{"//a", "/", "", "a", "//a", ""}, Row{"x/y.z/w", "x/y.z", "x", "w", "y.z", "z/w"},
          Row{"w\\./a\\b.", "w/./a", "w/.", "b.", "a", ""}}) {
        const TAFileName name(row.text);
        EXPECT_EQ(TextOf(name.dirname(1)), row.parent) << row.text;
        EXPECT_EQ(TextOf(name.dirname(2)), row.grandparent) << row.text;
        EXPECT_EQ(TextOf(name.basename(1)), row.last) << row.text;
        EXPECT_EQ(TextOf(name.basename(2)), row.lastButOne) << row.text;
        EXPECT_EQ(name.GetExtension(), row.extension) << row.text;
        EXPECT_TRUE(name.dirname(-1).IsEqual(name) && name.dirname(99).IsNull());
    }
}

TEST(TAFileName, ChangesLeaveCopiesAlone) {
    struct Row {
        const char *text, *part, *joined, *added, *set;
    };
    for (const Row& row : {Row{"a", "b", "a/b", "ab", "ab"}, Row{"a/", "b", "a//b", "a/b", "a/b"},
                           Row{"", "b", "b", "b", "b"}, Row{"", "", "", "", ""},
                           Row{"a.h", "cpp", "a.h/cpp", "a.hcpp", "a.cpp"}, Row{"a.", "", "a./", "a.", "a."},
                           Row{"\xff.b/c", "\\x", "\xff.b/c//x", "\xff.b/c\\x", "\xff.\\x"}}) {
        const TAFileName name(row.text);
        TAFileName joined(name), added = name, set, back;
        added.AddExtension(row.part);
        set = name;
        set.SetExtension(row.part);
        back = added;
        back.Normalize();
        EXPECT_EQ(TextOf(joined += row.part), row.joined);
        EXPECT_EQ(TextOf(added), row.added);
        EXPECT_EQ(TextOf(set), row.set);
        EXPECT_EQ(TextOf(name), row.text);
        EXPECT_TRUE(back.IsEqual(row.added)) << "a name from this text is normalised too";
    }
}

TEST(TAFileName, SharesItsTextAndSurvivesItself) {
    TAFileName name("abc", 2), copy(name), none;
    static_assert(sizeof name == sizeof(void*));
    EXPECT_TRUE(name == copy && name != TAFileName("ab") && none == TAFileName("x", 0));
    EXPECT_EQ(TextOf(TAFileName("ab", 9)), "ab");
    name = *&name;
    EXPECT_TRUE(name == copy);
    name = static_cast<const char*>(name) + 1;
    name += name;
    EXPECT_EQ(TextOf(name), "b/b");
    EXPECT_TRUE(none.IsEqual("") && !none.IsEqual(copy) && !copy.IsEqual(none));
    NUBListValTAFileName list;
    for (const TAFileName& element : {name, copy, none}) list.Append(element);
    NUBListValTAFileName same(list);
    EXPECT_TRUE(same == list);
    same.QuickSort(TAFileName::Compare);
    EXPECT_EQ(TextOf(same[1]) + TextOf(same[2]) + TextOf(same[3]), "abb/b");
    list[1] = "b/b";
    list[2] = NUBString("\\");
    EXPECT_EQ(TextOf(list[2]), "/");
    EXPECT_TRUE(list[1] != name && list != same) << "equal text, held apart";
}

TEST(TAFileName, IsUnderItsAncestors) {
    std::string deep;
    for (int i = 0; i < 500000; ++i) deep += "/a";
    struct Row {
        std::string text, directory;
        int under;
    };
    for (const Row& row : {Row{"/a/b", "/a", 1}, Row{"/a/b", "/a/b", 1}, Row{"/a", "/", 0}, Row{"/", "/", 1},
                           Row{"/ab/c", "/a", 0}, Row{"a/b", "", 0}, Row{"", "", 0}, Row{"/a/b", "/a/", 0},
                           Row{deep, "/a", 1}, Row{deep, "/b", 0}})
        EXPECT_EQ(TAFileName(row.text.c_str()).IsUnderDirectory(row.directory.c_str()), row.under)
            << row.directory;
}

TEST(TAFileName, FullPathComesBackToTheWorkingDirectory) {
    const TemporaryFolder folder;
    folder.Add("sub/file");
    std::filesystem::create_directory_symlink("sub", "link");
    struct Row {
        const char *text, *full;
    };
    for (const Row& row :
         {Row{"", ""}, Row{"x", "/x"}, Row{"link/x", "/sub/x"}, Row{"sub/../x", "/x"}, Row{"sub/", "/sub/"},
          Row{"/x", "//x"}, Row{"none/x", "/x"}, Row{"sub/file/x", "/x"}}) {
        EXPECT_EQ(TextOf(TAFileName(row.text).GetFullPath()), folder.path + row.full) << row.text;
        EXPECT_EQ(TextOf(TAFileName::GetWorkDir()), folder.path);
    }
    EXPECT_EQ(TextOf((TAFileName(folder.path.c_str()) + "link/x").GetFullPath()), folder.path + "/sub/x");

    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    const rlimit none = {0, files.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const TAFileName full = TAFileName("link/x").GetFullPath();
    setrlimit(RLIMIT_NOFILE, &files);
    EXPECT_EQ(TextOf(full), folder.path + "/sub/x") << "without a free descriptor";
    EXPECT_EQ(TextOf(TAFileName::GetWorkDir()), folder.path);

    folder.Sink();
    const std::string deepest = std::filesystem::current_path();
    EXPECT_EQ(TextOf(TAFileName("/usr/x").GetFullPath()), "/usr/x");
    EXPECT_EQ(TextOf(TAFileName("x").GetFullPath()), deepest + "/x");

    // From a directory that has gone.
    std::filesystem::remove(std::filesystem::path("../") / std::string(200, 'd'));
    EXPECT_EQ(TextOf(TAFileName("/usr/x").GetFullPath()), "/usr/x");
    EXPECT_EQ(TextOf(TAFileName("x").GetFullPath()) + TextOf(TAFileName().GetFullPath()), "x.");
    EXPECT_EQ(TAFileName::SetWorkDir("/"), 0);
    EXPECT_EQ(TextOf(TAFileName("x").GetFullPath()), "/x");
}

TEST(TAFileName, AsksAndChangesTheFileSystem) {
    const TemporaryFolder folder;
    folder.Add("file");
    struct Row {
        TAFileName name;
        int isFile, isDirectory, created, deleted;
    };
    for (const Row& row :
         {Row{"file", 1, 0, -1, 0}, Row{"new", 0, 0, 0, -1}, Row{"", 0, 0, 1, 0}, Row{".", 0, 1, -1, -1},
          Row{"no/new", 0, 0, -1, -1}, Row{std::string(9999, 'x').c_str(), 0, 0, -1, -1}}) {
        row.name.SetAsExecutable();
        EXPECT_EQ(row.name.IsFile(), row.isFile) << row.name;
        EXPECT_EQ(row.name.IsDirectory(), row.isDirectory) << row.name;
        struct stat status = {};
        EXPECT_EQ(stat(row.name, &status) == 0 && (status.st_mode & S_IXUSR), row.isFile || row.isDirectory);
        EXPECT_EQ(row.name.CreateDirectory(), row.created) << row.name;
        EXPECT_EQ(row.name.Delete(), row.deleted) << row.name;
    }
    const std::string start = "/tmp/Ostra_" + std::to_string(getpid()) + "_";
    EXPECT_EQ(TextOf(TAFileName::GetTemporaryFileName()), start + "1");
    EXPECT_EQ(TextOf(TAFileName::GetTemporaryFileName()), start + "2");
}

} // namespace
