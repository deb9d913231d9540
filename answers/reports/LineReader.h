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

std::unique_ptr<ReportReader> MakeValgrindReader(RecordTaker& taker);
std::unique_ptr<ReportReader> MakeSanitizerReader(RecordTaker& taker);
std::unique_ptr<ReportReader> MakeFrameLineReader(RecordTaker& taker);

} // namespace ostraka::reports
