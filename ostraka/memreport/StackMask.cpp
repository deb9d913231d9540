// A mask is read as pieces: the elements before its first star, and behind each star those up to the next one
// that counts, the last piece going to the end. Each piece but the first may stand at any place behind the
// one before it. Trying the places of a double star one by one, with all that follows, would cost their
// product; but what follows matches from a position if and only if that isn't behind the last place where it
// matches. So a pass from the last piece back to the first double star finds the last place of each, and a
// second one in order takes the first place behind a single star, and the last behind a double one.

#include <ostraka/memreport/StackMask.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <string_view>

#include <ostraka/memreport/Call.h>

namespace {

constexpr int most = 20;

char* CopyOf(std::string_view text) {
    char* copy = new char[text.size() + 1];
    copy[text.copy(copy, text.size())] = '\0';
    return copy;
}

// Behind the first occurrence of `what`, or null. `memmem` stays linear on texts made to repeat themselves.
const char* Behind(std::string_view what, std::string_view text) {
    const void* found = memmem(text.data(), text.size(), what.data(), what.size());
    return found != nullptr ? static_cast<const char*>(found) + what.size() : nullptr;
}

// Whether `text` matches "@" and `pattern`.
bool FitsBehindStar(std::string_view pattern, std::string_view text) {
    const char* const end = text.data() + text.size();
    for (auto star = pattern.find('@'); star != std::string_view::npos; star = pattern.find('@')) {
        const char* rest = Behind(pattern.substr(0, star), text);
        if (rest == nullptr) return false;
        text = {rest, end};
        pattern.remove_prefix(star + 1);
    }
    return pattern.empty() || Behind(pattern, text) == end;
}

// The elements behind a star, up to the next star or the end of the mask.
struct Piece {
    int begin;
    int length;
    bool isDouble; // the star before it
    int last;      // the last place where this piece and all that follow match, -1 if there is none
    int place;     // where it has been matched

    bool TakesLast() const { return isDouble && length > 0; }
};

struct Pieces {
    Piece all[most];
    int count = 0;

    int FirstDouble() const {
        const Piece* found = std::find_if(all, all + count, std::mem_fn(&Piece::TakesLast));
        return static_cast<int>(found - all);
    }
};

int NextStar(const StackMask& mask, int star) {
    const int next = mask.HasAStar(star + 1);
    const int nextDouble = mask.HasADoubleStar(star + 1);
    return nextDouble > star + 1 && nextDouble < next ? nextDouble : next;
}

Pieces PiecesFrom(const StackMask& mask, int star) {
    Pieces pieces;
    while (star >= 0) {
        const int next = NextStar(mask, star);
        const int past = next >= 0 ? next : mask.size;
        pieces.all[pieces.count++] = {star + 1, past - star - 1, mask.maskCalls[star][1] == '@', -1, -1};
        star = next;
    }
    return pieces;
}

// The calls of one stack under one mask.
class Match {
public:
    Match(const StackMask& ownMask, Call* const* ownCalls, int size)
        : mask(ownMask), calls(ownCalls), n(size) {}

    bool IsAt(const Piece& piece, int place) const {
        return mask.AreEqual(piece.begin, piece.length, calls, place, n) == 1;
    }

    // A piece without elements is at every place.
    int FirstPlace(const Piece& piece, int from) const {
        if (piece.length == 0) return from;
        for (int place = from; place <= n - piece.length; ++place)
            if (IsAt(piece, place)) return place;
        return -1;
    }

    // With its end at `limit` or before.
    int LastPlace(const Piece& piece, int from, int limit) const {
        if (piece.length == 0) return limit;
        int place = std::min(n, limit) - piece.length;
        while (place >= from && !IsAt(piece, place)) --place;
        return place >= from ? place : -1;
    }

    // The position behind the last piece when they are matched from `from` on, or -1. Each piece then knows
    // its place.
    int Run(Pieces& pieces, int from) const {
        const int firstDouble = pieces.FirstDouble();
        int limit = INT_MAX;
        for (int i = pieces.count - 1; i >= firstDouble; --i)
            limit = pieces.all[i].last = LastPlace(pieces.all[i], from, limit);

        for (int i = 0; i < pieces.count; ++i) {
            Piece& piece = pieces.all[i];
            if (i >= firstDouble && piece.last < from) return -1;
            piece.place = piece.TakesLast() ? piece.last : FirstPlace(piece, from);
            if (piece.place < 0) return -1;
            from = piece.place + piece.length;
        }
        return from;
    }

private:
    const StackMask& mask;
    Call* const* calls;
    int n;
};

// The elements take one call each.
void TakeOneEach(int element, int count, int call, CallRange* taken) {
    for (int i = 0; i < count; ++i) taken[element + i] = {call + i, call + i + 1};
}

void TakePieces(const Pieces& pieces, int from, CallRange* taken) {
    for (int i = 0; i < pieces.count; ++i) {
        const Piece& piece = pieces.all[i];
        taken[piece.begin - 1] = {from, piece.place};
        TakeOneEach(piece.begin, piece.length, piece.place, taken);
        from = piece.place + piece.length;
    }
}

// The last elements of a mask, and the call where they begin.
struct Rest {
    int begin;
    int length;
    int call;
};

// `taken` may be null.
int Analyse(const StackMask& mask, Rest rest, Call* const* calls, int n, CallRange* taken) {
    if (rest.length < 1 || rest.length != mask.size - rest.begin || rest.call < 0) return -1;
    const int single = mask.HasAStar(rest.begin);
    const int twofold = mask.HasADoubleStar(rest.begin);
    const int star = twofold >= 0 && (single < 0 || twofold < single) ? twofold : single;
    const int before = (star >= 0 ? star : mask.size) - rest.begin;
    if (before > 0 && mask.AreEqual(rest.begin, before, calls, rest.call, n) != 1) return -1;
    Pieces pieces = PiecesFrom(mask, star);
    const int past = Match(mask, calls, n).Run(pieces, rest.call + before);
    if (taken == nullptr || past < 0) return past;
    TakeOneEach(rest.begin, before, rest.call, taken);
    TakePieces(pieces, rest.call + before, taken);
    return past;
}

} // namespace

int strMatch(const char* pattern, const char* text) {
    const char* star = std::strchr(pattern, '@');
    if (star == nullptr) return std::strcmp(pattern, text) == 0;
    const std::size_t before = static_cast<std::size_t>(star - pattern);
    return std::strncmp(pattern, text, before) == 0 && FitsBehindStar(star + 1, text + before);
}

[[gnu::init_priority(101)]] TAIndex StackMask::_typeIndex;

StackMask::StackMask(const char* mask, const char* maskType)
    : stackMask(CopyOf(mask)), type(maskType != nullptr ? _typeIndex.Append(maskType, nullptr, 0) : nullptr) {
    const std::string_view text(mask);
    const auto elements = std::count(text.begin(), text.end(), '!') + 1;
    if (elements > most) return;
    char* rest = CopyOf(text);
    for (size = 0; rest != nullptr; ++size) {
        maskCalls[size] = rest;
        rest = std::strchr(rest, '!');
        if (rest != nullptr) *rest++ = '\0';
    }
}

StackMask::~StackMask() {
    delete[] maskCalls[0];
    delete[] stackMask;
}

int StackMask::MatchMask(Call* const* calls, int n) const {
    return StackAnalyse(0, size, calls, 0, n);
}

int StackMask::MatchMask(Call* const* calls, int n, CallRange* taken) const {
    return Analyse(*this, {0, size, 0}, calls, n, taken);
}

int StackMask::HasAStar(int from) const {
    for (int i = std::max(from, 0); i < size; ++i)
        if (std::strcmp(maskCalls[i], "@") == 0) return i;
    return -1;
}

int StackMask::HasADoubleStar(int from) const {
    for (int i = std::max(from, 0); i < size; ++i)
        if (std::strcmp(maskCalls[i], "@@") == 0) return i;
    return -1;
}

int StackMask::AreEqual(int maskPos, int length, Call* const* calls, int callPos, int n) const {
    if (maskPos < 0 || length > size - maskPos || callPos < 0 || length > n - callPos) return -1;
    for (int i = 0; i < length; ++i) {
        const char* element = maskCalls[maskPos + i];
        if (std::strcmp(element, ".") == 0) continue;
        if (strMatch(element, calls[callPos + i]->GetCall()) != 1) return -1;
    }
    return 1;
}

int StackMask::FindListOfEqual(int maskPos, int length, Call* const* calls, int callPos, NUBRawCollint& found,
                               int n) const {
    found.RemoveAll(0);
    for (int place = callPos; place <= n - length; ++place)
        if (AreEqual(maskPos, length, calls, place, n) == 1) found.Append(place);
    return found.Size();
}

int StackMask::StackAnalyse(int maskPos, int length, Call* const* calls, int callPos, int n) const {
    return Analyse(*this, {maskPos, length, callPos}, calls, n, nullptr);
}
