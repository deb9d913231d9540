#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/TAPIndexContainer.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

std::string TextOf(const char* text) {
    return text != nullptr ? text : "(null)";
}

std::string ShortOf(const Call& call) {
    const std::unique_ptr<char, void (*)(void*)> text(call.GetShortCall(), std::free);
    return text.get();
}

TEST(CallTest, ReadsTheLine) {
    const struct {
        const char* line;
        const char* shortCall;
        const char* framework;
    } rows[] = {
        {"Foo::Bar(int) [/w/FwA/Mod.m/src/a.cpp:12]", "Foo::Bar(int)", "FwA"},
        {"f \t\x01[FwA/Mod.m/src/a.cpp:1]", "f", "(null)"}, // no slash before the framework
        {"\xe9 [/w/F/x/LocalGenerated/a.cpp:1]", "\xe9", "F"},
        {"f [/LocalGenerated/F/M.m/src/a.cpp:1]", "f", "F"},
        {"f [/w/F/M.m/src/d/e/f/a.cpp:1]", "f", "F"},
        {"f [/w/F/M.m/src/x/y/LocalGenerated/a.cpp:1]", "f", "x"}, // the marker nearest to the end counts
        {"f [/w/F/M.m/src/LocalGenerated/a.cpp:1]", "f", "F"},     // each marker starts anew
        {"f [/w//M.m/src/a.cpp:1]", "f", "(null)"},                // the framework's name is empty
        {"f [/w/.m/src/a.cpp:1]", "f", "w"},
        {"f [.m/src/a.cpp:1]", "f", "(null)"},
        {"f [/w/F/M.m/srcs/a.cpp:1]", "f", "(null)"},
        {"f [/usr/lib/a.c:7]", "f", "(null)"},
        {"g [/w/F]/M.m/src/b.cpp] more]", "g", "F]"}, // no colon
        {"g [/w/F/M.m/src/b.cpp] a: b", "g", "F"},    // a colon anywhere
        {"g [/w/F/M.m/src/b.cpp", "g", "(null)"},
        {"g [libc.so]", "g", "(null)"},
        {"plain line ", "plain line ", "(null)"},
        {"  [:", "", "(null)"},
        {"", "", "(null)"},
    };
    TAIndexCall index;
    for (const auto& row : rows) {
        const Call call(row.line, &index);
        EXPECT_STREQ(call.GetCall(), row.line);
        EXPECT_EQ(ShortOf(call), row.shortCall) << row.line;
        EXPECT_EQ(TextOf(call.GetFwResponsible()), row.framework) << row.line;
    }
}

TEST(CallTest, SharesTextsAndSources) {
    TAIndexCall index;
    const Call first("one [/w/Shared/A.m/src/s.cpp:1]", &index),
        second("two [/w/Shared/A.m/src/s.cpp:2]", &index);
    const Call again(std::string(first.GetCall()).c_str(), &index);
    EXPECT_TRUE(again.IsEqual(&first) && !second.IsEqual(&first));
    EXPECT_EQ(again.GetCall(), first.GetCall());
    EXPECT_EQ(index["one [/w/Shared/A.m/src/s.cpp:1]"], &first);
    EXPECT_EQ(first.GetFwResponsible(), second.GetFwResponsible());

    // A source keeps what was found for it, nothing included.
    TAIndex& sources = TAPIndexContainer::fwForSourceIndex;
    sources.Append("/w/Other/A.m/src/known.cpp", nullptr, 0);
    EXPECT_EQ(Call("x [/w/Other/A.m/src/known.cpp:1]", &index).GetFwResponsible(), nullptr);
    const int before = sources.size;
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Call("x [/plain.c:1]", &index).GetFwResponsible(), nullptr);
    EXPECT_EQ(sources.size, before + 1);
}

TEST(CallTest, NamesTheResponsible) {
    TAIndexCall index;
    TAIndex& frameworks = TAPIndexContainer::respForFwIndex;
    frameworks.Append("Owned", "someone", 0);
    frameworks.Append("OfAnError", nullptr, 0);
    const struct {
        const char* line;
        const char* responsible;
    } rows[] = {{"f [/w/Owned/A.m/src/a.cpp:1]", "someone"},
                {"f [/w/New/A.m/src/a.cpp:1]", "."},
                {"f [/w/OfAnError/A.m/src/a.cpp:1]", "(null)"},
                {"f", "(null)"}};
    for (const auto& row : rows) EXPECT_EQ(TextOf(Call(row.line, &index).GetResponsible()), row.responsible);
    Call call("f", &index);
    call.SetFwResponsible("unheard of");
    EXPECT_STREQ(call.GetResponsible(), ".");
    EXPECT_TRUE(call.HasString("") && call.HasString("f") && !call.HasString("ff"));
}

TEST(CallTest, KeepsTheWorkspace) {
    EXPECT_EQ(Call::wsOfRun, nullptr);
    Call::SetWsOfRun("/run");
    Call::SetWsOfRun(Call::wsOfRun + 1);
    EXPECT_STREQ(Call::wsOfRun, "run");
    Call::SetWsOfRun(nullptr);
    EXPECT_EQ(Call::wsOfRun, nullptr);
}

TEST(CallTest, TakesLinesOfAnyLength) {
    TAIndexCall index;
    const std::string long1(1 << 20, '/'), long2(1 << 20, 'n');
    const std::string lines[] = {long2 + " [" + long1 + ":1]", "f [/w/" + long2 + "/M.m/src/a.cpp:1]",
                                 long1 + long2};
    const std::string frameworks[] = {"(null)", long2, "(null)"};
    for (int i = 0; i < 3; ++i) {
        const Call call(lines[i].c_str(), &index);
        EXPECT_EQ(call.GetCall(), lines[i]);
        EXPECT_TRUE(TextOf(call.GetFwResponsible()) == frameworks[i]);
    }
}

} // namespace
