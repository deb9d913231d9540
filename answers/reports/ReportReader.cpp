#include "ReportReader.h"

#include "LineReader.h"

namespace ostraka::reports {

bool LineReader::Feed(std::string_view piece) {
    std::size_t end = piece.find('\n');
    for (; end != std::string_view::npos; end = piece.find('\n')) {
        if (unfinished.empty()) {
            Cut(piece.substr(0, end));
        } else {
            unfinished += piece.substr(0, end);
            Cut(unfinished);
            unfinished.clear();
        }
        if (fault) return false;
        piece.remove_prefix(end + 1);
    }
    unfinished += piece;
    return true;
}

void LineReader::End() {
    if (!unfinished.empty()) Cut(unfinished);
    unfinished.clear();
    TakeEnd();
}

void LineReader::Cut(std::string_view line) {
    ++lineNumber;
    if (line.ends_with('\r')) line.remove_suffix(1);
    TakeLine(line);
}

std::unique_ptr<ReportReader> MakeReader(ReportForm form, RecordTaker& taker) {
    switch (form) {
    case ReportForm::Valgrind: return MakeValgrindReader(taker);
    case ReportForm::Sanitizer: return MakeSanitizerReader(taker);
    default: return MakeFrameLineReader(taker);
    }
}

} // namespace ostraka::reports
