#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/TAPIndexContainer.h>

namespace {

std::string TextOf(const char* text) {
    return text != nullptr ? text : "(null)";
}

TEST(CallTest, ReadsTheLine) {
    const std::string longName(1 << 20, 'n'), slashes(1 << 20, '/');
    const struct {
        std::string line, shortCall, framework;
    } rows[] = {
        {"Foo::Bar(int) [/w/FwA/Mod.m/src/a.cpp:12]", "Foo::Bar(int)", "FwA"},
        {"f \t\x01[FwA/Mod.m/src/a.cpp:1]", "f", "(null)"}, // no slash before the framework
        {"\xe9 [/w/F/x/LocalGenerated/a.cpp:1]", "\xe9", "F"},
        {"f [/LocalGenerated/F/M.m/src/d/e/f/a.cpp:1]", "f", "F"}, // the marker nearest to the end counts
        {"f [/w/F/M.m/src/LocalGenerated/a.cpp:1]", "f", "F"},     // and each starts anew
        {"f [/w//M.m/src/a.cpp:1]", "f", "(null)"},                // the framework's name is empty
        {"f [/w/.m/src/a.cpp:1]", "f", "w"},
        {"f [.m/src/a.cpp:1]", "f", "(null)"},
        {"f [/w/F/M.m/srcs/a.cpp:1]", "f", "(null)"},
        {"g [/w/F]/M.m/src/b.cpp] more]", "g", "F]"}, // no colon
        {"g [/w/F/M.m/src/b.cpp] a: b", "g", "F"},    // a colon anywhere
        {"g [/w/F/M.m/src/b.cpp", "g", "(null)"},
        {"g [libc.so]", "g", "(null)"},
        {"plain line ", "plain line ", "(null)"},
        {"  [:", "", "(null)"},
        {longName + " [" + slashes + ":1]", longName, "(null)"},
        {"f [/w/" + longName + "/M.m/src/a.cpp:1]", "f", longName}};
    TAIndexCall index;
    for (const auto& row : rows) {
        const Call call(row.line.c_str(), &index);
        const std::unique_ptr<char, void (*)(void*)> shortCall(call.GetShortCall(), std::free);
        EXPECT_TRUE(call.GetCall() == row.line && shortCall.get() == row.shortCall) << row.line.substr(0, 50);
        EXPECT_TRUE(TextOf(call.GetFwResponsible()) == row.framework) << row.line.substr(0, 50);
    }
}

TEST(CallTest, TellsItsParts) {
    const struct {
        const char *line, *function, *path;
        int number;
    } rows[] = {{"f(int) [/w/F/M.m/src/a.cpp:12:3]", "f(int)", "/w/F/M.m/src/a.cpp", 12},
                {"f [/w/F/M.m/src/a.cpp] more", "f", "/w/F/M.m/src/a.cpp", 0},
                {"f [/w/a.cpp:]", "f", "/w/a.cpp", 0},
                {"f [/w/a.cpp:x1]", "f", "/w/a.cpp", 0},
                {"f [/w/a.cpp:-1]", "f", "/w/a.cpp", 0},
                {"f [/w/a.cpp:99999999999]", "f", "/w/a.cpp", 0},
                {"f [libc.so]", "f", "", 0},
                {" f ", " f ", "", 0}};
    TAIndexCall index;
    for (const auto& row : rows) {
        const Call call(row.line, &index);
        const CallParts parts = call.GetParts();
        EXPECT_TRUE(parts.function == row.function && parts.path == row.path && parts.line == row.number)
            << row.line;
    }
}

TEST(CallTest, LeavesItsFieldsNull) {
    TAIndexCall index;
    alignas(Call) unsigned char place[sizeof(Call)];
    (new (place) Call("f [/w/F/M.m/src/a.cpp:1]", &index))->~Call();
    EXPECT_EQ(std::count(place, place + sizeof place, 0), static_cast<int>(sizeof place));
}

TEST(CallTest, SharesTextsAndSources) {
    TAIndexCall index;
    const Call first("one [/w/Shared/A.m/src/s.cpp:1]", &index),
        second("two [/w/Shared/A.m/src/s.cpp:2]", &index);
    const Call again(std::string(first.GetCall()).c_str(), &index);
    EXPECT_TRUE(again.IsEqual(&first) && !second.IsEqual(&first));
    EXPECT_TRUE(first.HasString("") && first.HasString("one [") && !first.HasString("ne"));
    EXPECT_EQ(index[again.GetCall()], &first);
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
    TAPIndexContainer::respForFwIndex.Append("Owned", "someone", 0);
    TAPIndexContainer::respForFwIndex.Append("OfAnError", nullptr, 0);
    const char* rows[][2] = {{"f [/w/Owned/A.m/src/a.cpp:1]", "someone"},
                             {"f [/w/New/A.m/src/a.cpp:1]", "."},
                             {"f [/w/OfAnError/A.m/src/a.cpp:1]", "(null)"},
                             {"f", "(null)"}};
    for (const auto& [line, responsible] : rows)
        EXPECT_EQ(TextOf(Call(line, &index).GetResponsible()), responsible);
    Call call("f", &index);
    call.SetFwResponsible("unheard of");
    EXPECT_STREQ(call.GetResponsible(), ".");
}

TEST(CallTest, KeepsTheWorkspace) {
    EXPECT_EQ(Call::wsOfRun, nullptr);
    Call::SetWsOfRun("/run");
    Call::SetWsOfRun(Call::wsOfRun + 1);
    EXPECT_STREQ(Call::wsOfRun, "run");
    Call::SetWsOfRun(nullptr);
    EXPECT_EQ(Call::wsOfRun, nullptr);
}

} // namespace
