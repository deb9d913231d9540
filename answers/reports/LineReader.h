#pragma once

// The part that readers of text share: cuts what is fed into lines, whatever ends them. Keeps one unfinished
// line.

#include "ReportReader.h"

namespace ostraka::reports {

class LineReader : public ReportReader {
public:
    bool Feed(std::string_view piece) final;
    void End() final;

protected:
    virtual void TakeLine(std::string_view line) = 0;
    virtual void TakeEnd() = 0;
    int LineNumber() const { return lineNumber; }

private:
    void Cut(std::string_view line);

    std::string unfinished;
    int lineNumber = 0;
};

// "MLK 3 120": the line before a stack of plain calls.
struct FrameHead {
    std::string_view type;
    std::int64_t count = 1;
    std::int64_t bytes = 0;
};
std::optional<FrameHead> ReadFrameHead(std::string_view line);

// "==123== Memcheck, a memory error detector"
bool IsValgrindText(std::string_view line);
constexpr const char* valgrindTextCause = "is the text of Valgrind, which has to run with --xml=yes";

// Whether a report of a sanitizer begins with this line.
bool IsSanitizerHead(std::string_view line);

std::unique_ptr<ReportReader> MakeValgrindReader(RecordTaker& taker);
std::unique_ptr<ReportReader> MakeSanitizerReader(RecordTaker& taker);
std::unique_ptr<ReportReader> MakeFrameLineReader(RecordTaker& taker);

} // namespace ostraka::reports
