#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

// What one pass over a range of the stream finds out about its brackets, literals and operators, so that the
// builders of a tree needn't walk the same text again at every level. Every answer is the one that the plain
// scanners give; wherever the nesting isn't sound the plain scanners are asked.
namespace ostraka::detail {

// How an operator was found at a position: the level at which it competes (0 for none, `operatorAtOnce` for
// one that ends the search), how far before that position it begins, and its length.
struct OperatorMatch {
    std::uint8_t level = 0;
    std::uint8_t lead = 0;
    std::uint8_t length = 0;
};

inline constexpr std::uint8_t operatorAtOnce = 60;

// The operator that the search finds at `pos` in the text from `begin` to `end`.
OperatorMatch MatchOperator(const char* stream, int begin, int end, int pos);

// Whether a parenthesis, bracket or literal starts with `c`.
inline bool OpensNested(char c) {
    return c == '(' || c == '[' || c == '"' || c == '\'';
}

class NestingIndex {
public:
    NestingIndex(const char* text, int begin, int end);

private:
    friend class RangeView;

    enum Kind : std::uint8_t {
        Plain, // no mark
        Operator,
        Semicolon,
        OpenBrace,
        OpenParenthesis,
        OpenBracket,
        OpenLiteral,
        CloseBrace,
        CloseParenthesis,
        CloseBracket,
        CloseLiteral,
        Edge, // before the first position and behind the last
    };

    // A position of interest. A group is what stands between two parentheses or two brackets, named by the
    // mark of the opening one, or by 0 for the text outside all of them. Braces make no group: operators
    // aren't nested by them.
    struct Mark {
        int pos;
        // Of a bracket or literal of sound nesting: its partner, else 0. Of an operator: the nearest operator
        // before it in its group with a higher level, or 0.
        int link;
        int group;        // the group of the text behind the mark, negative inside a literal
        int lastOperator; // the last operator of that group up to here, or 0
        Kind kind;
        OperatorMatch match;
    };

    struct OpenPair {
        int mark;
        bool unsound; // holds a bracket without partner
    };

    static constexpr auto kinds = [] {
        std::array<Kind, 256> table{};
        for (unsigned char op : {',', '&', '|', '=', '*', '+', '-', '/', '%', '^', '<', '>', '.', ':'}) {
            table[op] = Operator;
        }
        table[';'] = Semicolon;
        table['{'] = OpenBrace;
        table['('] = OpenParenthesis;
        table['['] = OpenBracket;
        table['}'] = CloseBrace;
        table[')'] = CloseParenthesis;
        table[']'] = CloseBracket;
        table['"'] = table['\''] = OpenLiteral;
        return table;
    }();
    static Kind KindOf(char c) { return kinds[static_cast<unsigned char>(c)]; }

    int Add(int pos, Kind kind, int group, int lastOperator);
    void AddOperator(int pos);
    void AddClosing(int pos, Kind kind);
    int AddLiteral(int pos);
    void DropInnermost();
    void MarkUnsound(int mark);

    // The first mark at or behind a position from `first` to `last + 1`.
    int MarkFrom(int pos) const { return markFrom[static_cast<std::size_t>(pos - first)]; }
    const Mark& At(int mark) const { return marks[static_cast<std::size_t>(mark)]; }

    const char* stream;
    int first;
    int last;
    std::vector<Mark> marks;          // in order of position, between two edges
    std::unique_ptr<int[]> markFrom;  // for each position the first mark at or behind it
    std::vector<OpenPair> openPairs;  // only while the index is made
    int openCount[CloseLiteral] = {}; // likewise, by kind
    std::vector<int> unsoundMarks;    // what nests operators and has no partner; sorted in the end
};

// A range of the stream as the builders ask for it: begin to `end`, both included. Without an index, or where
// the range starts or ends inside a literal, it answers by the plain scanners.
class RangeView {
public:
    RangeView(const char* text, int lastPosition) : stream(text), end(lastPosition) {}
    RangeView(const char* text, const NestingIndex& nesting, int begin, int lastPosition)
        : stream(text), end(lastPosition) {
        if (begin < nesting.first || end > nesting.last || begin > end) return;
        const bool startsInside = nesting.At(nesting.MarkFrom(begin) - 1).kind == NestingIndex::OpenLiteral;
        const bool endsInside = nesting.At(nesting.MarkFrom(end + 1) - 1).kind == NestingIndex::OpenLiteral;
        if (!startsInside && !endsInside) index = &nesting;
    }

    const char* Stream() const { return stream; }
    int End() const { return end; }

    // The results of the scanners of these names over the range, from a position inside it.
    int EndOfBlock(int pos) const;
    int EndOfParenthesis(int pos) const;
    int EndOfBracket(int pos) const;
    int EndOfString(int pos) const;
    int EndOfCharacter(int pos) const;

    // The one of these that fits the parenthesis, bracket or quote at `pos`.
    int EndOfNested(int pos) const;

    // The next position at or behind `pos` that may hold a bracket, a semicolon, a comma or a quote; one past
    // the end if there is none.
    int NextMark(int pos) const {
        return index == nullptr || pos > end ? pos : PositionOrPast(index->MarkFrom(pos));
    }

    // TAPExpression::SearchOperator from `begin` to the end.
    int SearchOperator(int begin, int& length) const;

private:
    int PositionOrPast(int mark) const {
        const int pos = index->At(mark).pos;
        return pos <= end ? pos : end + 1;
    }
    template <class Scan>
    int Partner(int pos, NestingIndex::Kind kind, Scan scan) const;
    // The group of the text at a position, once all brackets up to there are counted.
    int GroupAt(int pos) const { return index->At(index->MarkFrom(pos + 1) - 1).group; }
    bool HasSoundOperators(int begin) const;
    bool IsOpenAtEnd(int group, int outermost) const;

    const char* stream;
    int end;
    const NestingIndex* index = nullptr;
};

// TAPSyntaxe::SearchEndOfTAPInstruction from `begin` to the end of the range.
int EndOfInstruction(const RangeView& range, int begin);

} // namespace ostraka::detail
