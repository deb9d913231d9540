// A record begins with a head, goes on with lines about the access, and ends with its first stack: further
// stacks tell where memory came from. Everything else in the text belongs to the program that ran or to the
// sanitizer's own explanations.

#include <algorithm>
#include <charconv>

#include "LineReader.h"
#include "ReportTypes.h"

namespace ostraka::reports {

namespace {

constexpr std::string_view banner = "Sanitizer: ";
constexpr std::string_view leaks = "detected memory leaks";
constexpr std::string_view buildId = " (BuildId: ";

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// What stands behind the first `label`, or nothing.
std::string_view Behind(std::string_view text, std::string_view label) {
    const std::size_t at = text.find(label);
    return at == std::string_view::npos ? std::string_view() : text.substr(at + label.size());
}

std::int64_t NumberBehind(std::string_view text, std::string_view label) {
    const std::string_view digits = Behind(text, label);
    std::int64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return std::max<std::int64_t>(number, 0);
}

// "heap-use-after-free on address 0x...": the words before the first detail.
std::string_view KindOf(std::string_view text) {
    std::size_t past = text.size();
    for (const std::string_view detail : {" on ", " (", ":"}) past = std::min(past, text.find(detail));
    const std::string_view kind = text.substr(0, past);
    return kind.starts_with("attempting free") ? kind.substr(0, 15) : kind;
}

// Takes ":12" off the end; the digits, or nothing.
std::string_view TakeLineNumber(std::string_view& text) {
    const std::size_t colon = text.find_last_not_of("0123456789");
    if (colon == std::string_view::npos || text[colon] != ':' || colon + 1 == text.size()) return {};
    const std::string_view digits = text.substr(colon + 1);
    text.remove_suffix(digits.size() + 1);
    return digits;
}

// "foo(int) (/lib/libx.so+0x12)", "foo(int) /w/a.cpp:12:3", "(/lib/libx.so+0x12)", "foo(int)"
void AddCall(std::string_view text, CallTexts& calls) {
    text = text.substr(0, text.rfind(buildId));
    const std::size_t parenthesis = text.rfind('(');
    if (text.ends_with(')') && parenthesis != std::string_view::npos &&
        Contains(text.substr(parenthesis), "+0x")) {
        const std::string_view module = text.substr(parenthesis + 1);
        const std::size_t past = text.find_last_not_of(' ', parenthesis == 0 ? 0 : parenthesis - 1);
        const std::string_view function = parenthesis == 0 ? "" : text.substr(0, past + 1);
        return calls.Add(function, module.substr(0, module.rfind("+0x")), "");
    }
    std::string_view line = TakeLineNumber(text);
    if (line.empty()) return calls.Add(text, "", "");
    // With two numbers the second is the column.
    if (const std::string_view first = TakeLineNumber(text); !first.empty()) line = first;
    const std::size_t slash = text.find(" /");
    const std::size_t blank = slash == std::string_view::npos ? text.rfind(' ') : slash;
    if (blank == std::string_view::npos) return calls.Add("", text, line);
    calls.Add(text.substr(0, blank), text.substr(blank + 1), line);
}

class SanitizerReader : public LineReader {
public:
    explicit SanitizerReader(RecordTaker& theTaker) : taker(theTaker) {}

private:
    void TakeLine(std::string_view line) override {
        if (line.empty() && record.calls.Told() == 0) return;
        if (TakeFrame(line)) return;
        if (record.calls.Told() > 0) TakeEnd();
        if (!TakeHead(line) && open) TakeDetail(line);
    }

    void TakeEnd() override {
        if (open) {
            SetType(record, region, write);
            taker.Take(record);
        }
        open = false;
        record.Clear();
    }

    // "    #1 0x55f8d353951c in main /w/a.cpp:9"
    bool TakeFrame(std::string_view line) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.size() < 2 || line[0] != '#' || !IsDigit(line[1])) return false;
        if (!open) return true;
        line.remove_prefix(std::min(line.find(' '), line.size()));
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.starts_with("0x")) line.remove_prefix(std::min(line.find(' '), line.size()));
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.starts_with("in ")) line.remove_prefix(3);
        AddCall(line, record.calls);
        return true;
    }

    bool TakeHead(std::string_view line) {
        if (Contains(line, "irect leak of ")) {
            Open(line.substr(0, line.find(" of ")));
            record.bytes = NumberBehind(line, " leak of ");
            record.count = NumberBehind(line, " byte(s) in ");
            return true;
        }
        const std::string_view what = Behind(line, banner);
        if (what.empty() || !(Contains(line, "ERROR: ") || Contains(line, "WARNING: "))) return false;
        if (what.starts_with(leaks)) return true;
        Open(KindOf(what));
        region = RegionOfAddress(Behind(what, "unknown address ").substr(0, 18));
        return true;
    }

    void Open(std::string_view kind) {
        TakeEnd();
        open = true;
        record.kind = kind;
        record.line = LineNumber();
        region = Region::Unknown;
        write = false;
    }

    void TakeDetail(std::string_view line) {
        if (line.starts_with("WRITE of size ") || Contains(line, "caused by a WRITE memory access"))
            write = true;
    }

    RecordTaker& taker;
    ReportRecord record;
    Region region = Region::Unknown;
    bool write = false;
    bool open = false;
};

} // namespace

std::unique_ptr<ReportReader> MakeSanitizerReader(RecordTaker& taker) {
    return std::make_unique<SanitizerReader>(taker);
}

} // namespace ostraka::reports
