#include <algorithm>
#include <charconv>

#include "LineReader.h"

namespace ostraka::reports {

namespace {

constexpr std::size_t codeLength = 3;

// Takes the number and what stands before it off the front of the text.
bool TakeNumber(std::string_view& text, std::int64_t& number) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || number < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    return text.empty() || text.front() == ' ';
}

class FrameLineReader : public LineReader {
public:
    explicit FrameLineReader(RecordTaker& theTaker) : taker(theTaker) {}

private:
    void TakeLine(std::string_view line) override {
        if (IsValgrindText(line)) {
            fault = {LineNumber(), 1, valgrindTextCause};
            return;
        }
        if (line.find_first_not_of(" \t") == std::string_view::npos) return TakeEnd();
        if (!open) {
            record.Clear();
            record.line = LineNumber();
            record.type = record.kind = "?";
            open = true;
            if (TakeHead(line)) return;
        }
        record.calls.AddLine(line);
    }

    void TakeEnd() override {
        if (open) taker.Take(record);
        open = false;
    }

    bool TakeHead(std::string_view line) {
        const auto head = ReadFrameHead(line);
        if (!head) return false;
        record.type = record.kind = head->type;
        record.leak = head->type.ends_with("LK");
        record.count = head->count;
        record.bytes = head->bytes;
        return true;
    }

    RecordTaker& taker;
    ReportRecord record;
    bool open = false;
};

} // namespace

std::optional<FrameHead> ReadFrameHead(std::string_view line) {
    FrameHead head{line.substr(0, codeLength)};
    std::string_view rest = line.substr(head.type.size());
    const bool isCode =
        std::all_of(head.type.begin(), head.type.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
    if (head.type.size() < codeLength || !isCode) return std::nullopt;
    if (!rest.empty() && (rest.front() != ' ' || !TakeNumber(rest, head.count))) return std::nullopt;
    if (!rest.empty() && (!TakeNumber(rest, head.bytes) || !rest.empty())) return std::nullopt;
    return head;
}

bool IsValgrindText(std::string_view line) {
    const std::size_t past = line.find_first_not_of("0123456789", 2);
    return line.starts_with("==") && past > 2 && past != std::string_view::npos &&
           line.substr(past).starts_with("== ");
}

std::unique_ptr<ReportReader> MakeFrameLineReader(RecordTaker& taker) {
    return std::make_unique<FrameLineReader>(taker);
}

} // namespace ostraka::reports
