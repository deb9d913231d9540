#include "ReportRecord.h"

#include <algorithm>
#include <cstring>

namespace ostraka::reports {

namespace {

constexpr char innerBracket = '\x7f';             // for a "[" of the function
constexpr std::string_view hereSign = "\x7f/";    // before a relative path
constexpr std::string_view hereInText = "[\x7f/"; // as it stands in a call text
constexpr std::string_view unknown = "???";

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The last byte that only a place has, as in "a/b.cpp" and "b.cpp:12", or `npos`.
std::size_t LastOfPlace(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos && colon + 1 < text.size() &&
        std::all_of(text.begin() + static_cast<std::ptrdiff_t>(colon) + 1, text.end(), IsDigit))
        return colon;
    return text.rfind('/');
}

// The bracket that the last character closes, or one that is never closed, going backwards; or `npos`.
std::size_t SourceBracket(std::string_view text) {
    const bool closed = text.ends_with(']');
    const std::size_t place = LastOfPlace(closed ? text.substr(0, text.size() - 1) : text);
    int open = 0;
    for (std::size_t at = text.size(); at-- > 0;) {
        if (text[at] == ']') ++open;
        if (text[at] != '[' || --open > 0 || (open == 0 && !closed)) continue;
        if (at == 0 || text[at - 1] == ' ' || (place != std::string_view::npos && place > at)) return at;
        if (closed) break;
        open = 0;
    }
    return std::string_view::npos;
}

std::string_view Trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    return text;
}

// The library reads texts up to a NUL.
void ReplaceNuls(std::string& text) {
    std::replace(text.begin(), text.end(), '\0', '?');
}

void AppendFunction(std::string& out, std::string_view function) {
    const std::size_t begin = out.size();
    out += function;
    std::replace(out.begin() + static_cast<std::ptrdiff_t>(begin), out.end(), '[', innerBracket);
}

// In a mask "@" stands for any beginning, that of a relative path included.
bool IsRelative(std::string_view path) {
    return !path.empty() && std::string_view("/@:]").find(path.front()) == std::string_view::npos;
}

// `source` is the path with what is behind it.
void AppendSource(std::string& out, std::string_view source) {
    out += '[';
    if (IsRelative(source)) out += hereSign;
    out += source;
}

} // namespace

void CallTexts::Clear() {
    told = 0;
}

std::string* CallTexts::Next() {
    if (told++ >= most) return nullptr;
    std::string* text = &texts[static_cast<std::size_t>(told - 1)];
    text->clear();
    return text;
}

void CallTexts::Add(std::string_view function, std::string_view path, std::string_view line) {
    std::string* text = Next();
    if (text == nullptr) return;
    AppendFunction(*text, function.empty() ? unknown : function);
    if (!path.empty()) {
        *text += ' ';
        AppendSource(*text, path);
        *text += ':';
        *text += line;
        *text += ']';
    }
    ReplaceNuls(*text);
}

void CallTexts::AddLine(std::string_view line) {
    if (std::string* text = Next()) *text = CallText(line);
}

void CallTexts::AddText(std::string_view callText) {
    if (std::string* text = Next()) *text = callText;
}

std::string CallText(std::string_view written) {
    const std::string_view text = Trimmed(written);
    const std::size_t bracket = std::min(SourceBracket(text), text.size());
    std::string result;
    AppendFunction(result, text.substr(0, bracket));
    if (bracket < text.size()) AppendSource(result, text.substr(bracket + 1));
    ReplaceNuls(result);
    return result;
}

std::string MaskText(std::string_view written) {
    std::string result;
    for (std::size_t past = written.find('!'); past != std::string_view::npos; past = written.find('!')) {
        result += CallText(written.substr(0, past)) + '!';
        written.remove_prefix(past + 1);
    }
    return result + CallText(written);
}

std::string ShownCall(std::string_view callText) {
    std::string shown;
    for (std::size_t sign = callText.find(hereInText); sign != std::string_view::npos;
         sign = callText.find(hereInText)) {
        shown += callText.substr(0, sign + 1);
        callText.remove_prefix(sign + hereInText.size());
    }
    shown += callText;
    std::replace(shown.begin(), shown.end(), innerBracket, '[');
    return shown;
}

std::string_view ShownSource(std::string_view path) {
    return path.starts_with(hereSign) ? path.substr(hereSign.size()) : path;
}

int CompareCallTexts(const char* a, const char* b) {
    const char* const begin = a;
    for (; *a != '\0' && *a == *b; ++a) ++b;
    const bool behindBracket = a != begin && a[-1] == '[';
    if (behindBracket && std::string_view(a).starts_with(hereSign)) a += hereSign.size();
    if (behindBracket && std::string_view(b).starts_with(hereSign)) b += hereSign.size();
    return std::strcmp(a, b);
}

void ReportRecord::Clear() {
    type.clear();
    kind.clear();
    leak = false;
    bytes = 0;
    count = 1;
    unique = noNumber;
    line = 0;
    calls.Clear();
    title.clear();
    others.clear();
    othersLeftOut = false;
}

CallTexts* ReportRecord::AddStack(std::string_view theTitle) {
    othersLeftOut = others.size() >= mostOthers;
    if (othersLeftOut) return nullptr;
    if (title.empty()) title = kind;
    others.push_back({std::string(theTitle), {}});
    return &others.back().calls;
}

bool ReportRecord::IsTooDeep() const {
    const auto isCut = [](const CallTexts& texts) { return texts.Told() > texts.Kept(); };
    return othersLeftOut || isCut(calls) ||
           std::any_of(others.begin(), others.end(),
                       [&](const TitledCalls& other) { return isCut(other.calls); });
}

} // namespace ostraka::reports
