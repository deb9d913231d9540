#include <answers/facts/Escapes.h>

#include <iterator>

#include <fmt/format.h>

namespace ostraka::answers {

namespace {

struct Escape {
    char character;
    char letter;
};

constexpr Escape escapes[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'\\', '\\'}};

bool IsPrintable(char c) {
    return c >= 0x20 && c <= 0x7e;
}

void AppendEscape(std::string& out, char c) {
    for (const Escape& escape : escapes) {
        if (escape.character != c) continue;
        out += '\\';
        out += escape.letter;
        return;
    }
    fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(c));
}

// Copies the characters that `keep` accepts in runs and escapes the others.
template <class Keep>
void AppendEscapedUnless(std::string& out, std::string_view text, Keep keep) {
    std::size_t run = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (keep(text[at])) continue;
        out += text.substr(run, at - run);
        AppendEscape(out, text[at]);
        run = at + 1;
    }
    out += text.substr(run);
}

} // namespace

void AppendOneLine(std::string& out, std::string_view text) {
    AppendEscapedUnless(out, text, [](char c) { return IsPrintable(c) || (c & 0x80) != 0; });
}

void AppendEscaped(std::string& out, std::string_view text) {
    AppendEscapedUnless(out, text, [](char c) { return IsPrintable(c) && c != '\\'; });
}

} // namespace ostraka::answers
