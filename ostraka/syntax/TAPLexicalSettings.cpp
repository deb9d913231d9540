// One pass over the bytes of a file, beside which nothing is kept. What is taken out leaves blanks, but for
// newlines, which stay: no line and no column changes.

#include <ostraka/syntax/TAPLexicalSettings.h>

#include <algorithm>
#include <cstring>

TAPLexicalSettings TAPLexicalSettings::ForRealFiles() {
    TAPLexicalSettings settings;
    settings.byteOrderMark = true;
    settings.digitSeparators = true;
    settings.rawStrings = true;
    settings.idlAttributes = true;
    return settings;
}

bool TAPLexicalSettings::HasAny() const {
    return byteOrderMark || digitSeparators || rawStrings || idlAttributes || !droppedWords.empty();
}

namespace ostraka::detail {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsWordLike(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 128;
}

std::string_view WithoutCall(std::string_view pattern) {
    if (pattern.ends_with("()")) pattern.remove_suffix(2);
    return pattern;
}

// Steps back to the last `*` where the rest doesn't fit, so the cost is their product at most.
bool Fits(std::string_view pattern, std::string_view word) {
    std::size_t at = 0;
    std::size_t from = 0;
    std::size_t star = pattern.npos;
    std::size_t retry = 0;
    while (from < word.size()) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            retry = from;
        } else if (at < pattern.size() && pattern[at] == word[from]) {
            ++at;
            ++from;
        } else if (star != pattern.npos) {
            at = star + 1;
            from = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == pattern.npos;
}

class LexicalFilter {
public:
    LexicalFilter(const TAPLexicalSettings& chosen, bool ofIdl, char* text, char* textPast)
        : settings(chosen), isIdl(ofIdl && chosen.idlAttributes), begin(text), past(textPast) {}

    void Run() {
        char* pos = begin;
        if (settings.byteOrderMark && past - pos >= 3 && std::memcmp(pos, "\xef\xbb\xbf", 3) == 0)
            Blank(pos, pos + 3);
        while (pos < past) pos = Step(pos);
    }

private:
    char* Step(char* pos) {
        const char c = *pos;
        if (IsDigit(c)) return Number(pos);
        if (IsWordLike(c)) return Word(pos);
        if (c == '"' || c == '\'') return PastLiteral(pos);
        if (c == '/' && pos + 1 < past && (pos[1] == '/' || pos[1] == '*')) return PastComment(pos);
        if (c == '[' && isIdl && BeginsAttributes()) return Attributes(pos);
        if (static_cast<unsigned char>(c) > ' ') last = c;
        return pos + 1;
    }

    void Blank(char* from, const char* to) {
        for (; from < to; ++from)
            if (*from != '\n') *from = ' ';
    }

    char* Find(char* from, std::string_view text) const {
        return std::search(from, past, text.begin(), text.end());
    }

    char* PastComment(char* pos) const {
        if (pos[1] == '/') return std::find(pos, past, '\n');
        char* end = Find(pos + 2, "*/");
        return end == past ? past : end + 2;
    }

    // A literal ends with its line unless a backslash joins the next one.
    char* PastLiteral(char* pos) {
        last = *pos;
        return SkipLiteral(pos);
    }

    char* SkipLiteral(char* pos) const {
        char* at = pos + 1;
        for (; at < past && *at != *pos && *at != '\n'; ++at)
            if (*at == '\\') ++at;
        return std::min(at + 1, past);
    }

    // Moves the digits behind a separator to it.
    char* Number(char* pos) {
        last = '0';
        char* to = pos;
        char* at = pos;
        for (; at < past; ++at) {
            const bool isSeparator =
                settings.digitSeparators && *at == '\'' && at + 1 < past && IsWordLike(at[1]);
            if (isSeparator) continue;
            if (!IsWordLike(*at) && *at != '.') break;
            *to++ = *at;
        }
        Blank(to, at);
        return at;
    }

    char* Word(char* pos) {
        char* end = std::find_if_not(pos, past, IsWordLike);
        const std::string_view word(pos, static_cast<std::size_t>(end - pos));
        const bool isRaw =
            settings.rawStrings && end < past && *end == '"' && word.back() == 'R' && word.size() <= 3;
        if (isRaw) return RawString(end - 1, end);
        const int dropped = FindDroppedWord(settings.droppedWords, word);
        if (dropped >= 0) return Drop(pos, end, settings.droppedWords[static_cast<std::size_t>(dropped)]);
        last = 'a';
        return end;
    }

    char* Drop(char* pos, char* end, std::string_view pattern) {
        if (pattern.ends_with("()")) {
            char* open = std::find_if(end, past, [](char c) { return c != ' ' && c != '\t'; });
            char* behind = open < past && *open == '(' ? PastBracket(open) : open;
            if (behind > open + 1) end = behind;
        }
        Blank(pos, end);
        return end;
    }

    // Behind the partner of a bracket; behind the bracket where it has none.
    char* PastBracket(char* open) {
        const char close = *open == '(' ? ')' : ']';
        int depth = 0;
        char* behind = open + 1;
        for (char* at = open; at < past;) {
            if (*at == '"' || *at == '\'') {
                at = SkipLiteral(at);
                continue;
            }
            if (*at == ';' || *at == '{') break;
            if (*at == *open) ++depth;
            if (*at++ == close && --depth == 0) {
                behind = at;
                break;
            }
        }
        return behind;
    }

    // `prefix` is the R.
    char* RawString(char* prefix, char* quote) {
        char* open = std::find(quote, past, '(');
        constexpr std::ptrdiff_t longestMark = 17;
        if (open == past || open - quote > longestMark || searchedInVain > 4 * (past - begin))
            return PastLiteral(quote);
        const std::string close = ")" + std::string(quote + 1, open) + "\"";
        char* end = Find(open, close);
        if (end == past) {
            searchedInVain += past - open;
            return PastLiteral(quote);
        }
        *prefix = ' ';
        for (char* at = quote + 1; at < end + close.size() - 1; ++at) {
            if (*at == '"') *at = '\'';
            if (*at == '\\') *at = '/';
        }
        last = '"';
        return end + close.size();
    }

    // A bracket behind a name is an index.
    bool BeginsAttributes() const {
        return last == '\0' || last == '(' || last == ',' || last == ';' || last == '{' || last == '}' ||
               last == ']';
    }

    char* Attributes(char* open) {
        char* end = PastBracket(open);
        if (end == open + 1) return end;
        bool isIn = false;
        bool isOut = false;
        for (char* at = open + 1; at < end;) {
            if (*at == '"') {
                at = SkipLiteral(at);
                continue;
            }
            char* wordEnd = std::find_if_not(at, end, IsWordLike);
            const std::string_view word(at, static_cast<std::size_t>(wordEnd - at));
            isIn = isIn || word == "in";
            isOut = isOut || word == "out";
            at = std::max(wordEnd, at + 1);
        }
        const bool isArgument = last == '(' || last == ',';
        Blank(open, end);
        const std::string_view direction = !isArgument     ? ""
                                           : isIn && isOut ? "inout"
                                           : isIn          ? "in"
                                           : isOut         ? "out"
                                                           : "";
        std::copy(direction.begin(), direction.end(), open);
        return end;
    }

    const TAPLexicalSettings& settings;
    const bool isIdl;
    char* const begin;
    char* const past;
    char last = '\0'; // character that is no blank; of a word or a number one for all
    std::ptrdiff_t searchedInVain = 0;
};

} // namespace

int FindDroppedWord(const std::vector<std::string>& patterns, std::string_view word) {
    const auto found = std::find_if(patterns.begin(), patterns.end(), [=](const std::string& pattern) {
        return Fits(WithoutCall(pattern), word);
    });
    return found == patterns.end() ? -1 : static_cast<int>(found - patterns.begin());
}

void ApplyLexicalSettings(const TAPLexicalSettings& settings, bool isIdl, char* text, char* past) {
    LexicalFilter(settings, isIdl, text, past).Run();
}

} // namespace ostraka::detail
