// At which operator a text is split. The levels are rows of one table, tried from the top; the highest level
// wins, and among equals the rightmost. A pair of && or ||, and a colon that stands alone, end the search.

#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <string_view>

#include <ostraka/syntax/NestingIndex.h>
#include <ostraka/syntax/TAPExpression.h>

namespace {

// A set of characters.
class CharacterSet {
public:
    constexpr explicit CharacterSet(std::string_view characters) {
        for (char c : characters) holds[static_cast<unsigned char>(c)] = true;
    }
    constexpr bool operator[](char c) const { return holds[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> holds{};
};

constexpr CharacterSet combinesWithEqual("><&|!^%/-+*=");

// Characters that a longer operator can consist of.
constexpr CharacterSet partOfLonger("&|=*/+-%!^<>.:");

// Which pairs of characters are entries of the table of pairs. Both tables of operators are searched from
// their second entry on.
constexpr auto pairs = [] {
    std::array<std::array<bool, 128>, 128> table{};
    for (std::size_t i = 1; TAPSyntaxe::operator_2[i] != nullptr; ++i) {
        const char* entry = TAPSyntaxe::operator_2[i];
        table[static_cast<unsigned char>(entry[0])][static_cast<unsigned char>(entry[1])] = true;
    }
    return table;
}();

bool Entry2At(const char* text) {
    return partOfLonger[text[0]] && partOfLonger[text[1]] &&
           pairs[static_cast<unsigned char>(text[0])][static_cast<unsigned char>(text[1])];
}

bool Entry3At(const char* text) {
    if (!partOfLonger[text[0]] || !partOfLonger[text[1]]) return false;
    for (std::size_t i = 1; TAPSyntaxe::operator_3[i] != nullptr; ++i) {
        if (std::string_view(text, 2) == std::string_view(TAPSyntaxe::operator_3[i], 2) &&
            text[2] == TAPSyntaxe::operator_3[i][2]) {
            return true;
        }
    }
    return false;
}

// A run of signs is read in pairs from the left. For a pair of signs at `first` and behind it: 0 if a third
// one stands before them, else 2 at the beginning of the text and 3 behind it. Nothing where no pair stands.
std::optional<int> PairOfSigns(const char* stream, int begin, int first) {
    for (char sign : {'-', '+'}) {
        if (first < begin || stream[first] != sign || stream[first + 1] != sign) continue;
        if (first == begin) return 2;
        return stream[first - 1] == sign ? 0 : 3;
    }
    return std::nullopt;
}

int LongerThanPair(const char* stream, int begin, int end, int pos) {
    if (pos - 2 >= begin && Entry3At(stream + pos - 2)) return 3;
    if (pos < end && pos > 0 && Entry3At(stream + pos - 1)) return 3;
    return PairOfSigns(stream, begin, pos - 2).value_or(0);
}

int LongerThanOne(const char* stream, int begin, int end, int pos) {
    if (pos - 2 >= begin && Entry3At(stream + pos - 2)) return 3;
    if (pos > begin && pos < end && Entry3At(stream + pos - 1)) return 3;
    if (pos + 2 <= end && Entry3At(stream + pos)) return 3;
    if (pos > begin && Entry2At(stream + pos - 1)) return 2;
    if (pos < end && Entry2At(stream + pos)) return 2;
    if (const auto pair = PairOfSigns(stream, begin, pos - 1)) return *pair;
    const bool startsPair =
        pos < end && (stream[pos] == '+' || stream[pos] == '-') && stream[pos] == stream[pos + 1];
    return startsPair ? 2 : 0;
}

// A character of the text with its neighbours.
struct Spot {
    const char* stream;
    int begin;
    int end;
    int pos;

    char At(int offset) const { return stream[pos + offset]; }
    bool Has(int before) const { return pos - before >= begin; }
    bool Short(int n) const { return TAPSyntaxe::ExistLongerOp(stream, begin, end, pos, n) == 0; }
};

bool Alone(const Spot& s) {
    return s.Short(1);
}

bool AloneWithoutTwin(const Spot& s) {
    if (s.Has(1) && s.At(-1) == s.At(0)) return false;
    if (s.pos < s.end && s.At(1) == s.At(0)) return false;
    return s.Short(1);
}

bool ShiftAssignment(const Spot& s) {
    return s.Has(2) && s.At(-1) == s.At(-2) && (s.At(-1) == '<' || s.At(-1) == '>');
}

bool PairWithEqual(const Spot& s) {
    return s.Has(1) && combinesWithEqual[s.At(-1)] && s.Short(2);
}

bool Twins(const Spot& s) {
    return s.Has(1) && s.At(-1) == s.At(0);
}

bool Shift(const Spot& s) {
    return Twins(s) && s.Short(2);
}

bool ArrowStar(const Spot& s) {
    return s.Has(2) && s.At(-1) == '>' && s.At(-2) == '-' && !(s.pos >= 3 && s.At(-3) == '-');
}

bool Arrow(const Spot& s) {
    return s.Has(1) && s.At(-1) == '-' && !(s.Has(2) && s.At(-2) == '-') && s.Short(2);
}

bool DotStar(const Spot& s) {
    return s.Has(1) && s.At(-1) == '.' && s.Short(2);
}

struct LevelRow {
    std::uint8_t level;
    const char* characters; // those at which the row applies
    bool (*taken)(const Spot&);
    std::uint8_t lead; // how far before the position the operator begins
    std::uint8_t length;
};

constexpr LevelRow levels[] = {
    {ostraka::detail::operatorAtOnce, "&|", Twins, 1, 2},
    {ostraka::detail::operatorAtOnce, ":", Alone, 0, 1},
    {53, ",", Alone, 0, 1},
    {50, "=", ShiftAssignment, 2, 3},
    {50, "=", PairWithEqual, 1, 2},
    {50, "=", Alone, 0, 1},
    {50, "<>", AloneWithoutTwin, 0, 1},
    {45, "+-", Alone, 0, 1},
    {40, "%", Alone, 0, 1},
    {35, "*&/", Alone, 0, 1},
    {30, "|", Alone, 0, 1},
    {25, "^", Alone, 0, 1},
    {20, "<>", Shift, 1, 2},
    {10, "*", ArrowStar, 2, 3},
    {10, ">", Arrow, 1, 2},
    {10, "*", DotStar, 1, 2},
    {10, ".", Alone, 0, 1},
    {5, ":", Twins, 1, 2},
    {3, "+-", Twins, 1, 2},
};

// For each character the match of an operator that stands between characters of no operator.
constexpr auto loneMatches = [] {
    std::array<ostraka::detail::OperatorMatch, 256> matches{};
    for (const LevelRow& row : levels) {
        if (row.taken != Alone && row.taken != AloneWithoutTwin) continue;
        for (const char* c = row.characters; *c != 0; ++c) {
            auto& match = matches[static_cast<unsigned char>(*c)];
            if (match.level == 0) match = {row.level, row.lead, row.length};
        }
    }
    return matches;
}();

// For each character the rows that apply at it, as bits.
constexpr auto rowsOf = [] {
    std::array<std::uint32_t, 256> rows{};
    for (std::size_t i = 0; i < std::size(levels); ++i) {
        for (const char* c = levels[i].characters; *c != 0; ++c) {
            rows[static_cast<unsigned char>(*c)] |= std::uint32_t{1} << i;
        }
    }
    return rows;
}();

// Steps over what is nested from the right: the position of the opening delimiter, `pos` itself where nothing
// closes, and 0 where the delimiter has no partner.
int SkipNestedBackward(const char* stream, int pos, int begin) {
    switch (stream[pos]) {
    case ')': return TAPSyntaxe::SearchBeginOfPar(stream, pos, begin);
    case ']': return TAPSyntaxe::SearchBeginOfIndex(stream, pos, begin);
    case '"': return TAPSyntaxe::SearchBeginOfString(stream, pos, begin);
    case '\'': return TAPSyntaxe::SearchBeginOfString2(stream, pos, begin);
    default: return pos;
    }
}

bool ClosesFromRight(char c) {
    return c == ')' || c == ']' || c == '"' || c == '\'';
}

// The length of the operator that starts at `pos`, in the order of the earlier search; 0 for none.
int OldOperatorLength(const char* stream, int end, int pos) {
    static constexpr std::string_view doubles[] = {"->", "::", "==", "<<", ">>", "!=", "&&", "||"};
    const std::string_view text(stream + pos, pos < end ? 2 : 1);
    for (std::string_view pair : doubles) {
        if (text == pair) return 2;
    }
    return std::string_view("+-.=<>&|").find(text[0]) != std::string_view::npos ? 1 : 0;
}

int StarLength(const char* stream, int, int pos) {
    return stream[pos] == '*' ? 1 : 0;
}

// Walks from `begin` to `end` over what isn't nested: the first position that `lengthAt` gives a length for,
// -1 for none, and nothing where a delimiter has no partner.
std::optional<int> FirstMatch(const char* stream, int begin, int end, int& length,
                              int (*lengthAt)(const char*, int, int)) {
    const ostraka::detail::RangeView range(stream, end);
    for (int pos = begin; pos <= end; ++pos) {
        if (ostraka::detail::OpensNested(stream[pos])) {
            pos = range.EndOfNested(pos);
            if (pos == 0) return std::nullopt;
        }
        if (const int found = lengthAt(stream, end, pos); found > 0) {
            length = found;
            return pos;
        }
    }
    return -1;
}

} // namespace

namespace ostraka::detail {

OperatorMatch MatchOperator(const char* stream, int begin, int end, int pos) {
    const char c = stream[pos];
    const OperatorMatch lone = loneMatches[static_cast<unsigned char>(c)];
    if (lone.level == 0) return {};
    const bool stuckToOthers =
        (pos > begin && partOfLonger[stream[pos - 1]]) || (pos < end && partOfLonger[stream[pos + 1]]);
    if (!stuckToOthers || c == ',') return lone;
    const Spot spot{stream, begin, end, pos};
    for (std::uint32_t rows = rowsOf[static_cast<unsigned char>(c)]; rows != 0; rows &= rows - 1) {
        const LevelRow& row = levels[std::countr_zero(rows)];
        if (row.taken(spot)) return {row.level, row.lead, row.length};
    }
    return {};
}

} // namespace ostraka::detail

int TAPSyntaxe::ExistLongerOp(const char* stream, int begin, int end, int pos, int n) {
    if (n > 2) return 0;
    return n == 2 ? LongerThanPair(stream, begin, end, pos) : LongerThanOne(stream, begin, end, pos);
}

int TAPExpression::SearchOperator(const char* stream, int begin, int end, int& length) {
    using ostraka::detail::OperatorMatch;
    if (begin >= end) return 0;
    OperatorMatch best;
    int bestPosition = 0;
    for (int pos = end; pos >= begin && best.level < ostraka::detail::operatorAtOnce; --pos) {
        if (ClosesFromRight(stream[pos])) {
            pos = SkipNestedBackward(stream, pos, begin);
            if (pos == 0) return 0;
        }
        const OperatorMatch match = ostraka::detail::MatchOperator(stream, begin, end, pos);
        if (match.level <= best.level) continue;
        best = match;
        bestPosition = pos - match.lead;
    }
    if (best.level > 0) length = best.length;
    return bestPosition;
}

int TAPExpression::SearchOperator_old(const char* stream, int begin, int end, int& length) {
    if (begin >= end) return 0;
    for (auto lengthAt : {OldOperatorLength, StarLength}) {
        const auto found = FirstMatch(stream, begin, end, length, lengthAt);
        if (!found) return 0;
        if (*found >= 0) return *found;
    }
    length = 0;
    return 0;
}
