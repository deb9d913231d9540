// One pass with a stack of what is open; a brace is only closed by a brace, which leaves what is open in it
// without a partner. A second pass, where the first left braces over, looks at how far lines are indented:
//
//     void f() {
//         if (x) {      <- closed by nothing, since the next brace stands below `void`
//     }
//     void g() {
//
// It counts if it doesn't leave more over than the first.

#include <answers/facts/Brackets.h>

#include <unordered_map>
#include <utility>

namespace ostraka::answers {

namespace {

class Pairer {
public:
    Pairer(std::string_view text, std::vector<Token>& paired, bool looks)
        : source(text), tokens(paired), looksAtLines(looks) {}

    void Run() {
        const int count = static_cast<int>(tokens.size()) - 1;
        for (int i = 0; i < count; ++i) {
            tokens[Index(i)].partner = -1;
            if (looksAtLines) LookAtLine(i);
            if (tokens[Index(i)].kind == TokenKind::Mark) Take(i);
        }
        for (const int bracket : open) Note(bracket);
    }

    std::vector<FaultAt> faults;
    bool leavesBraces = false;

private:
    struct Level {
        int parentheses = 0;
        int squares = 0;
        int indent = 0;          // of the statement that opens it
        bool isFunction = false; // or a statement with parentheses
        bool isIndented = false; // its first line stands further in
        bool hasLines = false;
    };

    static std::size_t Index(int i) { return static_cast<std::size_t>(i); }

    void Note(int bracket) {
        const Token& token = tokens[Index(bracket)];
        faults.push_back({LexicalFault::Bracket, token.begin});
        leavesBraces = leavesBraces || token.code == '{' || token.code == '}';
    }

    void Take(int i) {
        switch (tokens[Index(i)].code) {
        case '{': return Open(i);
        case '(':
            ++levels.back().parentheses;
            open.push_back(i);
            return;
        case '[':
            ++levels.back().squares;
            open.push_back(i);
            return;
        case ')': return Close(i, '(', levels.back().parentheses);
        case ']': return Close(i, '[', levels.back().squares);
        case '}': return CloseBrace(i);
        default: return;
        }
    }

    void Open(int i) {
        Level level;
        level.indent = beginsLine ? indent : statementIndent;
        level.isFunction = i > 0 && tokens[Index(i - 1)].Is(')');
        if (looksAtLines) ++openAt[level.indent];
        levels.push_back(level);
        open.push_back(i);
    }

    void Pair(int close) {
        tokens[Index(open.back())].partner = close;
        tokens[Index(close)].partner = open.back();
        open.pop_back();
    }

    void Drop() {
        const int dropped = open.back();
        Note(dropped);
        switch (tokens[Index(dropped)].code) {
        case '(': --levels.back().parentheses; break;
        case '[': --levels.back().squares; break;
        default: LeaveLevel();
        }
        open.pop_back();
    }

    void LeaveLevel() {
        if (looksAtLines) --openAt[levels.back().indent];
        levels.pop_back();
    }

    void Close(int i, char wanted, int& count) {
        if (count == 0) return Note(i);
        while (tokens[Index(open.back())].code != wanted) Drop();
        Pair(i);
        --count;
    }

    void CloseBrace(int i) {
        if (levels.size() == 1) return Note(i);
        if (looksAtLines && beginsLine) {
            if (openAt[indent] > 0) {
                while (levels.back().indent != indent) Drop();
            } else if (levels.back().indent < indent) {
                return Note(i);
            }
        }
        while (tokens[Index(open.back())].code != '{') Drop();
        Pair(i);
        LeaveLevel();
    }

    // Each byte between two tokens is looked at once.
    void LookAtLine(int i) {
        const Token& token = tokens[Index(i)];
        beginsLine = i == 0;
        for (; seen < token.begin; ++seen) {
            const char c = source[seen];
            if (c == '\n') {
                beginsLine = true;
                indent = 0;
            } else if (beginsLine) {
                indent = c == '\t' ? indent / 8 * 8 + 8 : indent + 1;
            }
        }
        seen = token.begin + token.size;
        const Token before = i > 0 ? tokens[Index(i - 1)] : Token{};
        const bool endsStatement = i == 0 || before.Is(';') || before.Is('{') || before.Is('}');
        if (endsStatement || (beginsLine && before.Is(':'))) statementIndent = indent;
        if (beginsLine && !std::exchange(levels.back().hasLines, true))
            levels.back().isIndented = indent > levels.back().indent;
        if (beginsLine && endsStatement) EndBodies(i);
    }

    // Whether a declaration may begin with the token: two words, or one and the mark of a type.
    bool LooksDeclared(int i) const {
        constexpr Keyword others[] = {Kw_return, Kw_delete, Kw_else,  Kw_case, Kw_throw,
                                      Kw_new,    Kw_do,     Kw_catch, Kw_goto, Kw_co_await};
        const Token& token = tokens[Index(i)];
        const Token& next = tokens[Index(i + 1)];
        if (token.kind != TokenKind::Word) return false;
        for (const Keyword other : others)
            if (token.code == other) return false;
        return next.kind == TokenKind::Word || next.Is('*') || next.Is('&') || next.Is('<') ||
               next.Is(ColonsMark);
    }

    // What begins no further in than the function before it isn't in that function.
    void EndBodies(int i) {
        if (!LooksDeclared(i)) return;
        int outermost = -1;
        const auto isLeft = [this] {
            const Level& level = levels.back();
            return level.isFunction && level.isIndented && level.indent >= indent;
        };
        while (levels.size() > 1 && isLeft()) {
            while (tokens[Index(open.back())].code != '{') Drop();
            outermost = open.back();
            Drop();
        }
        if (outermost >= 0) tokens[Index(outermost)].partner = i - 1;
    }

    const std::string_view source;
    std::vector<Token>& tokens;
    const bool looksAtLines;
    std::vector<int> open;
    std::vector<Level> levels = std::vector<Level>(1);
    std::unordered_map<int, int> openAt; // braces by their statement's indent
    std::uint32_t seen = 0;              // bytes before it were looked at
    int indent = 0;                      // of the line in hand
    int statementIndent = 0;
    bool beginsLine = true;
};

} // namespace

std::vector<FaultAt> PairBrackets(std::string_view source, std::vector<Token>& tokens) {
    Pairer plain(source, tokens, false);
    plain.Run();
    if (!plain.leavesBraces) return std::move(plain.faults);
    std::vector<Token> others = tokens;
    Pairer careful(source, others, true);
    careful.Run();
    if (careful.faults.size() > plain.faults.size()) return std::move(plain.faults);
    tokens = std::move(others);
    return std::move(careful.faults);
}

} // namespace ostraka::answers
