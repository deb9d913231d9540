#include <string>

#include <gtest/gtest.h>

#include <answers/resolve/NodeSearch.h>
#include <answers/resolve/NodeText.h>

#include "support/MarkedText.h"
#include "support/Source.h"

namespace {

using namespace ostraka::answers;

std::string LineOf(TAPSyntaxe& root, Place asked) {
    const auto at = FindNodeAt(root, asked);
    if (!at) return "nothing";
    std::string line = DescriptionOf(*at->node) + " " + std::string(TrimmedTextOf(*at->node));
    if (at->isNearest)
        line += " near " + std::to_string(at->place.line) + ":" + std::to_string(at->place.column);
    return line;
}

TEST(NodeSearch, FindsTheInnermostNode) {
    struct {
        const char* text;
        const char* lines;
    } const rows[] = {
        {"int ^depth = ^f(^a1^, 2)^;", "TAPIdentifiant depth\n"
                                       "TAPIdentifiant f\n"
                                       "TAPIdentifiant a1\n"
                                       "TAPListOfArgs a1,2\n"
                                       "TAPInstruction plain int depth = f(a1,2)"},
        {"void Go() ^{ use^(a1); ^} int ^b1;", "TAPBloc use(a1);\n"
                                               "TAPExpression \"mt\" use(a1)\n"
                                               "TAPBloc use(a1);\n"
                                               "TAPIdentifiant b1"},
        {"class Ship ^{\n  // ^here\n  int d1;^ // ^there\n};^\n",
         "TAPBloc int d1;\n"
         "TAPIdentifiant int near 3:3\n"
         "TAPInstruction plain int d1 near 3:9\n"
         "TAPInstruction plain int d1 near 3:9\n"
         "TAPSyntaxe file class Ship { int d1;}; near 4:2"},
        {"^\n^#define A\n   ^int a1;\n\n^\nint b1^;^\n^", "TAPIdentifiant int near 3:4\n"
                                                          "TAPIdentifiant int near 3:4\n"
                                                          "TAPIdentifiant int\n"
                                                          "TAPIdentifiant int near 6:1\n"
                                                          "TAPInstruction plain int b1\n"
                                                          "TAPInstruction plain int b1 near 6:7\n"
                                                          "nothing"},
        {"a1 ^+= ^b1->^c1[^0];", "TAPExpression \"+=\" a1 += b1->c1[0]\n"
                                 "TAPIdentifiant b1\n"
                                 "TAPIdentifiant c1\n"
                                 "TAPIdentifiant 0"},
        {"int a1;  ^int b1;", "TAPIdentifiant int"},
        {"int a1;^\n^", "TAPInstruction plain int a1 near 1:7\n"
                        "nothing"},
        {"^", "nothing"},
    };
    for (const auto& row : rows) {
        const MarkedText marked(row.text);
        Source source(marked.text);
        TAPSyntaxe* root = source.Build();
        std::string lines;
        for (const Place& place : marked.places) lines += (lines.empty() ? "" : "\n") + LineOf(*root, place);
        EXPECT_EQ(lines, row.lines) << row.text;
    }
}

TEST(NodeSearch, WithoutAColumnTheFirstCodeOfTheLine) {
    Source source("\n  int a1; int b1;\n\n/* x */ int c1;\n// y\n");
    TAPSyntaxe* root = source.Build();
    const char* const lines[] = {"TAPIdentifiant int near 2:3",
                                 "TAPIdentifiant int",
                                 "TAPIdentifiant int near 4:9",
                                 "TAPIdentifiant int",
                                 "nothing",
                                 "nothing"};
    for (int line = 1; line <= 6; ++line) EXPECT_EQ(LineOf(*root, {line, 0}), lines[line - 1]) << line;
}

TEST(NodeSearch, ReadsPlaces) {
    struct {
        const char* words;
        const char* place; // file, line, column
    } const rows[] = {
        {"a.cpp:3:14", "a.cpp 3 14"},
        {"a.cpp:3", "a.cpp 3 0"},
        {"a:1:2:3", "a:1 2 3"},
        {"-:7", "- 7 0"},
        {"a.cpp", "none"},
        {"a.cpp:", "none"},
        {"a.cpp:x", "none"},
        {"a.cpp:3x", "none"},
        {"a.cpp:0", "none"},
        {"a.cpp:-1", "none"},
        {":3", "none"},
        {":3:4", ":3 4 0"},
        {"a.cpp:1:0", "none"},
        {"a.cpp:99999999999", "none"},
        {"a.cpp:0:5", "a.cpp:0 5 0"},
        {"", "none"},
    };
    for (const auto& row : rows) {
        const auto place = ParseFilePlace(row.words);
        EXPECT_EQ(place ? place->file + " " + std::to_string(place->place.line) + " " +
                              std::to_string(place->place.column)
                        : "none",
                  row.place)
            << row.words;
    }
}

} // namespace
