// A scanner over the bytes that never looks behind where it stands, but for the conditionals: they keep where
// their tokens began, so that a branch which turns out to be a replacement of the first can be dropped whole.

#include <answers/facts/Tokens.h>

#include <algorithm>
#include <array>
#include <string>

#include <answers/facts/Brackets.h>
#include <ostraka/syntax/TAPLexicalSettings.h>

namespace ostraka::answers {

namespace {

enum CharacterClass : std::uint8_t { OtherClass, BlankClass, WordClass, DigitClass };

constexpr auto classOf = [] {
    std::array<CharacterClass, 256> table{};
    for (int c = 0; c <= ' '; ++c) table[static_cast<std::size_t>(c)] = BlankClass;
    for (int c = 0; c < 256; ++c) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' || c >= 128)
            table[static_cast<std::size_t>(c)] = WordClass;
        if (c >= '0' && c <= '9') table[static_cast<std::size_t>(c)] = DigitClass;
    }
    return table;
}();

CharacterClass ClassOf(char c) {
    return classOf[static_cast<unsigned char>(c)];
}

bool IsWordLike(char c) {
    return ClassOf(c) >= WordClass;
}

constexpr std::string_view keywordTexts[] = {
    "",
#define OSTRAKA_KEYWORD(name) #name,
#include <answers/facts/Keywords.inc>
#undef OSTRAKA_KEYWORD
};

constexpr std::size_t keywordSlots = 1024;
constexpr std::size_t longestKeyword = 16;

constexpr std::size_t KeywordHash(std::string_view word) {
    const auto at = [&](std::size_t i) {
        return static_cast<std::size_t>(static_cast<unsigned char>(word[i]));
    };
    return (at(0) * 7 + at(1) * 31 + at(word.size() - 1) * 131 + word.size() * 17 +
            at(word.size() / 2) * 57) %
           keywordSlots;
}

// Where two keywords have one hash, the second lies in the next free slot.
constexpr auto keywordTable = [] {
    std::array<std::uint8_t, keywordSlots> table{};
    for (std::size_t i = 1; i < std::size(keywordTexts); ++i) {
        std::size_t slot = KeywordHash(keywordTexts[i]);
        while (table[slot] != 0) slot = (slot + 1) % keywordSlots;
        table[slot] = static_cast<std::uint8_t>(i);
    }
    return table;
}();

std::uint8_t KeywordOf(std::string_view word) {
    if (word.size() < 2 || word.size() > longestKeyword || (word[0] < '_' || word[0] > 'z')) return NoKeyword;
    for (std::size_t slot = KeywordHash(word); keywordTable[slot] != 0; slot = (slot + 1) % keywordSlots)
        if (keywordTexts[keywordTable[slot]] == word) return keywordTable[slot];
    return NoKeyword;
}

struct LongMark {
    std::string_view text;
    MarkCode code;
};

// The longest of those that begin alike stand first.
constexpr LongMark longMarks[] = {
    {"::", ColonsMark},        {"->*", MemberPointerMark}, {"->", ArrowMark},   {"...", EllipsisMark},
    {".*", MemberPointerMark}, {"&&", AndAndMark},         {"&=", AssignMark},  {"||", OrOrMark},
    {"|=", AssignMark},        {"==", CompareMark},        {"!=", CompareMark}, {"<=>", CompareMark},
    {"<<=", AssignMark},       {"<<", ShiftMark},          {"<=", CompareMark}, {"++", StepMark},
    {"+=", AssignMark},        {"--", StepMark},           {"-=", AssignMark},  {"*=", AssignMark},
    {"/=", AssignMark},        {"%=", AssignMark},         {"^=", AssignMark},
};

// Names that a compiler defines; what is there without them is for others.
bool IsDefinedByOurs(std::string_view name) {
    return name == "__cplusplus";
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && ClassOf(text.front()) == BlankClass) text.remove_prefix(1);
    while (!text.empty() && ClassOf(text.back()) == BlankClass) text.remove_suffix(1);
    return text;
}

std::string_view FirstWord(std::string_view text) {
    std::size_t size = 0;
    while (size < text.size() && IsWordLike(text[size])) ++size;
    return text.substr(0, size);
}

} // namespace

class Scanner {
public:
    explicit Scanner(TokenList& tokens) : list(tokens), text(tokens.source) {}

    void Run() {
        if (text.starts_with("\xef\xbb\xbf")) pos = 3;
        list.tokens.reserve(text.size() / 5 + 16);
        while (pos < text.size()) Step();
        Token end;
        end.begin = static_cast<std::uint32_t>(text.size());
        list.tokens.push_back(end);
    }

private:
    // Since the `#if`: where the branch in hand began, and whether further ones may count.
    struct Conditional {
        std::size_t firstToken = 0;
        int braces = 0;
        int parentheses = 0;
        bool closed = false; // further branches are passed over
    };

    char At(std::size_t at) const { return at < text.size() ? text[at] : '\0'; }

    void Step() {
        const char c = text[pos];
        switch (ClassOf(c)) {
        case BlankClass:
            if (c == '\n') lineBegins = true;
            ++pos;
            return;
        case WordClass: Word(); break;
        case DigitClass: Number(); break;
        default:
            if (c == '/' && (At(pos + 1) == '/' || At(pos + 1) == '*')) {
                pos = SkipComment(pos);
                return;
            }
            if (c == '#' && lineBegins) {
                Directive();
                return;
            }
            if (c == '\\' && (At(pos + 1) == '\n' || At(pos + 1) == '\r')) {
                pos += 2;
                return;
            }
            Mark();
        }
        lineBegins = false;
    }

    void Push(TokenKind kind, std::uint8_t code, std::size_t begin, std::size_t past) {
        Token token;
        token.begin = static_cast<std::uint32_t>(begin);
        token.size = static_cast<std::uint32_t>(past - begin);
        token.kind = kind;
        token.code = code;
        list.tokens.push_back(token);
        pos = past;
    }

    void Word() {
        std::size_t past = pos + 1;
        while (past < text.size() && IsWordLike(text[past])) ++past;
        const std::string_view word = text.substr(pos, past - pos);
        const char next = At(past);
        if (next == '"' && word.size() <= 3 && word.back() == 'R') return RawString(past);
        if ((next == '"' || next == '\'') && IsLiteralPrefix(word)) return Literal(past);
        Push(TokenKind::Word, KeywordOf(word), pos, past);
    }

    static bool IsLiteralPrefix(std::string_view word) {
        return word == "L" || word == "u" || word == "U" || word == "u8";
    }

    // With separators and signs of exponents.
    void Number() {
        std::size_t past = pos + 1;
        for (; past < text.size(); ++past) {
            const char c = text[past];
            if (IsWordLike(c) || c == '.') continue;
            if (c == '\'' && IsWordLike(At(past + 1))) continue;
            const char before = text[past - 1];
            if ((c == '+' || c == '-') &&
                (before == 'e' || before == 'E' || before == 'p' || before == 'P') &&
                !(At(pos + 1) == 'x' && (before == 'e' || before == 'E')))
                continue;
            break;
        }
        Push(TokenKind::Number, 0, pos, past);
    }

    void Mark() {
        const char c = text[pos];
        if (c == '"' || c == '\'') return Literal(pos);
        if (c == '.' && ClassOf(At(pos + 1)) == DigitClass) return Number();
        const std::string_view rest = text.substr(pos, 3);
        for (const LongMark& mark : longMarks) {
            if (mark.text[0] != c || !rest.starts_with(mark.text)) continue;
            return Push(TokenKind::Mark, mark.code, pos, pos + mark.text.size());
        }
        if (c == '{') ++braces;
        if (c == '}') --braces;
        if (c == '(') ++parentheses;
        if (c == ')') --parentheses;
        Push(TokenKind::Mark, static_cast<std::uint8_t>(c), pos, pos + 1);
    }

    // A literal ends with its line, if not before, unless a backslash joins the next one.
    std::size_t PastLiteral(std::size_t open) const {
        const char quote = text[open];
        for (std::size_t i = open + 1; i < text.size(); ++i) {
            if (text[i] == quote) return i + 1;
            if (text[i] == '\n') return i;
            if (text[i] == '\\') i += At(i + 1) == '\r' && At(i + 2) == '\n' ? 2 : 1;
        }
        return text.size();
    }

    void Literal(std::size_t open) {
        const std::size_t past = PastLiteral(open);
        const bool isOpen = past == open + 1 || text[past - 1] != text[open];
        Push(TokenKind::Text, 0, pos, past);
        if (!isOpen) return;
        Note(LexicalFault::Literal, open);
        Push(TokenKind::Mark, ';', past, past); // the literal holds the one that stands there
    }

    void RawString(std::size_t quote) {
        const std::size_t open = text.find('(', quote);
        if (open == text.npos || open - quote > 17) return Literal(quote);
        std::string close = ")";
        close.append(text.substr(quote + 1, open - quote - 1)).append("\"");
        const std::size_t end = searchedInVain < 4 * text.size() ? text.find(close, open) : text.npos;
        if (end == text.npos) {
            searchedInVain += text.size() - open;
            return Literal(quote);
        }
        Push(TokenKind::Text, 0, pos, end + close.size());
    }

    std::size_t SkipComment(std::size_t at) {
        if (text[at + 1] == '/') {
            for (;;) {
                const std::size_t newline = text.find('\n', at);
                if (newline == text.npos) return text.size();
                const std::size_t last = text[newline - 1] == '\r' ? newline - 2 : newline - 1;
                if (text[last] != '\\') return newline;
                at = newline + 1;
            }
        }
        const std::size_t end = text.find("*/", at + 2);
        if (end != text.npos) return end + 2;
        Note(LexicalFault::Comment, at);
        return text.size();
    }

    void Note(LexicalFault fault, std::size_t at) {
        list.faults.push_back({fault, static_cast<std::uint32_t>(at)});
    }

    // To the newline that ends the directive; comments may span lines.
    std::size_t PastDirective(std::size_t from) {
        for (std::size_t i = from; i < text.size();) {
            const char c = text[i];
            if (c == '\n') return i;
            if (c == '/' && At(i + 1) == '*') {
                i = SkipComment(i);
            } else if (c == '/' && At(i + 1) == '/') {
                return SkipComment(i);
            } else if (c == '"' || (c == '\'' && !IsWordLike(text[i - 1]))) {
                i = std::max(PastLiteral(i), i + 1);
            } else if (c == '\\' && (At(i + 1) == '\n' || At(i + 1) == '\r')) {
                i += At(i + 1) == '\r' && At(i + 2) == '\n' ? 3 : 2;
            } else {
                ++i;
            }
        }
        return text.size();
    }

    void Directive() {
        std::size_t at = pos + 1;
        while (At(at) == ' ' || At(at) == '\t') ++at;
        const std::string_view word = FirstWord(text.substr(at, 16));
        const std::size_t behind = at + word.size();
        pos = PastDirective(behind);
        const std::string_view rest = Trimmed(text.substr(behind, pos - behind));
        if (word == "include" || word == "include_next" || word == "import") {
            Include(rest);
        } else if (word == "define") {
            Define(rest);
        } else if (word == "if" || word == "ifdef" || word == "ifndef") {
            Begin(word, rest);
        } else if (word == "elif" || word == "else" || word == "elifdef" || word == "elifndef") {
            Alternative();
        } else if (word == "endif") {
            End();
        }
    }

    void Include(std::string_view rest) {
        if (rest.size() < 2 || (rest[0] != '"' && rest[0] != '<')) return;
        const std::size_t end = rest.find(rest[0] == '"' ? '"' : '>', 1);
        if (end == rest.npos) return;
        const std::string_view name = rest.substr(1, end - 1);
        list.includes.push_back({name, OffsetOf(name), rest[0]});
    }

    void Define(std::string_view rest) {
        MacroFact macro;
        macro.name = FirstWord(rest);
        if (macro.name.empty()) return;
        std::size_t behind = macro.name.size();
        if (behind < rest.size() && rest[behind] == '(') {
            const std::size_t close = rest.find(')', behind);
            if (close == rest.npos) return;
            macro.arguments = rest.substr(behind, close + 1 - behind);
            behind = close + 1;
        }
        macro.value = Trimmed(rest.substr(behind));
        macro.at = OffsetOf(macro.name);
        macro.past = static_cast<std::uint32_t>(pos);
        list.macros.push_back(macro);
    }

    std::uint32_t OffsetOf(std::string_view part) const {
        return static_cast<std::uint32_t>(part.data() - text.data());
    }

    void Begin(std::string_view word, std::string_view rest) {
        conditionals.push_back({list.tokens.size(), braces, parentheses, false});
        const bool isDefined = IsDefinedByOurs(FirstWord(rest));
        if (rest == "0" || (word == "ifndef" && isDefined)) {
            SkipBranch();
        } else if (rest == "1" || (word == "ifdef" && isDefined)) {
            conditionals.back().closed = true;
        }
    }

    void Alternative() {
        if (conditionals.empty()) return;
        Conditional& open = conditionals.back();
        Settle(open);
        if (open.closed) return SkipBranch();
        open.firstToken = list.tokens.size();
    }

    void End() {
        if (conditionals.empty()) return;
        conditionals.pop_back();
    }

    // Looks back at the branch that ends here.
    void Settle(Conditional& open) {
        if (open.closed || list.tokens.size() == open.firstToken) return;
        const bool isBalanced = braces == open.braces && parentheses == open.parentheses;
        const Token& last = list.tokens.back();
        const bool endsStatement =
            last.Is(';') || last.Is('{') || last.Is('}') || last.Is(',') || last.Is(':');
        open.closed = !isBalanced || (!endsStatement && parentheses == 0);
        if (open.closed) return;
    }

    // Steps to the directive that ends the branch, or begins the next one that is worth a look.
    void SkipBranch() {
        int depth = 0;
        for (;;) {
            const std::size_t newline = text.find('\n', pos);
            if (newline == text.npos) {
                pos = text.size();
                return;
            }
            std::size_t at = newline + 1;
            while (At(at) == ' ' || At(at) == '\t') ++at;
            if (At(at) != '#') {
                pos = PastSkippedLine(at);
                continue;
            }
            std::size_t wordAt = at + 1;
            while (At(wordAt) == ' ' || At(wordAt) == '\t') ++wordAt;
            const std::string_view word = FirstWord(text.substr(wordAt, 16));
            pos = at + 1;
            if (word.starts_with("if")) ++depth;
            if (word == "endif" && depth-- == 0) break;
            if (word.starts_with("el") && depth == 0 && !conditionals.back().closed) break;
        }
        pos = text.rfind('#', pos);
        lineBegins = true;
    }

    // A comment may hide directives; literals may hold what looks like one.
    std::size_t PastSkippedLine(std::size_t from) {
        std::size_t i = from;
        while (i < text.size() && text[i] != '\n') {
            if (text[i] == '/' && At(i + 1) == '/') return std::min(text.find('\n', i), text.size());
            if (text[i] == '/' && At(i + 1) == '*') {
                const std::size_t end = text.find("*/", i + 2);
                if (end == text.npos) return text.size();
                i = end + 2;
            } else if (text[i] == '"') {
                i = std::max(PastLiteral(i), i + 1);
            } else {
                ++i;
            }
        }
        return i;
    }

    TokenList& list;
    std::string_view text;
    std::size_t pos = 0;
    bool lineBegins = true;
    std::size_t searchedInVain = 0; // bytes, for the ends of raw strings
    int braces = 0;                 // open ones less closed ones
    int parentheses = 0;            // the same
    std::vector<Conditional> conditionals;
};

TokenList::TokenList(std::string_view text, const std::vector<std::string>& dropped) : source(text) {
    Scanner(*this).Run();
    if (!dropped.empty()) Drop(dropped);
    const std::vector<FaultAt> brackets = PairBrackets(source, tokens);
    faults.insert(faults.end(), brackets.begin(), brackets.end());
    std::sort(faults.begin(), faults.end(), [](const FaultAt& a, const FaultAt& b) { return a.at < b.at; });
}

// With its arguments where a word's pattern says so.
void TokenList::Drop(const std::vector<std::string>& words) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const int pattern = tokens[i].IsName() ? detail::FindDroppedWord(words, TextOf(tokens[i])) : -1;
        if (pattern < 0) {
            tokens[kept++] = tokens[i];
            continue;
        }
        if (!words[static_cast<std::size_t>(pattern)].ends_with("()") || !tokens[i + 1].Is('(')) continue;
        int depth = 0;
        std::size_t at = i + 1;
        for (; tokens[at].kind != TokenKind::End && !tokens[at].Is(';'); ++at) {
            if (tokens[at].Is('(')) ++depth;
            if (tokens[at].Is(')') && --depth == 0) break;
        }
        if (tokens[at].Is(')')) i = at;
    }
    tokens.resize(kept);
}

int TokenList::At(std::uint32_t offset) const {
    const auto behind =
        std::upper_bound(tokens.begin(), tokens.end() - 1, offset,
                         [](std::uint32_t at, const Token& token) { return at < token.begin; });
    if (behind == tokens.begin()) return -1;
    const int i = static_cast<int>(behind - tokens.begin()) - 1;
    const Token& token = (*this)[i];
    return offset <= token.begin + token.size ? i : -1;
}

bool TokenList::IsWordCharacter(char c) {
    return IsWordLike(c);
}

} // namespace ostraka::answers
