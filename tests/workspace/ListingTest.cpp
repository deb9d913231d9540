#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/foundation/Directory.h>
#include <ostraka/workspace/FrameworkListing.h>

#include "support/TemporaryFolder.h"

namespace {

std::string Shown(const NUBListValNUBString& list) {
    std::string text;
    for (const NUBString& element : list) text += std::string(element.View()) + " ";
    return text;
}

std::string Sorted(NUBListValNUBString list) {
    list.QuickSort(+[](NUBString* a, NUBString* b) { return a->Compare(*b); });
    return Shown(list);
}

TEST(ListingTest, ListsFrameworks) {
    const TemporaryFolder folder;
    for (const char* card : {"w/A/IdentityCard", "w/B.tst/IdentityCard", "w/C.x/IdentityCard/file",
                             "w/D/other", "w/IdentityCard", "none/IdentityCard"})
        folder.Add(card);
    const struct {
        int (*list)(const NUBString&, NUBListValNUBString&, int);
        const char* workspace;
        int mode, result;
        const char* names;
    } rows[] = {{GetFWCodeList, "w", 0, 0, "A B.tst C.x "}, {GetFWCodeList, "w", 1, 0, "A "},
                {GetFWTestList, "w", 0, 0, "A B.tst C.x "}, {GetFWTestList, "w", 2, 0, "B.tst "},
                {GetFWCodeList, "none", 0, 1, ""},          {GetFWTestList, "none", 1, 1, ""}};
    for (const auto& row : rows) {
        NUBListValNUBString names;
        EXPECT_EQ(row.list(folder.path.c_str() + NUBString("/") + row.workspace, names, row.mode),
                  row.result);
        EXPECT_EQ(Sorted(names), row.names);
    }
    NUBListValTAFileName cards;
    NUBListValNUBString names;
    ReadDirectory("w/*/IdentityCard", cards);
    names.Append("kept");
    GetFWCodeList("w", names, 0);
    ASSERT_EQ(names.Size(), cards.Size() + 1);
    EXPECT_EQ(names[1], "kept");
    EXPECT_EQ(names[2], NUBString(cards[cards.Size()].dirname(1).basename(1)));
}

TEST(ListingTest, FindsTheCodeFramework) {
    const TemporaryFolder folder;
    folder.Add("w/A/x");
    const struct {
        const char* name;
        int query, result;
        const char* found;
    } rows[] = {{"A.tst", 1, 0, "A "}, {"B.tst", 1, 0, ""},   {"A", 1, 1, ""},           {"A.x", 1, 1, ""},
                {"", 1, 1, ""},        {"A.x", 0, 0, "A.x "}, {"A.tst.more", 1, 0, "A "}};
    for (const auto& row : rows) {
        NUBListValNUBString found;
        EXPECT_EQ(GetCodeFW("w", row.name, found, row.query), row.result) << row.name;
        EXPECT_EQ(Shown(found), row.found) << row.name;
    }
}

// A shell script in the PATH stands for the command, and prints its arguments one a line.
TEST(ListingTest, AsksTheCommand) {
    const TemporaryFolder folder;
    const std::string path = std::getenv("PATH");
    setenv("PATH", (folder.path + ":" + path).c_str(), 1);
    const std::string longLine(5000, 'x');
    const struct {
        std::string script;
        const char* framework;
        std::string answer;
    } rows[] = {
        {"echo A.tst; echo B.tst; exit 3", "A", "A.tst B.tst "},
        {"echo A.tst; echo B.tst", "D", "A.tst B.tst D.tst "},
        {"echo '# no'; echo; echo '   '; echo '  B.tst '; echo ' #no'; printf A.tst", "A", "B.tst  A.tst "},
        {"echo " + longLine, "A", longLine + " A.tst "},
        {"echo \"$@\"", "a.b", "-w the/ws -f a.b a.b.tst "},
        {"for i in \"$@\"; do echo \"$i\"; done", "$(echo x >made);'\"`\\&|*",
         "-w the/ws -f $(echo x >made);'\"`\\&|* $(echo x >made);'\"`\\&|*.tst "},
    };
    for (const auto& row : rows) {
        std::ofstream("ls_test_fw") << "#!/bin/sh\n" << row.script << "\n";
        TAFileName("ls_test_fw").SetAsExecutable();
        NUBListValNUBString found;
        EXPECT_EQ(GetTestFW("the/ws", row.framework, found, 1), 0);
        EXPECT_EQ(Shown(found), row.answer);
    }
    EXPECT_FALSE(FileExists("made"));
    TAFileName("ls_test_fw").Delete();
    NUBListValNUBString found;
    testing::internal::CaptureStderr();
    GetTestFW("w", "A", found, 1);
    GetTestFW("w", "A", found, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(Shown(found), "A.tst A ");
    setenv("PATH", path.c_str(), 1);
}

} // namespace
