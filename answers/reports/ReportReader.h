#pragma once

// Readers of reports, told apart by what a report begins with. A report is fed in pieces of any size; each
// record is handed on as soon as it is complete.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ReportRecord.h"

namespace ostraka::reports {

// Why a report couldn't be read to its end, and where; lines and columns count from 1, and are 0 for a file
// that is no report.
struct ReportFault {
    int line = 1;
    int column = 1;
    std::string cause;
};

class ReportReader {
public:
    virtual ~ReportReader() = default;
    // False once the report can't be read any further; what was complete before that has been taken.
    virtual bool Feed(std::string_view piece) = 0;
    virtual void End() = 0;
    const std::optional<ReportFault>& Fault() const { return fault; }

protected:
    std::optional<ReportFault> fault;
};

enum class ReportForm {
    None,
    Valgrind,   // Valgrind's XML
    Sanitizer,  // the text of sanitizers, in whatever else a program printed
    FrameLines, // calls, one a line
};

// What a file is, by as many of its first bytes.
constexpr std::size_t formLength = 1 << 20;
struct Recognised {
    ReportForm form;
    std::string cause; // of none: what it is instead
};
Recognised Recognise(std::string_view beginning);

// A reader for a form that isn't `None`. It hands its records to `taker`, which has to outlive it.
//
// A sanitizer's text without any report in it ends in a fault. An access or a lock that has to do with
// several stacks, as a data race has, is one record with all of them.
//
// Frame lines: each line is a call, a line of blanks ends a stack. Before a stack may stand a line with its
// type in three capitals and, if it is known, how often it happened and how many bytes it lost: "MLK 3 120".
std::unique_ptr<ReportReader> MakeReader(ReportForm form, RecordTaker& taker);

} // namespace ostraka::reports
