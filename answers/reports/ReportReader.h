#pragma once

// Readers of reports, told apart by what a report begins with. A report is fed in pieces of any size; each
// record is handed on as soon as it is complete.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ReportRecord.h"

namespace ostraka::reports {

// Why a report couldn't be read to its end, and where; lines and columns count from 1.
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
    Valgrind,   // Valgrind's XML
    Sanitizer,  // the text of the address and leak sanitizers, in whatever else a program printed
    FrameLines, // calls, one a line
};

// Bytes of a report that tell its form.
constexpr std::size_t formLength = 1 << 20;
ReportForm TellForm(std::string_view beginning);

// The reader hands its records to `taker`, which has to outlive it.
//
// Frame lines: each line is a call, a line of blanks ends a stack. Before a stack may stand a line with its
// type in three capitals and, if it is known, how often it happened and how many bytes it lost: "MLK 3 120".
std::unique_ptr<ReportReader> MakeReader(ReportForm form, RecordTaker& taker);

} // namespace ostraka::reports
