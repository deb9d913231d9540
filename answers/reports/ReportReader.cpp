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

ReportForm TellForm(std::string_view beginning) {
    const std::size_t first = beginning.find_first_not_of("\xef\xbb\xbf \t\r\n");
    const std::string_view text = first == std::string_view::npos ? "" : beginning.substr(first);
    if (text.starts_with("<?xml") || text.starts_with("<valgrindoutput")) return ReportForm::Valgrind;
    for (const std::string_view sign : {"Sanitizer: ", "Direct leak of ", "Indirect leak of "})
        if (text.find(sign) != std::string_view::npos) return ReportForm::Sanitizer;
    return ReportForm::FrameLines;
}

std::unique_ptr<ReportReader> MakeReader(ReportForm form, RecordTaker& taker) {
    if (form == ReportForm::Valgrind) return MakeValgrindReader(taker);
    return form == ReportForm::Sanitizer ? MakeSanitizerReader(taker) : MakeFrameLineReader(taker);
}

} // namespace ostraka::reports
