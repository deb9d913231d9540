#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPSourceFile.h>

namespace ostraka::detail {

// The one pass that turns the bytes of a file into its stream, with the line and column of each character,
// the names of the included files and the macros. A writer over memory of its caller, used once.
class StreamNormaliser {
public:
    // The source runs from `sourceText` to `sourcePast`, without a NUL in between; no byte behind it is read.
    // `sizeOfFile` is the size of the file, which may go on behind a NUL. The three arrays have room for
    // Capacity(sizeOfFile) entries each.
    StreamNormaliser(const char* sourceText, const char* sourcePast, std::ptrdiff_t sizeOfFile, char* outText,
                     short* outLines, short* outCols);

    // Room that the stream of a file of this size can take: a dialect word can grow by one character.
    static std::size_t Capacity(std::size_t fileSize) { return fileSize + fileSize / 10 + 4 * chunk; }

    // Fails if the parenthesis of a dialect word doesn't close.
    [[nodiscard]] TAPFailure Run(TAIndex& includes, TAIndex& macros);

    int Length() const { return static_cast<int>(length); }
    std::vector<TAPSourceFile::PlaceMark>& PlaceMarks() { return marks; }
    std::vector<TAPInclude>& Includes() { return directives; }

private:
    static constexpr std::ptrdiff_t chunk = 16;
    static constexpr std::ptrdiff_t blockLength = 64;

    using Position = const char*;

    int Column(Position pos) const { return static_cast<int>(pos - text - lineOrigin); }
    TAPSyntaxePoint PointInFile(Position pos) const;
    char Last() const { return length > 0 ? out[length - 1] : '\0'; }

    std::uint64_t SpecialsAt(Position pos) const;
    Position NextSpecial(Position pos);
    Position HandleSpecial(Position pos);

    void Store(char c, int column);
    void StoreRun(Position from, std::ptrdiff_t count);
    void NotePlace(int column);
    void StoreReduced(char c, int column);
    void StartLine(Position newline);
    void RemoveWordsAtEnd();
    bool RemoveAtEnd(std::string_view word);

    Position BlankAt(Position pos);
    Position StringAt(Position pos);
    Position CharacterAt(Position pos);
    Position SlashAt(Position pos);
    Position HashAt(Position pos);
    Position LetterAt(Position pos);

    Position EndOfDirective(Position pos);
    void ReadInclude(Position pos);
    void ReadMacro(Position pos);
    const char* DialectWordAt(Position pos) const;
    Position DialectWord(Position pos, const char* word);
    bool TextAt(Position pos, std::string_view word) const;
    Position FindOnLine(Position pos, char a, char b) const;

    const char* const text;
    const char* const past;
    const std::ptrdiff_t fileSize;
    char* const out;
    short* const lines;
    short* const cols;

    std::ptrdiff_t length = 0;
    int line = 1;
    std::ptrdiff_t lineOrigin = -2;   // the column of a character is its distance from here
    const char* visualLine;           // behind the last newline outside literals and dialect words
    char firstNonBlank = 0;           // the first character above a blank on that line, once it was asked for
    bool joined = false;              // the next character doesn't stand behind the last one in the source
    bool wide = false;                // a line or column has needed more than 16 bits
    std::uint64_t specials = 0;       // bits of the special characters from `blockBegin` on
    const char* blockBegin = nullptr; // null before the first block
    int hiddenLines = 0;              // newlines up to here that started no line
    TAPFailure failure;
    TAIndex* includeNames = nullptr;
    TAIndex* macroTexts = nullptr;
    std::string macroName;
    std::string macroText;
    std::vector<TAPSourceFile::PlaceMark> marks;
    std::vector<TAPInclude> directives; // the includes
};

} // namespace ostraka::detail
