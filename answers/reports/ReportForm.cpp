// What a file is shows from its first bytes, or from a line that only one kind of report has. Plain calls are
// what is left: lines of which most could be one. Any other text is read for a sanitizer's report, since that
// may stand behind whatever a program printed.

#include <algorithm>
#include <iterator>

#include "LineReader.h"

namespace ostraka::reports {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::string_view whitespace = " \t\r\n";
constexpr int linesLookedAt = 1000;
constexpr std::size_t mostWords = 6; // of "unsigned long const& Foo<int>::Bar(int) const"

struct Sign {
    std::size_t at;
    std::string_view bytes;
    const char* meaning;
};

constexpr Sign signs[] = {
    {0, "\x1f\x8b"sv, "is packed with gzip"},
    {0,
     "\xfd"
     "7zXZ\0"sv,
     "is packed with xz"},
    {0, "\x28\xb5\x2f\xfd"sv, "is packed with zstd"},
    {0, "\x04\x22\x4d\x18"sv, "is packed with lz4"},
    {4, "1AY&SY"sv, "is packed with bzip2"},
    {0, "PK\x03\x04"sv, "is packed with zip"},
    {0, "7z\xbc\xaf"sv, "is packed with 7-Zip"},
    {257, "ustar"sv, "is an archive of tar"},
    {0,
     "\x7f"
     "ELF"sv,
     "is a program or a library"},
    {0, "\xff\xfe"sv, "is text of 16 bits a character"},
    {0, "\xfe\xff"sv, "is text of 16 bits a character"},
};

std::string_view TakeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::string_view Trimmed(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(whitespace), line.size()));
    return line.substr(0, line.find_last_not_of(whitespace) + 1);
}

bool HasSanitizerHead(std::string_view text) {
    while (!text.empty())
        if (IsSanitizerHead(TakeLine(text))) return true;
    return false;
}

// "f(int) [/w/a.cpp:12]"
bool HasSource(std::string_view line) {
    if (!line.ends_with(']')) return false;
    const std::string call = CallText(line);
    const std::size_t bracket = call.find('[');
    if (bracket == std::string::npos) return false;
    return ShownSource(std::string_view(call).substr(bracket + 1)).find_first_of("/.:") != std::string::npos;
}

// The words of a function outside of brackets, or `npos` for what no function has there.
std::size_t CountWords(std::string_view function) {
    std::size_t words = 0;
    int depth = 0;
    char before = ' ';
    for (const char c : function) {
        if (std::string_view("(<[{").find(c) != std::string_view::npos) ++depth;
        if (depth == 0 && std::string_view(",=|\\\"").find(c) != std::string_view::npos)
            return std::string_view::npos;
        if (before == ' ' && c != ' ' && depth == 0) ++words;
        if (std::string_view(")>]}").find(c) != std::string_view::npos && depth > 0) --depth;
        before = c;
    }
    return words;
}

// Whether a line without a source could be a function, such as "main", "operator new(unsigned long)" and
// "void Run<Tally>(Tally*)", and is neither code nor prose.
bool IsFunction(std::string_view line) {
    if (line.find(';') != std::string_view::npos) return false;
    if (std::string_view(",{:.?").find(line.back()) != std::string_view::npos) return false;
    if (line.find("operator") != std::string_view::npos) return true;
    if (line.front() == '<' && !line.starts_with("<lambda") && !line.starts_with("<null")) return false;
    if (std::string_view("0123456789#{}\"-*/|+").find(line.front()) != std::string_view::npos) return false;
    const std::size_t words = CountWords(line);
    return words <= (line.find('(') == std::string_view::npos ? 1 : mostWords);
}

// With a source or a head in it, half of the lines may be anything; without, none. Comments don't count.
bool HoldsCalls(std::string_view text) {
    int sure = 0;
    int possible = 0;
    int others = 0;
    while (!text.empty() && sure + possible + others < linesLookedAt) {
        const std::string_view line = Trimmed(TakeLine(text));
        if (line.empty() || line.starts_with("# ")) continue;
        if (HasSource(line) || ReadFrameHead(line))
            ++sure;
        else
            ++(IsFunction(line) ? possible : others);
    }
    return sure > 0 ? others <= sure + possible : possible > 0 && others == 0;
}

} // namespace

Recognised Recognise(std::string_view beginning) {
    const auto* sign = std::find_if(std::begin(signs), std::end(signs), [&](const Sign& row) {
        return beginning.substr(std::min(row.at, beginning.size())).starts_with(row.bytes);
    });
    if (sign != std::end(signs)) return {ReportForm::None, std::string(sign->meaning) + ", not a report"};
    const std::size_t first = beginning.find_first_not_of("\xef\xbb\xbf \t\r\n");
    const std::string_view text = first == std::string_view::npos ? "" : beginning.substr(first);
    if (text.starts_with("<?xml") || text.starts_with("<valgrindoutput")) return {ReportForm::Valgrind, ""};
    if (HasSanitizerHead(text)) return {ReportForm::Sanitizer, ""};
    if (text.find('\0') != std::string_view::npos) return {ReportForm::None, "is binary, not a report"};
    return {text.empty() || HoldsCalls(text) ? ReportForm::FrameLines : ReportForm::Sanitizer, ""};
}

} // namespace ostraka::reports
