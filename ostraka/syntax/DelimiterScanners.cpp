// The ends of things, found by counting brackets.
//
// A bracket scanner counts one pair of delimiters and jumps over nested pairs of other kinds, each of which
// is scanned in the same way. Nested pairs are kept on a stack of their opening characters instead of the
// machine's: the pair on top says which characters count. Only the outermost scanner needs a counter, since
// it alone can start on something else than its own delimiter.

#include <cstring>
#include <string>
#include <string_view>

#include <ostraka/syntax/NestingIndex.h>
#include <ostraka/syntax/TAPSyntaxe.h>

namespace {

// What a scanner counts and which brackets it jumps over, as characters in the direction of the walk.
struct BracketPair {
    char up;
    char down;
    const char* nested;
};

constexpr BracketPair forwardPairs[] = {{'{', '}', "(["}, {'(', ')', "["}, {'[', ']', "("}};
constexpr BracketPair backwardPairs[] = {{')', '(', "]"}, {']', '[', ")"}};

template <std::size_t n>
constexpr const BracketPair& PairOf(const BracketPair (&pairs)[n], char up) {
    for (const BracketPair& pair : pairs) {
        if (pair.up == up) return pair;
    }
    return pairs[0];
}

bool Jumps(const BracketPair& pair, char c) {
    return c == pair.nested[0] || (pair.nested[0] != 0 && c == pair.nested[1] && c != 0);
}

// Walks in steps of `step` from `pos` to `bound`, bound included. `skipLiteral` gives the far end of the
// literal at a quote, or 0.
template <int step, std::size_t n, class SkipLiteral>
int ScanBrackets(const BracketPair (&pairs)[n], char up, const char* stream, int pos, int bound,
                 SkipLiteral skipLiteral) {
    const BracketPair outermost = PairOf(pairs, up);
    BracketPair current = outermost;
    int count = 0;
    std::string nested; // the opening characters of the pairs inside the outermost scanner
    for (; step > 0 ? pos <= bound : pos >= bound; pos += step) {
        const char c = stream[pos];
        if (c == '"' || c == '\'') {
            pos = skipLiteral(c, pos);
            if (pos == 0) return 0;
        } else if (Jumps(current, c) || (c == current.up && !nested.empty())) {
            nested.push_back(c);
            current = PairOf(pairs, c);
        } else if (c == current.up) {
            ++count;
        } else if (c == current.down && nested.empty()) {
            --count;
        } else if (c == current.down) {
            nested.pop_back();
            current = nested.empty() ? outermost : PairOf(pairs, nested.back());
        }
        if (count == 0 && nested.empty()) return pos;
    }
    return 0;
}

int ScanForward(char up, const char* stream, int begin, int end) {
    if (end <= begin) return 0;
    return ScanBrackets<1>(forwardPairs, up, stream, begin, end, [=](char quote, int pos) {
        return quote == '"' ? TAPSyntaxe::SearchEndOfString(stream, pos, end)
                            : TAPSyntaxe::SearchEndOfString2(stream, pos, end);
    });
}

int ScanBackward(char up, const char* stream, int pos, int limit) {
    if (pos < limit) return 0;
    return ScanBrackets<-1>(backwardPairs, up, stream, pos, limit, [=](char quote, int at) {
        return quote == '"' ? TAPSyntaxe::SearchBeginOfString(stream, at, limit)
                            : TAPSyntaxe::SearchBeginOfString2(stream, at, limit);
    });
}

// Whether the run of backslashes directly before `pos`, counted down to `lowest`, has an even length.
bool EvenBackslashes(const char* stream, int pos, int lowest) {
    int first = pos;
    while (first > lowest && stream[first - 1] == '\\') --first;
    return (pos - first) % 2 == 0;
}

// Words that are instructions of their own, with the length of which the text must be longer.
constexpr std::string_view labels[] = {"public:", "protected:", "private:", "NUBTry", "NUBEndTry"};

bool StartsWith(const char* text, std::string_view word) {
    return std::strncmp(text, word.data(), word.size()) == 0;
}

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

} // namespace

int TAPSyntaxe::SearchEndOfTAPBloc(const char* stream, int begin, int end) {
    return ScanForward('{', stream, begin, end);
}

int TAPSyntaxe::SearchEndOfPar(const char* stream, int begin, int end) {
    return ScanForward('(', stream, begin, end);
}

int TAPSyntaxe::SearchEndOfIndex(const char* stream, int begin, int end) {
    return ScanForward('[', stream, begin, end);
}

int TAPSyntaxe::SearchBeginOfPar(const char* stream, int pos, int limit) {
    return ScanBackward(')', stream, pos, limit);
}

int TAPSyntaxe::SearchBeginOfIndex(const char* stream, int pos, int limit) {
    return ScanBackward(']', stream, pos, limit);
}

int TAPSyntaxe::SearchEndOfString(const char* stream, int begin, int end) {
    for (int i = begin + 1; i <= end; ++i) {
        if (stream[i] == '\\') {
            ++i;
        } else if (stream[i] == '"') {
            if (i == end || stream[i + 1] != '"') return i;
            ++i; // adjacent literals stand as one: "ab""cd"
        }
    }
    return 0;
}

int TAPSyntaxe::SearchEndOfString2(const char* stream, int begin, int end) {
    for (int i = begin + 1; i <= end; ++i) {
        if (stream[i] == '\\') {
            ++i;
        } else if (stream[i] == '\'') {
            return i;
        }
    }
    return 0;
}

int TAPSyntaxe::SearchBeginOfString(const char* stream, int pos, int limit) {
    for (int k = pos - 1; k >= limit; --k) {
        if (stream[k] != '"') continue;
        if (k == limit) return k;
        if (k > limit + 1 && stream[k - 1] == '"' && EvenBackslashes(stream, k - 1, limit + 1)) {
            --k; // a joint between adjacent literals
        } else if (EvenBackslashes(stream, k, limit)) {
            return k;
        }
    }
    return 0;
}

int TAPSyntaxe::SearchBeginOfString2(const char* stream, int pos, int limit) {
    for (int k = pos - 1; k >= limit; --k) {
        if (stream[k] == '\'' && EvenBackslashes(stream, k, limit)) return k;
    }
    return 0;
}

namespace ostraka::detail {

namespace {

// The end of a word and the parentheses directly behind it, as in `foo(a)`; 0 if the text starts differently.
int EndOfWordWithParenthesis(const RangeView& range, int begin) {
    const char* stream = range.Stream();
    if (stream[begin] == '(') return 0;
    int pos = begin;
    while (pos <= range.End() && IsWordCharacter(stream[pos])) ++pos;
    if (pos > range.End() || stream[pos] != '(') return 0;
    if (StartsWith(stream + begin, "return(") || StartsWith(stream + begin, "SEQUENCE(")) return 0;
    return range.EndOfParenthesis(pos);
}

int EndOfLabel(const RangeView& range, int begin) {
    for (std::string_view label : labels) {
        const int length = static_cast<int>(label.size());
        if (range.End() - begin >= length && StartsWith(range.Stream() + begin, label))
            return begin + length - 1;
    }
    return 0;
}

} // namespace

int EndOfInstruction(const RangeView& range, int begin) {
    if (begin > range.End()) return 0;
    if (const int end = EndOfWordWithParenthesis(range, begin); end > 0) return end;
    if (const int end = EndOfLabel(range, begin); end > 0) return end;
    for (int pos = range.NextMark(begin); pos <= range.End(); pos = range.NextMark(pos + 1)) {
        const char c = range.Stream()[pos];
        if (c == ';') return pos;
        if (c == '{') return pos - 1;
        if (!OpensNested(c)) continue;
        pos = range.EndOfNested(pos);
        if (pos == 0) return 0;
    }
    return range.End();
}

} // namespace ostraka::detail

int TAPSyntaxe::SearchEndOfTAPInstruction(const char* stream, int begin, int end) {
    return ostraka::detail::EndOfInstruction(ostraka::detail::RangeView(stream, end), begin);
}
