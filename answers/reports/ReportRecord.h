#pragma once

// One error or leak as a report tells it, and what takes such records. A reader fills one record over and
// over, so a record and its texts are good only while it is being taken; what a reader keeps doesn't grow
// with the report.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostraka::reports {

// The texts of the calls of a stack, from the innermost on, in the form that the library reads:
// "function [path:line]". In a call text "[" opens the source and nothing else; one that belongs to the
// function, as in "operator new[]", is written as another byte until it is shown. So is the folder that a
// relative path starts from, since a framework stands between two slashes: "Fw/M.m/src/a.cpp" has one, too.
class CallTexts {
public:
    static constexpr int most = 20; // calls of a stack

    void Clear();

    // A call with its source, or with its object file and no line, or with neither.
    void Add(std::string_view function, std::string_view path, std::string_view line);

    // A call as somebody wrote it, and one in the form of the library.
    void AddLine(std::string_view line);
    void AddText(std::string_view callText);

    int Kept() const { return told < most ? told : most; }
    int Told() const { return told; }
    const char* operator[](int i) const { return texts[static_cast<std::size_t>(i)].c_str(); }

private:
    // The text to fill for the next call, or null when it is past the most.
    std::string* Next();

    std::array<std::string, most> texts;
    int told = 0;
};

// A call text as a person writes it, in the form of the library, and back. The source of a call begins at the
// bracket that the last character closes, or at one that is never closed, if a blank stands before it or what
// it holds looks like a place. A mask is made of such texts, and shown like one.
std::string CallText(std::string_view written);
std::string MaskText(std::string_view written);
std::string ShownCall(std::string_view callText);
// The path of a call text, as the report wrote it.
std::string_view ShownSource(std::string_view path);
// Below, at or above 0 as the first comes before, with or after the second; relative paths as they were
// written.
int CompareCallTexts(const char* a, const char* b);

constexpr std::uint64_t noNumber = ~std::uint64_t{0};

// A stack of a record with several, and what the report calls it.
struct TitledCalls {
    std::string title;
    CallTexts calls;
};

struct ReportRecord {
    std::string type; // a three-letter code, or the kind where no code says it
    std::string kind; // the report's own word
    bool leak = false;
    std::int64_t bytes = 0;          // of a leak
    std::int64_t count = 1;          // blocks of a leak, else how often it happened
    std::uint64_t unique = noNumber; // under which the report may count it again
    int line = 0;                    // where in the report it begins, from 1
    CallTexts calls;
    std::string title;               // of these calls, where there are others
    std::vector<TitledCalls> others; // that took part, at most `mostOthers`
    bool othersLeftOut = false;

    static constexpr std::size_t mostOthers = 40;

    void Clear();
    // A further stack to fill, or null when there are as many as can be.
    CallTexts* AddStack(std::string_view theTitle);
    // More calls or stacks than are kept.
    bool IsTooDeep() const;
};

class RecordTaker {
public:
    virtual ~RecordTaker() = default;
    virtual void Take(const ReportRecord& record) = 0;
    // An error that this report has told before happened `count` times in all.
    virtual void Recount(std::uint64_t unique, std::int64_t count) = 0;
};

} // namespace ostraka::reports
