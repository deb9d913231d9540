// One pass over the bytes. Most of a file are runs of letters and digits, which go to the stream as they are:
// 64 bytes at a time are classified into a mask of special characters, and what lies between two of them is
// copied in chunks of 16 with their places. The specials are all characters up to the slash, among which are
// blanks, quotes, hashes and most marks that blanks yield to; colon, semicolon and backslash; and those
// letters that may end a word that is taken out of the stream or begin a dialect word. Such a letter counts
// only beside its neighbour in the word, as `n` behind `r`, so that it seldom turns up elsewhere. A special
// that is none after all is stored like the others.
//
// What one character leaves to the next, beside the stream itself:
//
// - Which line it stands on, in two views. For places, a line starts at each newline but those of character
//   literals and of dialect words: `line` counts, and the column of a character is its distance from
//   `lineOrigin`, so that the newline itself has column 1 of the line that it starts. A dialect word moves
//   the origin, since its parenthesis has no column of its own. For directives, a line starts at each newline
//   that isn't in a string either: `visualLine`, behind which `firstNonBlank` is found for the first hash.
// - How far the lines are off: `hiddenLines`. Only what tells a place in the file itself adds it.
// - Whether the stream joins what is apart in the source: `joined`. The mask looks at the source, where
//   `exter` and `n` are no word if a comment parts them, so a plain character behind such a joint goes
//   through the removal of words alone.
// - The high bits of the last place: `wide` and the last of `marks`. What is taken out at the stream's end
//   can leave marks behind it; they go when the next character is stored, or in the end.

#include <ostraka/syntax/StreamNormaliser.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include <ostraka/syntax/DialectWords.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ostraka::detail {

namespace {

enum CharacterClass : std::uint8_t {
    YieldsBlank = 1, // a blank before it goes
    DropsBlank = 2,  // a blank behind it goes
};

constexpr auto classes = [] {
    std::array<std::uint8_t, 256> table{};
    table[' '] = DropsBlank;
    for (unsigned char c : {'(', ')', ',', ';', '-', '\'', '"', '*', ':'}) table[c] |= YieldsBlank;
    for (unsigned char c : {'(', ')', ',', ';', '>', '"', '\''}) table[c] |= DropsBlank;
    return table;
}();

std::uint8_t ClassOf(char c) {
    return classes[static_cast<unsigned char>(c)];
}

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

// Behind the spaces at `pos`; other blanks don't count.
const char* SkipSpaces(const char* pos, const char* past) {
    while (pos < past && *pos == ' ') ++pos;
    return pos;
}

const char* FindOrPast(const char* pos, const char* past, char c) {
    const void* found = std::memchr(pos, c, static_cast<std::size_t>(past - pos));
    return found != nullptr ? static_cast<const char*>(found) : past;
}

// Whether the run of backslashes that ends before `pos`, and begins at `lowest` at the earliest, is even.
bool EvenBackslashes(const char* pos, const char* lowest) {
    const char* first = pos;
    while (first > lowest && first[-1] == '\\') --first;
    return (pos - first) % 2 == 0;
}

constexpr std::size_t usualIncludes = 8;

constexpr std::ptrdiff_t dialectLength = 8;
constexpr std::ptrdiff_t dialectMargin = 10; // so close to the end of the file no word is rewritten

#if defined(__SSE2__)

std::uint64_t SpecialsOf16(const char* pos, __m128i before, __m128i behind) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pos));
    const auto is = [](__m128i v, char c) { return _mm_cmpeq_epi8(v, _mm_set1_epi8(c)); };
    // Everything up to '/', then ':' and ';', then the backslash.
    __m128i special = _mm_cmpeq_epi8(_mm_min_epu8(text, _mm_set1_epi8('/')), text);
    special = _mm_or_si128(special, _mm_or_si128(is(text, ':'), _mm_or_si128(is(text, ';'), is(text, '\\'))));
    const __m128i ends = _mm_or_si128(_mm_and_si128(is(text, 'n'), is(before, 'r')),
                                      _mm_and_si128(is(text, 'l'), is(before, 'l')));
    const __m128i starts = _mm_or_si128(_mm_and_si128(is(text, 'N'), is(behind, 'U')),
                                        _mm_and_si128(is(text, 'S'), is(behind, 'E')));
    special = _mm_or_si128(special, _mm_or_si128(ends, starts));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(special)));
}

// Reads one byte before `pos` and 64 behind it.
std::uint64_t SpecialsOf64(const char* pos) {
    std::uint64_t mask = 0;
    for (int i = 0; i < 64; i += 16) {
        const auto load = [](const char* from) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        };
        mask |= SpecialsOf16(pos + i, load(pos + i - 1), load(pos + i + 1)) << i;
    }
    return mask;
}

#else

std::uint64_t SpecialsOf64(const char* pos) {
    std::uint64_t mask = 0;
    for (int i = 0; i < 64; ++i) {
        const char c = pos[i];
        const bool special = static_cast<unsigned char>(c) <= '/' || c == ':' || c == ';' || c == '\\' ||
                             (c == 'n' && pos[i - 1] == 'r') || (c == 'l' && pos[i - 1] == 'l') ||
                             (c == 'N' && pos[i + 1] == 'U') || (c == 'S' && pos[i + 1] == 'E');
        mask |= std::uint64_t{special} << i;
    }
    return mask;
}

#endif

// The newlines from `pos` to `past`, and behind the last of them.
struct Newlines {
    int count = 0;
    const char* behindLast = nullptr;
};

Newlines CountNewlines(const char* pos, const char* past) {
    Newlines result;
    result.count = static_cast<int>(std::count(pos, past, '\n'));
    if (result.count == 0) return result;
    result.behindLast =
        static_cast<const char*>(memrchr(pos, '\n', static_cast<std::size_t>(past - pos))) + 1;
    return result;
}

} // namespace

StreamNormaliser::StreamNormaliser(const char* sourceText, const char* sourcePast, std::ptrdiff_t sizeOfFile,
                                   char* outText, short* outLines, short* outCols)
    : text(sourceText), past(sourcePast), fileSize(sizeOfFile), out(outText), lines(outLines), cols(outCols),
      visualLine(sourceText) {}

TAPFailure StreamNormaliser::Run(TAIndex& includes, TAIndex& macros) {
    includeNames = &includes;
    macroTexts = &macros;
    Position pos = text;
    while (pos < past) {
        const Position special = NextSpecial(pos);
        if (joined && special > pos) {
            // The character may complete a word whose beginning stands elsewhere in the source.
            joined = false;
            StoreRun(pos++, 1);
            RemoveWordsAtEnd();
            continue;
        }
        StoreRun(pos, special - pos);
        pos = special < past ? HandleSpecial(special) : past;
        if (failure.code != SFAIL_None) break;
    }
    return failure;
}

// The mask of the 64 bytes at `pos`, of which those behind the end count as plain.
std::uint64_t StreamNormaliser::SpecialsAt(Position pos) const {
    if (pos > text && past - pos > blockLength) return SpecialsOf64(pos);
    char padded[blockLength + 2] = {};
    const std::ptrdiff_t available = std::min(past - pos, blockLength + 1);
    if (pos > text) padded[0] = pos[-1];
    std::memcpy(padded + 1, pos, static_cast<std::size_t>(available));
    const std::uint64_t mask = SpecialsOf64(padded + 1);
    return available >= blockLength ? mask : mask & ((std::uint64_t{1} << available) - 1);
}

StreamNormaliser::Position StreamNormaliser::NextSpecial(Position pos) {
    for (;;) {
        if (blockBegin == nullptr || pos < blockBegin || pos - blockBegin >= blockLength) {
            blockBegin = pos;
            specials = SpecialsAt(pos);
        }
        const std::uint64_t ahead = specials >> (pos - blockBegin);
        if (ahead != 0) return pos + std::countr_zero(ahead);
        const Position next = blockBegin + blockLength;
        if (next >= past) return past;
        pos = next;
    }
}

StreamNormaliser::Position StreamNormaliser::HandleSpecial(Position pos) {
    const char c = *pos;
    joined = false;
    if (IsBlank(c)) return BlankAt(pos);
    switch (c) {
    case '"': return StringAt(pos);
    case '\'': return CharacterAt(pos);
    case '/': return SlashAt(pos);
    case '#': return HashAt(pos);
    case '\\': joined = true; return pos + 1;
    case 'n':
    case 'l':
    case 'N':
    case 'S': return LetterAt(pos);
    default: break;
    }
    StoreReduced(c, Column(pos));
    if (c == ')' && length > 1 && out[length - 2] == 't') RemoveWordsAtEnd();
    return pos + 1;
}

void StreamNormaliser::Store(char c, int column) {
    if (wide || ((line | column) >> 16) != 0) NotePlace(column);
    out[length] = c;
    lines[length] = static_cast<short>(line);
    cols[length] = static_cast<short>(column);
    ++length;
}

// Stores characters of one line.
void StreamNormaliser::StoreRun(Position from, std::ptrdiff_t count) {
    if (count <= 0) return;
    const int column = Column(from);
    const int lastColumn = column + static_cast<int>(count) - 1;
    if (wide || ((line | lastColumn) >> 16) != 0) {
        if (column >> 16 != lastColumn >> 16) {
            for (; count > 0; --count, ++from) Store(*from, Column(from));
            return;
        }
        NotePlace(column);
    }
#if defined(__SSE2__)
    const auto at = [](auto* array) { return reinterpret_cast<__m128i*>(array); };
    const __m128i lineOfAll = _mm_set1_epi16(static_cast<short>(line));
    __m128i places =
        _mm_add_epi16(_mm_set1_epi16(static_cast<short>(column)), _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7));
    const __m128i half = _mm_set1_epi16(chunk / 2);
    std::ptrdiff_t end = length;
    for (; count > 0 && past - from >= chunk; count -= chunk, from += chunk, end += chunk) {
        _mm_storeu_si128(at(out + end), _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        _mm_storeu_si128(at(lines + end), lineOfAll);
        _mm_storeu_si128(at(lines + end + chunk / 2), lineOfAll);
        _mm_storeu_si128(at(cols + end), places);
        places = _mm_add_epi16(places, half);
        _mm_storeu_si128(at(cols + end + chunk / 2), places);
        places = _mm_add_epi16(places, half);
    }
    length = end + std::min<std::ptrdiff_t>(count, 0);
#endif
    for (; count > 0; --count, ++from, ++length) {
        out[length] = *from;
        lines[length] = static_cast<short>(line);
        cols[length] = static_cast<short>(Column(from));
    }
}

// Sets a mark at the next stream position if the high bits of its place aren't those of the last mark. Marks
// of characters that have been taken out again go.
void StreamNormaliser::NotePlace(int column) {
    wide = true;
    while (!marks.empty() && marks.back().pos >= length) marks.pop_back();
    const int lineHigh = marks.empty() ? 0 : marks.back().lineHigh;
    const int colHigh = marks.empty() ? 0 : marks.back().colHigh;
    if (lineHigh == line >> 16 && colHigh == column >> 16) return;
    marks.push_back({static_cast<int>(length), line >> 16, column >> 16});
}

// Stores a character that is no blank, and takes out a blank before it where that has no meaning.
void StreamNormaliser::StoreReduced(char c, int column) {
    if ((ClassOf(c) & YieldsBlank) != 0 && Last() == ' ') --length;
    Store(c, column);
}

void StreamNormaliser::StartLine(Position newline) {
    ++line;
    lineOrigin = newline - text - 1;
    visualLine = newline + 1;
    firstNonBlank = 0;
}

// Where a byte of the current line stands in the file itself, whatever the places of the stream leave out.
TAPSyntaxePoint StreamNormaliser::PointInFile(Position pos) const {
    const void* newline = memrchr(text, '\n', static_cast<std::size_t>(pos - text));
    const Position lineBegin = newline != nullptr ? static_cast<Position>(newline) + 1 : text;
    return TAPSyntaxePoint(line + hiddenLines, static_cast<int>(pos - lineBegin) + 2);
}

bool StreamNormaliser::RemoveAtEnd(std::string_view word) {
    const auto wordLength = static_cast<std::ptrdiff_t>(word.size());
    if (length < wordLength || word.compare(0, word.size(), out + length - wordLength, word.size()) != 0) {
        return false;
    }
    length -= wordLength;
    return true;
}

// Takes out words of the dialect that mean nothing to the parser, whatever stands before them.
void StreamNormaliser::RemoveWordsAtEnd() {
    for (std::string_view word : {"extern", "__declspec(dllimport)", "__declspec(dllexport)", "__stdcall"}) {
        if (RemoveAtEnd(word)) joined = true;
    }
}

// Whatever follows the first blank of a run is dropped anyway, since the stream now ends in a blank or in
// something that drops them.
StreamNormaliser::Position StreamNormaliser::BlankAt(Position pos) {
    if (*pos == '\n') StartLine(pos);
    if ((ClassOf(Last()) & DropsBlank) == 0) Store(' ', Column(pos));
    return SkipSpaces(pos + 1, past);
}

StreamNormaliser::Position StreamNormaliser::StringAt(Position pos) {
    StoreReduced('"', Column(pos));
    const Position first = pos + 1;
    for (Position from = first;;) {
        const Position stop = std::find_if(from, past, [](char c) { return c == '"' || c == '\n'; });
        StoreRun(from, stop - from);
        if (stop == past) return past;
        if (*stop == '\n') {
            ++line;
            lineOrigin = stop - text - 1;
        }
        Store(*stop, Column(stop));
        from = stop + 1;
        if (*stop == '"' && EvenBackslashes(stop, first)) return from;
    }
}

// A newline in a character literal starts no line.
StreamNormaliser::Position StreamNormaliser::CharacterAt(Position pos) {
    StoreReduced('\'', Column(pos));
    for (Position quote = pos + 1;; ++quote) {
        quote = FindOrPast(quote, past, '\'');
        const bool escaped = quote < past && quote[-1] == '\\' && quote[-2] != '\\';
        if (escaped) continue;
        const Position behind = quote < past ? quote + 1 : past;
        StoreRun(pos + 1, behind - (pos + 1));
        hiddenLines += static_cast<int>(std::count(pos + 1, behind, '\n'));
        return behind;
    }
}

// A comment leaves nothing behind; only the newline that ends a line comment becomes a blank.
StreamNormaliser::Position StreamNormaliser::SlashAt(Position pos) {
    const char next = pos + 1 < past ? pos[1] : '\0';
    if (next == '/') return FindOrPast(pos, past, '\n');
    if (next != '*') {
        StoreReduced('/', Column(pos));
        return pos + 1;
    }
    Position end = pos + 2;
    do {
        end = FindOrPast(std::min(end + 1, past), past, '/');
    } while (end < past && end[-1] != '*');
    if (const Newlines newlines = CountNewlines(pos, end); newlines.count > 0) {
        line += newlines.count - 1;
        StartLine(newlines.behindLast - 1);
    }
    joined = true;
    return end < past ? end + 1 : past;
}

// A hash is a directive when the line's first character above a blank is one; comments count for that.
StreamNormaliser::Position StreamNormaliser::HashAt(Position pos) {
    if (firstNonBlank == 0) firstNonBlank = *std::find_if_not(visualLine, pos, IsBlank);
    if (firstNonBlank == '#') return EndOfDirective(pos);
    StoreReduced('#', Column(pos));
    return pos + 1;
}

// Reads the directive and steps to the newline that ends it; one behind a backslash doesn't.
StreamNormaliser::Position StreamNormaliser::EndOfDirective(Position pos) {
    const Position word = std::find_if(pos + 1, past, [](char c) { return c != ' ' && c != '\t'; });
    if (TextAt(word, "include")) {
        ReadInclude(word + 7);
    } else if (TextAt(word, "define ")) {
        ReadMacro(word + 7);
    }
    for (Position lineBegin = pos;; lineBegin = visualLine) {
        const Position newline = FindOrPast(lineBegin, past, '\n');
        Position lastNonBlank = newline;
        while (lastNonBlank > lineBegin && IsBlank(lastNonBlank[-1])) --lastNonBlank;
        const bool continued = lastNonBlank > lineBegin && lastNonBlank[-1] == '\\';
        if (newline == past || !continued) return newline;
        StartLine(newline);
    }
}

bool StreamNormaliser::TextAt(Position pos, std::string_view word) const {
    return past - pos >= static_cast<std::ptrdiff_t>(word.size()) &&
           word.compare(0, word.size(), pos, word.size()) == 0;
}

// The first of two characters on the line; null if there is none.
StreamNormaliser::Position StreamNormaliser::FindOnLine(Position pos, char a, char b) const {
    const Position found = std::find_if(pos, past, [=](char c) { return c == a || c == b || c == '\n'; });
    return found < past && *found != '\n' ? found : nullptr;
}

// The two delimiters of a name needn't match.
void StreamNormaliser::ReadInclude(Position pos) {
    if (pos == past || std::string_view(" \t\"<").find(*pos) == std::string_view::npos) return;
    const Position open = FindOnLine(pos, '"', '<');
    if (open == nullptr) return;
    const Position close = FindOnLine(open + 1, '"', '>');
    if (close == nullptr) return;
    const char* name = includeNames->Append(std::string(open + 1, close).c_str(), nullptr, 0);
    if (directives.empty()) directives.reserve(usualIncludes);
    directives.push_back({name, PointInFile(open + 1), *open});
}

// Only the first word of a macro's text is kept, and a name keeps the first text that it ever had.
void StreamNormaliser::ReadMacro(Position pos) {
    const auto endOfWord = [this](Position from) {
        return std::find_if(from, past, [](char c) { return c == ' ' || c == '\n'; });
    };
    const Position name = SkipSpaces(pos, past);
    const Position nameEnd = endOfWord(name);
    const Position value = SkipSpaces(nameEnd, past);
    const Position valueEnd = endOfWord(value);
    if (name == nameEnd || value == valueEnd) return;
    macroName.assign(name, nameEnd);
    macroText.assign(value, valueEnd);
    for (const std::string_view word : typedListWords) {
        if (macroText.compare(0, word.size(), word) != 0 || macroText[word.size()] != '(') continue;
        macroText[word.size()] = '_';
        macroText.back() = '_';
    }
    if (!macroTexts->Holds(macroName.c_str())) macroTexts->Append(macroName.c_str(), macroText.data(), 1);
}

StreamNormaliser::Position StreamNormaliser::LetterAt(Position pos) {
    Store(*pos, Column(pos));
    if (*pos == 'n' || *pos == 'l') RemoveWordsAtEnd();
    const char* word = DialectWordAt(pos);
    return word != nullptr ? DialectWord(pos, word) : pos + 1;
}

// The dialect word that starts here; null if none does.
const char* StreamNormaliser::DialectWordAt(Position pos) const {
    if (pos - text >= fileSize - dialectMargin) return nullptr;
    for (const char* word : typedListWords) {
        if (!TextAt(pos, word)) continue;
        const std::string_view before(text, static_cast<std::size_t>(pos - text));
        const bool isMacro = before.ends_with("DEF_") || before.ends_with("IMPL_");
        return isMacro && std::string_view(word) == "SEQUENCE" ? nullptr : word;
    }
    return nullptr;
}

// Rewrites a word with its argument, as in `NUBLISTP( Foo )` to `NUBLISTP_Foo_ `; its first letter is already
// in the stream. Columns go on without regard to the parenthesis that was stepped over.
StreamNormaliser::Position StreamNormaliser::DialectWord(Position pos, const char* word) {
    const Position open = SkipSpaces(pos + dialectLength, past);
    if (open == past || *open != '(') return pos + 1;
    int column = Column(pos);
    --length;
    for (Position letter = pos; letter < pos + dialectLength; ++letter) Store(*letter, column++);
    column += static_cast<int>(open - (pos + dialectLength));
    Store('_', column);
    const Position argument = SkipSpaces(open + 1, past);
    column += static_cast<int>(argument - (open + 1));
    const Position argumentEnd = std::find_if(argument, past, [](char c) { return c == ' ' || c == ')'; });
    for (Position c = argument; c < argumentEnd; ++c) Store(*c, column++);
    const Position close = SkipSpaces(argumentEnd, past);
    if (close == past || *close != ')') {
        failure = {SFAIL_Word, -1, PointInFile(pos), word, 0};
        return past;
    }
    Store('_', column);
    Store(' ', column + 1);
    hiddenLines += static_cast<int>(std::count(argument, argumentEnd, '\n'));
    lineOrigin = argumentEnd - text - column;
    return close + 1;
}

} // namespace ostraka::detail
