#include <string>

#include <gtest/gtest.h>

#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/Error.h>
#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/TAPIndexContainer.h>

using Container = TAPIndexContainer;

namespace {

// A client's own static that uses the library at both ends of its life.
struct EarlyClient {
    EarlyClient() { Container::odtIndex.Append("early", nullptr, 0); }
    ~EarlyClient() { Container::odtIndex.Append("late", nullptr, 0); }
} earlyClient;

TEST(IndexesTest, ServeTheStaticsOfAClient) {
    EXPECT_GE(Container::odtIndex.IsIn("early"), 0);
}

TEST(IndexesTest, ListTheCodes) {
    std::string codes;
    for (char** types : {Container::ErrorTypes, Container::LeakTypes})
        for (; *types != nullptr; ++types) codes += std::string(*types) + " ";
    EXPECT_EQ(codes,
              "ABR ABW BRK BSR BSW COR FMM FMR FMW FNH FUM IPR IPW MRE MSE NPR NPW PAR SBR SBW SOF UMC UMR "
              "ZPR ZPW MLK PLK ");
    EXPECT_EQ(Container::ErrorShortStackIndex.sizeofkey, 20);
}

TEST(IndexesTest, ListsGrow) {
    Container::InitStatic();
    EXPECT_EQ(Container::ErrorListMaxSize, 100000);
    EXPECT_EQ(Container::LeaksListMaxSize, 100000);
    Error* const mark = reinterpret_cast<Error*>(&Container::incSize);
    Container::ErrorList[100000] = mark;
    const struct {
        int size, maxSize, incSize;
    } rows[] = {{100000, 200000, 100000}, {900000, 300000, 100000}, {900001, 800000, 500000}};
    for (auto row : rows) {
        Container::IncreaseListMaxSize(Container::ErrorList, row.size, Container::ErrorListMaxSize);
        EXPECT_EQ(Container::ErrorListMaxSize, row.maxSize);
        EXPECT_EQ(Container::incSize, row.incSize);
        EXPECT_EQ(Container::ErrorList[row.maxSize], nullptr);
    }
    EXPECT_EQ(Container::ErrorList[100000], mark);
}

TEST(IndexesTest, FiltersStandInReverse) {
    NUBListValNUBString entries;
    for (const char* entry :
         {"LEAK@@@a!@", "no separator", "a@@@b@@@c", "@@@only", "KNOWN@@@@!b", "X@@@@@@@@!c"})
        entries.Append(entry);
    Container::SetErrorCallStackFilter(entries);
    Container::SetErrorCallStackFilter(entries);
    Container::SetLeaksCallStackFilter(entries);
    std::string shown;
    for (int i = 1; i <= Container::ErrorCallStackFilter.size; ++i) {
        const StackMask& mask = *Container::ErrorCallStackFilter[i];
        shown += std::string(mask.GetType()) + "=" + mask.GetStackMask() + " ";
    }
    const std::string once = "X=@@!c KNOWN=@!b LEAK=a!@ ";
    EXPECT_EQ(shown, once + once);
    EXPECT_EQ(Container::LeaksCallStackFilter.size, 3);
}

TEST(IndexesTest, ResponsiblesComeFromTheListing) {
    NUBListValNUBString people, lines;
    people.Append("Some.One.XYZ.");
    people.Append("Two Words.TWO.");
    for (const char* line :
         {"FW: Alpha RESP: xyz", "FW: Late RESP: xyz", "FW: Gone RESP: nix", "FW: Pair RESP: two"})
        lines.Append(line);
    const Call early("f [/w/Late/A.m/src/early.cpp:1]", &Container::LongCallIndex);
    Container::SetRespForFwIndex(people, lines);
    const char* rows[][2] = {{"Alpha", "Some.One.XYZ."}, {"Late", "."}, {"Gone", ".NIX."}, {"Pair", "."}};
    for (const auto& [framework, responsible] : rows) {
        const std::string line = std::string("f [/w/") + framework + "/A.m/src/a.cpp:1]";
        EXPECT_STREQ(Call(line.c_str(), &Container::LongCallIndex).GetResponsible(), responsible);
    }
    const int held = Container::responsibleIndex.IsIn("Some.One.XYZ.");
    EXPECT_EQ(Container::respForFwIndex["Alpha"], Container::responsibleIndex.keys[held]);
}

TEST(IndexesTest, ErrorsHoldTheirTexts) {
    Call call("f", &Container::LongCallIndex);
    Call* calls[] = {&call};
    TAIndexBStack index(20);
    Stack longStack("", calls, 1, &index, nullptr, nullptr, nullptr, 0), medium = longStack;
    const Error first("odt", "Fw", "UMR", &longStack, 3),
        second("odt", "Fw2", std::string("UMR").c_str(), &longStack, 0);
    EXPECT_TRUE(first.GetType() == second.GetType() && first.GetOdt() == second.GetOdt());
    EXPECT_STREQ(first.GetFw(), "Fw");
    EXPECT_EQ(Container::respForFwIndex["Fw"], nullptr);
    EXPECT_EQ(first.GetMediumStack(), nullptr);
    longStack.SetMetaStack(&medium);
    EXPECT_EQ(first.GetMediumStack(), &medium);
}

} // namespace
