// A record begins with a head and goes on with lines about it and with stacks, each under a title. Which
// stacks count depends on the sanitizer: of an access to memory the first, as further ones tell where memory
// came from; of threads all that take part, but none of where a thread, a lock or memory was made. Undefined
// behaviour has at most one, and its head tells the place, which is all there is where stacks aren't printed.
// Everything else in the text belongs to the program that ran or to the sanitizer's own explanations.

#include <algorithm>
#include <charconv>

#include "LineReader.h"
#include "ReportTypes.h"

namespace ostraka::reports {

namespace {

constexpr std::string_view banner = "Sanitizer: ";
constexpr std::string_view threadBanner = "WARNING: ThreadSanitizer: ";
constexpr std::string_view runtimeError = ": runtime error: ";
constexpr std::string_view leak = "irect leak of "; // "Direct", "Indirect"
constexpr std::string_view leaks = "detected memory leaks";
constexpr std::string_view buildId = " (BuildId: ";
constexpr std::string_view noSymbol = "<null>";

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view WithoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.substr(0, text.find_last_not_of(' ') + 1);
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

// "==7==ERROR: AddressSanitizer: what", "WARNING: ThreadSanitizer: what"
std::string_view BehindBanner(std::string_view line) {
    return Contains(line, "ERROR: ") || Contains(line, "WARNING: ") ? Behind(line, banner) : "";
}

// The text before the first of the details.
template <std::size_t n>
std::string_view Before(std::string_view text, const std::string_view (&details)[n]) {
    std::size_t past = text.size();
    for (const std::string_view detail : details) past = std::min(past, text.find(detail));
    return text.substr(0, past);
}

// "heap-use-after-free on address 0x...", "attempting free on address"
std::string_view KindOf(std::string_view text) {
    constexpr std::string_view details[] = {" on ", " (", ":"};
    const std::string_view kind = Before(text, details);
    return kind.starts_with("attempting free") ? kind.substr(0, 15) : kind;
}

// Of "data race on vptr (ctor/dtor vs virtual call) (pid=3)" what stands before the parentheses.
std::string_view KindOfThreads(std::string_view text) {
    constexpr std::string_view details[] = {" ("};
    return Before(text, details);
}

// The same words for all values: "shift exponent 40 is too large for 32-bit type 'int'" is "shift exponent N
// is too large".
std::string KindOfRuntimeError(std::string_view text) {
    constexpr std::string_view details[] = {":",         ",",         ";",       " for ",       " from type ",
                                            " of type ", " in type ", " type '", " cannot be ", " which "};
    text = Before(text, details);
    std::string kind;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        const std::size_t sign = word.starts_with('-') ? 1 : 0;
        kind += kind.empty() ? "" : " ";
        kind += word.size() > sign && IsDigit(word[sign]) ? "N" : word;
        text.remove_prefix(std::min(word.size() + 1, text.size()));
    }
    return kind;
}

// Takes ":12" off the end; the digits, or nothing.
std::string_view TakeLineNumber(std::string_view& text) {
    const std::size_t colon = text.find_last_not_of("0123456789");
    if (colon == std::string_view::npos || text[colon] != ':' || colon + 1 == text.size()) return {};
    const std::string_view digits = text.substr(colon + 1);
    text.remove_suffix(digits.size() + 1);
    return digits;
}

// Takes ":12" or ":12:3" off the end; the digits of the line, or nothing.
std::string_view TakePlace(std::string_view& text) {
    const std::string_view last = TakeLineNumber(text);
    const std::string_view first = TakeLineNumber(text);
    return first.empty() ? last : first;
}

// Takes " (/lib/libx.so+0x12)" off the end; the module without the address, or nothing.
std::string_view TakeModule(std::string_view& text) {
    const std::size_t parenthesis = text.rfind('(');
    if (!text.ends_with(')') || parenthesis == std::string_view::npos) return {};
    std::string_view module = text.substr(parenthesis + 1, text.size() - parenthesis - 2);
    const std::size_t address = module.rfind("+0x");
    if (address == std::string_view::npos && module != "<unknown module>") return {};
    text = WithoutBlanks(text.substr(0, parenthesis));
    return module.substr(0, address);
}

// Where the message of "a.cpp:1:2: runtime error: division by zero" begins, or `npos`. Other programs use
// these words, too, but with no place in front.
std::size_t RuntimeErrorAt(std::string_view line) {
    const std::size_t at = line.find(runtimeError);
    if (at == std::string_view::npos) return at;
    std::string_view place = line.substr(0, at);
    const bool isPlace = place.ends_with(')') || place.ends_with('>') || !TakePlace(place).empty();
    return isPlace ? at + runtimeError.size() : std::string_view::npos;
}

// "foo(int) /w/a b.cpp" at the blank before the path: a path from the root may hold blanks.
std::size_t BlankBeforePath(std::string_view text) {
    const std::size_t slash = text.find(" /");
    return slash == std::string_view::npos ? text.rfind(' ') : slash;
}

// "foo(int) (/lib/libx.so+0x12)", "foo(int) /w/a.cpp:12:3", "(/lib/libx.so+0x12)", "foo(int)"
void AddCall(std::string_view text, CallTexts& calls) {
    if (const std::string_view module = TakeModule(text); !module.empty())
        return calls.Add(text, module.starts_with('<') ? "" : module, "");
    const std::string_view line = TakePlace(text);
    if (line.empty() && !Contains(text, " /")) return calls.Add(text, "", "");
    const std::size_t blank = BlankBeforePath(text);
    if (blank == std::string_view::npos) return calls.Add("", text, line);
    calls.Add(text.substr(0, blank), text.substr(blank + 1), line);
}

// The same behind all that threads tell, source and module: "foo(int) /w/a.cpp:12 (prog+0x12)",
// "foo(int) <null> (libx.so+0x12)", "foo(int) a.cpp (prog+0x12)"
void AddCallOfThread(std::string_view text, CallTexts& calls) {
    const std::string_view module = TakeModule(text);
    if (module.empty()) return AddCall(text, calls);
    const std::string_view line = TakePlace(text);
    const std::size_t blank = BlankBeforePath(text);
    const std::string_view function = blank == std::string_view::npos ? "" : text.substr(0, blank);
    const std::string_view path = blank == std::string_view::npos ? text : text.substr(blank + 1);
    calls.Add(function == noSymbol ? "" : function, path == noSymbol ? module : path, line);
}

// Of "  Previous write of size 4 at 0x7b04 by thread T1 (mutexes: write M0):" what is the same each time, or
// nothing for what is no title.
std::string TitleOf(std::string_view line) {
    std::string title;
    line = WithoutBlanks(line);
    if (!line.ends_with(':')) return title;
    line.remove_suffix(1);
    int depth = 0;
    while (!line.empty()) {
        const std::string_view word = line.substr(0, line.find(' '));
        line.remove_prefix(std::min(word.size() + 1, line.size()));
        const bool isInside = depth > 0 || word.starts_with('(');
        depth += static_cast<int>(std::count(word.begin(), word.end(), '('));
        depth -= static_cast<int>(std::count(word.begin(), word.end(), ')'));
        if (isInside || word.starts_with("0x") || (word == "at" && line.starts_with("0x"))) continue;
        title += title.empty() ? "" : " ";
        title += word;
    }
    return title;
}

// Whether the stack under the title takes part in what happened.
bool TakesPart(std::string_view title) {
    return title == "and" || title.starts_with("Previous ") || Contains(title, " acquired ");
}

class SanitizerReader : public LineReader {
public:
    explicit SanitizerReader(RecordTaker& theTaker) : taker(theTaker) {}

private:
    void TakeLine(std::string_view line) override {
        if (TakeFrame(line) || TakeHead(line)) return;
        if (IsValgrindText(line) && valgrindLine == 0) valgrindLine = LineNumber();
        if (!open) return;
        if (ofThreads)
            TakeThreadLine(line);
        else if (record.calls.Told() > 0)
            Close();
        else
            TakeDetail(line);
    }

    void TakeEnd() override {
        Close();
        if (anyHead) return;
        if (valgrindLine > 0)
            fault = {valgrindLine, 1, valgrindTextCause};
        else
            fault = {0, 0, "is text without a report in it"};
    }

    // "    #1 0x55f8d353951c in main /w/a.cpp:9"
    bool TakeFrame(std::string_view line) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.size() < 2 || line[0] != '#' || !IsDigit(line[1])) return false;
        if (!open || stack == nullptr) return true;
        line = line.substr(0, line.rfind(buildId));
        line = WithoutBlanks(line.substr(std::min(line.find(' '), line.size())));
        const bool hasAddress = line.starts_with("0x");
        if (hasAddress) line = WithoutBlanks(line.substr(std::min(line.find(' '), line.size())));
        if (line.starts_with("in ")) line.remove_prefix(3);
        if (ofThreads && !hasAddress)
            AddCallOfThread(line, *stack);
        else
            AddCall(line, *stack);
        return true;
    }

    bool TakeHead(std::string_view line) {
        if (!IsSanitizerHead(line)) return false;
        anyHead = true;
        if (const std::size_t error = RuntimeErrorAt(line); error != std::string_view::npos) {
            Open(KindOfRuntimeError(line.substr(error)));
            place = line.substr(0, error - runtimeError.size());
        } else if (Contains(line, leak)) {
            Open(line.substr(0, line.find(" of ")));
            record.bytes = NumberBehind(line, " leak of ");
            record.count = NumberBehind(line, " byte(s) in ");
        } else if (const std::string_view thread = Behind(line, threadBanner); !thread.empty()) {
            Open(KindOfThreads(thread));
            ofThreads = true;
        } else if (const std::string_view what = BehindBanner(line); !what.starts_with(leaks)) {
            Open(KindOf(what));
            region = RegionOfAddress(Behind(what, "unknown address ").substr(0, 18));
        }
        return true;
    }

    void Open(std::string_view kind) {
        Close();
        open = true;
        record.kind = kind;
        record.line = LineNumber();
        stack = &record.calls;
        region = Region::Unknown;
        write = ofThreads = false;
    }

    void Close() {
        if (open) {
            if (record.calls.Told() == 0 && !place.empty()) AddPlace();
            SetType(record, region, write);
            taker.Take(record);
        }
        open = false;
        place.clear();
        record.Clear();
    }

    // A head with a place and no stack is a call of nobody knows what; what is told from one in another file
    // by its function alone has to be told from this one, too.
    void AddPlace() {
        std::string_view path = place;
        if (const std::string_view module = TakeModule(path); !module.empty())
            return record.calls.Add("", module, "");
        const std::string_view line = TakePlace(path);
        if (!path.starts_with('<')) record.calls.Add("??? in " + std::string(path), path, line);
    }

    void TakeDetail(std::string_view line) {
        if (line.starts_with("WRITE of size ") || Contains(line, "caused by a WRITE memory access"))
            write = true;
    }

    // The first stack counts under any title.
    void TakeThreadLine(std::string_view line) {
        if (line.starts_with("SUMMARY: ") || line.starts_with("======")) return Close();
        const std::string title = TitleOf(line);
        if (title.empty()) return;
        if (record.calls.Told() == 0) {
            record.title = title;
            write = title.starts_with("Write ") || title.starts_with("Atomic write ");
        } else {
            stack = TakesPart(title) ? record.AddStack(title) : nullptr;
        }
    }

    RecordTaker& taker;
    ReportRecord record;
    CallTexts* stack = nullptr; // that frames belong to; null for one that doesn't count
    std::string place;          // from the head
    Region region = Region::Unknown;
    bool write = false;
    bool ofThreads = false;
    bool open = false;
    bool anyHead = false;
    int valgrindLine = 0; // the first that Valgrind has written as text
};

} // namespace

bool IsSanitizerHead(std::string_view line) {
    return RuntimeErrorAt(line) != std::string_view::npos ||
           (Contains(line, leak) && Contains(line, " byte(s) in ")) || !BehindBanner(line).empty();
}

std::unique_ptr<ReportReader> MakeSanitizerReader(RecordTaker& taker) {
    return std::make_unique<SanitizerReader>(taker);
}

} // namespace ostraka::reports
