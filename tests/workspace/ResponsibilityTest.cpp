#include <ostraka/workspace/FrameworkResponsibility.h>

#include <gtest/gtest.h>
#include <string>

namespace {

NUBListValNUBString listOf(std::initializer_list<const char*> texts) {
    NUBListValNUBString list;
    for (const char* text : texts) list.Append(text);
    return list;
}

std::string tableOf(const NUBListValNUBString& people, const NUBListValNUBString& lines) {
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
        EXPECT_EQ(tableOf(listOf({"x.xyz."}), listOf({line})), table) << line;
    EXPECT_EQ(
        tableOf(listOf({}), listOf({"FW: b RESP: 1", "FW: a RESP: 2", "FW: B RESP: 3", "FW: a RESP: 1"})),
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
        const NUBListValNUBString people = listOf(row.people),
                                  lines = listOf({"FW: F RESP: a.b", "", "FW: f RESP: no"});
        EXPECT_EQ(GetFWResponsible("F", people, lines), row.owner);
        const std::string entry = tableOf(people, lines);
        EXPECT_EQ(entry,
                  std::string("F ") + (row.owner == std::string(".") ? ".A.B." : row.owner) + ";f .NO.;");
    }
    // The later line counts, and its first form before the second.
    const NUBListValNUBString people = listOf({"1.A.", "2.B.", "3.C."});
    const NUBListValNUBString lines =
        listOf({"FW: F RESP: a", "FW: F RESP: b FW:F RESP:c", "FW: G RESP: a FW:F"});
    EXPECT_EQ(GetFWResponsible("F", people, lines), "2.B.");
    EXPECT_EQ(GetFWResponsible("f", people, lines), ".");
}

TEST(ResponsibilityTest, SearchesTheTable) {
    const NUBListValNUBString table = listOf({"A 1", "AB 2", "B 3 x", "Bare", "C 4"});
    const char* rows[][2] = {{"A", "1"}, {"AB", "2"}, {"B", "3"}, {"Bare", "."},
                             {"C", "4"}, {"0", "."},  {"D", "."}, {"", "."}};
    for (const auto& [framework, owner] : rows)
        EXPECT_EQ(GetFWResponsible(framework, table), owner) << framework;
    EXPECT_EQ(GetFWResponsible("A", listOf({"A 1"})), "1");
    EXPECT_EQ(GetFWResponsible("A", listOf({})), ".");
}

} // namespace
