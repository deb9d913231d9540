// One pass from left to right. Brackets are paired on a stack; a closing bracket whose partner isn't
// innermost drops the unclosed ones in between, and one without any partner is passed over. Both are unsound,
// and so is each pair around them. A sound pair holds nothing but literals and sound pairs, and then the
// scanners, which see nothing but that text, give each end for the other.
//
// Operators are matched as in the middle of a text. Near the ends of a range, where the bounds decide, they
// are matched again. In between, the rightmost operator of the highest level is the last one of a chain: from
// the last operator of the range to the nearest one before it with a higher level, and so on. Levels are few,
// so that the chain is short.
//
// The bounds decide at the first three and at the last two positions of a range. A match asks whether the two
// characters before a position belong to the text, and behind it the same: `->` at the end of `a->` is an
// arrow, though the stream goes on with `*`. So what the index has matched holds from the fourth position to
// the last but two, and margins are walked position by position: a range of two characters is nothing but
// margin. The walk goes from the right, as the search does, and takes a match only if it beats those further
// right.

#include <ostraka/syntax/NestingIndex.h>

#include <algorithm>

#include <ostraka/syntax/TAPExpression.h>

namespace ostraka::detail {

namespace {

// At how many positions the bounds of a text decide what matches, at its begin and at its end.
constexpr int marginAtBegin = 3;
constexpr int marginAtEnd = 2;

} // namespace

NestingIndex::NestingIndex(const char* text, int begin, int end) : stream(text), first(begin), last(end) {
    const auto length = static_cast<std::size_t>(last - first) + 1;
    marks.reserve(length / 2 + 16);
    markFrom.reset(new int[length + 1]);
    marks.push_back({first - 1, 0, 0, 0, Edge, {}});
    for (int pos = first; pos <= last; ++pos) {
        const int next = static_cast<int>(marks.size());
        int* slot = &markFrom[static_cast<std::size_t>(pos - first)];
        for (; pos < last && KindOf(stream[pos]) == Plain; ++pos) *slot++ = next;
        *slot = next;
        switch (const Kind kind = KindOf(stream[pos])) {
        case Plain: break;
        case Operator: AddOperator(pos); break;
        case OpenLiteral: pos = AddLiteral(pos); break;
        case OpenBrace:
        case OpenParenthesis:
        case OpenBracket:
            openPairs.push_back({static_cast<int>(marks.size()), false});
            ++openCount[kind];
            if (kind == OpenBrace) {
                Add(pos, kind, marks.back().group, marks.back().lastOperator);
            } else {
                Add(pos, kind, openPairs.back().mark, 0);
            }
            break;
        case CloseBrace:
        case CloseParenthesis:
        case CloseBracket: AddClosing(pos, kind); break;
        default: Add(pos, kind, marks.back().group, marks.back().lastOperator); break;
        }
    }
    while (!openPairs.empty()) DropInnermost();
    markFrom[length] = static_cast<int>(marks.size());
    marks.push_back({last + 1, 0, 0, 0, Edge, {}});
    std::sort(unsoundMarks.begin(), unsoundMarks.end());
    openPairs = {};
}

int NestingIndex::Add(int pos, Kind kind, int group, int lastOperator) {
    marks.push_back({pos, 0, group, lastOperator, kind, {}});
    return static_cast<int>(marks.size()) - 1;
}

void NestingIndex::AddOperator(int pos) {
    const OperatorMatch match = MatchOperator(stream, first, last, pos);
    if (match.level == 0) return;
    const Mark& before = marks.back();
    int higher = before.lastOperator;
    while (higher > 0 && At(higher).match.level <= match.level) higher = At(higher).link;
    const int own = static_cast<int>(marks.size());
    marks.push_back({pos, higher, before.group, own, Operator, match});
}

// Adds both ends of the literal at `pos` and gives the position of the last character that belongs to it.
int NestingIndex::AddLiteral(int pos) {
    const Mark before = marks.back();
    const int open = Add(pos, OpenLiteral, -static_cast<int>(marks.size()), 0);
    const int close = stream[pos] == '"' ? TAPSyntaxe::SearchEndOfString(stream, pos, last)
                                         : TAPSyntaxe::SearchEndOfString2(stream, pos, last);
    const int past = close > 0 ? close : last;
    std::fill(&markFrom[static_cast<std::size_t>(pos - first)] + 1,
              &markFrom[static_cast<std::size_t>(past - first)] + 1, open + 1);
    // Backward scanners count the backslashes before a quote, which the pass from the left doesn't look at.
    const bool escaped = pos > first && stream[pos - 1] == '\\';
    if (close == 0 || escaped) MarkUnsound(open);
    if (close == 0) return last;
    marks[static_cast<std::size_t>(open)].link = Add(close, CloseLiteral, before.group, before.lastOperator);
    marks.back().link = open;
    return close;
}

void NestingIndex::AddClosing(int pos, Kind kind) {
    const Kind opening = static_cast<Kind>(kind - CloseBrace + OpenBrace);
    if (openCount[opening] == 0) {
        MarkUnsound(Add(pos, kind, marks.back().group, marks.back().lastOperator));
        return;
    }
    while (At(openPairs.back().mark).kind != opening) DropInnermost();
    const OpenPair pair = openPairs.back();
    openPairs.pop_back();
    --openCount[opening];
    const Mark& before = At(pair.mark - 1);
    const bool sameGroup = kind == CloseBrace && marks.back().group == before.group;
    const int close = Add(pos, kind, before.group, (sameGroup ? marks.back() : before).lastOperator);
    if (pair.unsound) {
        if (!openPairs.empty()) openPairs.back().unsound = true;
        return;
    }
    marks[static_cast<std::size_t>(pair.mark)].link = close;
    marks[static_cast<std::size_t>(close)].link = pair.mark;
}

// Gives up the innermost open bracket as one that never closes.
void NestingIndex::DropInnermost() {
    const int mark = openPairs.back().mark;
    --openCount[At(mark).kind];
    openPairs.pop_back();
    MarkUnsound(mark);
}

void NestingIndex::MarkUnsound(int mark) {
    const bool brace = At(mark).kind == OpenBrace || At(mark).kind == CloseBrace;
    if (!brace) unsoundMarks.push_back(mark);
    if (!openPairs.empty()) openPairs.back().unsound = true;
}

// The partner of the delimiter at `pos`, 0 if it lies behind the end.
template <class Scan>
int RangeView::Partner(int pos, NestingIndex::Kind kind, Scan scan) const {
    if (index != nullptr && pos <= end) {
        const NestingIndex::Mark& mark = index->At(index->MarkFrom(pos));
        if (mark.pos == pos && mark.kind == kind && mark.link > 0) {
            const int partner = index->At(mark.link).pos;
            return partner <= end ? partner : 0;
        }
    }
    return scan(stream, pos, end);
}

int RangeView::EndOfBlock(int pos) const {
    return Partner(pos, NestingIndex::OpenBrace, TAPSyntaxe::SearchEndOfTAPBloc);
}

int RangeView::EndOfParenthesis(int pos) const {
    return Partner(pos, NestingIndex::OpenParenthesis, TAPSyntaxe::SearchEndOfPar);
}

int RangeView::EndOfBracket(int pos) const {
    return Partner(pos, NestingIndex::OpenBracket, TAPSyntaxe::SearchEndOfIndex);
}

int RangeView::EndOfString(int pos) const {
    return Partner(pos, NestingIndex::OpenLiteral, TAPSyntaxe::SearchEndOfString);
}

int RangeView::EndOfCharacter(int pos) const {
    return Partner(pos, NestingIndex::OpenLiteral, TAPSyntaxe::SearchEndOfString2);
}

int RangeView::EndOfNested(int pos) const {
    switch (stream[pos]) {
    case '(': return EndOfParenthesis(pos);
    case '[': return EndOfBracket(pos);
    case '"': return EndOfString(pos);
    default: return EndOfCharacter(pos);
    }
}

// Whether every bracket that closes between `begin` and the end was opened there too, and none is unsound.
// Brackets that are open at the end don't matter: for a walk from the right they nest nothing. A bracket at
// the very first position of the stream can't be told from none by the backward scanners.
bool RangeView::HasSoundOperators(int begin) const {
    if (index == nullptr || begin < index->first) return false;
    const int firstMark = index->MarkFrom(begin);
    const int pastMark = index->MarkFrom(end + 1);
    const int outermost = index->At(firstMark - 1).group;
    for (int group = GroupAt(end); group != outermost; group = index->At(group - 1).group) {
        if (group < firstMark) return false;
    }
    if (begin == 0 && index->At(firstMark).pos == 0 && index->At(firstMark).kind != NestingIndex::Operator) {
        return false;
    }
    const auto& unsound = index->unsoundMarks;
    if (unsound.empty()) return true;
    const auto nearest = std::lower_bound(unsound.begin(), unsound.end(), firstMark);
    return nearest == unsound.end() || *nearest >= pastMark;
}

// Whether the group is `outermost`, or one that lies in it and is still open at the end.
bool RangeView::IsOpenAtEnd(int group, int outermost) const {
    int open = GroupAt(end);
    while (open != group && open != outermost) open = index->At(open - 1).group;
    return open == group;
}

int RangeView::SearchOperator(int begin, int& length) const {
    if (begin >= end) return 0;
    if (!HasSoundOperators(begin)) return TAPExpression::SearchOperator(stream, begin, end, length);

    OperatorMatch best;
    int bestPosition = 0;
    auto consider = [&](int pos, const OperatorMatch& match) {
        if (match.level <= best.level) return;
        best = match;
        bestPosition = pos - match.lead;
    };
    const int outermost = index->At(index->MarkFrom(begin) - 1).group;
    auto considerMargin = [&](int from, int downTo) {
        for (int pos = from; pos >= downTo; --pos) {
            if (NestingIndex::KindOf(stream[pos]) == NestingIndex::Operator &&
                IsOpenAtEnd(GroupAt(pos), outermost)) {
                consider(pos, MatchOperator(stream, begin, end, pos));
            }
        }
    };

    considerMargin(end, std::max(begin, end - marginAtEnd + 1));
    const int lowest = begin + marginAtBegin;
    int lastMark = index->MarkFrom(end + 1) - 1;
    for (int group = GroupAt(end);; group = index->At(lastMark).group) {
        int mark = index->At(lastMark).lastOperator;
        while (index->At(mark).pos > end - marginAtEnd) mark = index->At(mark - 1).lastOperator;
        if (index->At(mark).pos >= lowest) {
            while (index->At(index->At(mark).link).pos >= lowest) mark = index->At(mark).link;
            consider(index->At(mark).pos, index->At(mark).match);
        }
        if (group == outermost) break;
        lastMark = group - 1; // in front of the bracket that opens the group
    }
    considerMargin(std::min(lowest - 1, end - marginAtEnd), begin);

    if (best.level > 0) length = best.length;
    return bestPosition;
}

} // namespace ostraka::detail
