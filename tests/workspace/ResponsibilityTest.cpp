#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include <ostraka/workspace/FrameworkResponsibility.h>

namespace {

NUBListValNUBString ListOf(std::initializer_list<const char*> texts) {
    NUBListValNUBString list;
    for (const char* text : texts) list.Append(text);
    return list;
}

std::string TableOf(const NUBListValNUBString& people, const NUBListValNUBString& lines) {
    NUBListValNUBString table;
    MakeFrameworkOwnerDico(people, lines, table);
    std::string shown;
    for (const NUBString& entry : table) shown += std::string(entry.View()) + ";";
    return shown;
}

TEST(ResponsibilityTest, ReadsLinesOfBothForms) {
    const char* rows[][2] = {{"FW: Alpha RESP: xyz", "Alpha x.xyz.;"},
                             {"  fw:  Alpha   resp: XyZ and more of it", "Alpha x.xyz.;"},
                             {"FW: Alpha RESP: q.xyz", "Alpha .Q.XYZ.;"},
                             {"FW: Alpha RESP:", ""},
                             {"FW: Alpha RESP xyz", ""},
                             {"1 2 3 4 FW:Beta RESP:abc", "Beta .ABC.;"},
                             {"1 2 3 4 fw::Beta :resp:xyz:", "Beta x.xyz.;"},
                             {"1 2 3 4 FW:Beta:x RESP:abc", ""},
                             {"1 2 3 4 FW:Beta RESP:", ""},
                             {"1 2 3 4 RESP:abc FW:Beta", ""},
                             {"1 2 3 4 5 FW:Beta RESP:abc", ""},
                             {"1 2 3 FW:Beta RESP:abc", ""},
                             {"FW: Alpha RESP: xyz FW:Beta RESP:abc", "Alpha x.xyz.;Beta .ABC.;"},
                             {"\xff\x01 \t: ::: FW: RESP:", ""}};
    for (const auto& [line, table] : rows)
        EXPECT_EQ(TableOf(ListOf({"x.xyz."}), ListOf({line})), table) << line;
    EXPECT_EQ(
        TableOf(ListOf({}), ListOf({"FW: b RESP: 1", "FW: a RESP: 2", "FW: B RESP: 3", "FW: a RESP: 1"})),
        "B .3.;a .1.;a .2.;b .1.;");
}

TEST(ResponsibilityTest, FindsTheOwner) {
    const struct {
        std::initializer_list<const char*> people;
        const char* owner; // of the code "a.b"
    } rows[] = {{{"First.A.B.", "Last.a.b.", "Other.B."}, "Last.a.b."},
                {{"Fits.A.B.", "No.A.B"}, "Fits.A.B."},
                {{"Twice.A.B..A.B."}, "."},
                {{"Overlap.A.B.A.B."}, "."},
                {{".A.B."}, ".A.B."},
                {{"A.B."}, "."},
                {{}, "."}};
    for (const auto& row : rows) {
        const NUBListValNUBString people = ListOf(row.people),
                                  lines = ListOf({"FW: F RESP: a.b", "", "FW: f RESP: no"});
        EXPECT_EQ(GetFWResponsible("F", people, lines), row.owner);
        const std::string entry = TableOf(people, lines);
        EXPECT_EQ(entry,
                  std::string("F ") + (row.owner == std::string(".") ? ".A.B." : row.owner) + ";f .NO.;");
    }
    // The later line counts, and its first form before the second.
    const NUBListValNUBString people = ListOf({"1.A.", "2.B.", "3.C."});
    const NUBListValNUBString lines =
        ListOf({"FW: F RESP: a", "FW: F RESP: b FW:F RESP:c", "FW: G RESP: a FW:F"});
    EXPECT_EQ(GetFWResponsible("F", people, lines), "2.B.");
    EXPECT_EQ(GetFWResponsible("f", people, lines), ".");
}

// Each line costs the same, however many people there are: 40,000 of both took minutes if it were otherwise.
TEST(ResponsibilityTest, ReadsLongListings) {
    NUBListValNUBString people, table;
    for (int i = 0; i < 40000; ++i) people.Append(("Some.One.C" + std::to_string(i) + ".").c_str());
    const auto begin = std::chrono::steady_clock::now();
    FrameworkOwners owners(people);
    for (int i = 0; i < 40000; ++i) {
        const std::string line = "FW: F" + std::to_string(i) + " RESP: c" + std::to_string(i);
        EXPECT_EQ(owners.AppendEntries(line.c_str(), table), 1);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(table[40000], "F39999 Some.One.C39999.");
    EXPECT_EQ(owners.AppendEntries("FW: A RESP: c1 FW:B RESP:none", table), 2);
    EXPECT_EQ(table[40002], "B .NONE.");
    EXPECT_EQ(owners.AppendEntries("nothing to see here, sir", table), 0);
}

TEST(ResponsibilityTest, SearchesTheTable) {
    const NUBListValNUBString table = ListOf({"A 1", "AB 2", "B 3 x", "Bare", "C 4"});
    const char* rows[][2] = {{"A", "1"}, {"AB", "2"}, {"B", "3"}, {"Bare", "."},
                             {"C", "4"}, {"0", "."},  {"D", "."}, {"", "."}};
    for (const auto& [framework, owner] : rows)
        EXPECT_EQ(GetFWResponsible(framework, table), owner) << framework;
    EXPECT_EQ(GetFWResponsible("A", ListOf({"A 1"})), "1");
    EXPECT_EQ(GetFWResponsible("A", ListOf({})), ".");
}

} // namespace
