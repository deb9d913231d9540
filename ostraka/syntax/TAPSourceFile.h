#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TACallback.h>
#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/foundation/TypedLists.h>
#include <ostraka/syntax/TAPFailure.h>
#include <ostraka/syntax/TAPLexicalSettings.h>
#include <ostraka/syntax/TAPSyntaxePoint.h>

namespace ostraka::detail {

class TreeBuilder;

// What a room above has found out about the trees of a file, see TAPSourceFile::SetMemory.
class OSTRAKA_EXPORT TreeMemory {
public:
    TreeMemory();
    virtual ~TreeMemory();
    TreeMemory(const TreeMemory&) = delete;
    TreeMemory& operator=(const TreeMemory&) = delete;

    // Whether there is one. While there is none, a tree that changes has nothing to tell.
    static bool IsAnyAlive();
};

} // namespace ostraka::detail

// An include directive, as it stands in the file.
struct TAPInclude {
    const char* name;      // a key of the file's `includes`, good as long as that
    TAPSyntaxePoint point; // of the name's first character among the bytes of the file
    char delimiter;        // the one before the name: `"` or `<`
};

// One source file as the parser sees it: the normalised stream, in which comments and preprocessor lines
// are gone, blanks are reduced to the few that matter and dialect words are rewritten, with the line and
// column from which each character came.
//
// A file is created with one reference, processed once, and from then on only read. It owns the stream,
// which stays good until the last reference is released; each node of a tree holds one. The raw bytes live
// only until Process ends. Positions are plain ints from 0 to size - 1; the character at `size` is NUL and
// may be read.
class OSTRAKA_EXPORT TAPSourceFile : public TACallbackPublisher, public TARefCounter {
public:
    TAFileBuffer* buffer = nullptr; // owned; null once Process has run
    char* stream = nullptr;         // owned, NUL-terminated; null before Process and for an empty file
    int size = 0;                   // characters in the stream, without the NUL
    int nbLine = 0;
    int nbCodeLine = 0;
    short* lines = nullptr; // owned; the low 16 bits of the line of each character
    short* cols = nullptr;  // owned; the low 16 bits of the column of each character
    NUBString name;
    NUBString errMsg;
    TAIndex includes; // names of the included files as keys, each once, with null values

    // Makes its own buffer for the file; nothing is read yet. The name is kept as it is spelled.
    explicit TAPSourceFile(const char* fileName);

    // Takes over `rawFile`, which Process or the destructor destroys.
    explicit TAPSourceFile(TAFileBuffer* rawFile);

    ~TAPSourceFile() override;

    TAPSourceFile(const TAPSourceFile&) = delete;
    TAPSourceFile& operator=(const TAPSourceFile&) = delete;

    // Reads the file, sends callback 1 with the raw bytes (null when the file can't be read), and writes the
    // stream, the places, `includes`, and into `macros` each macro that the index doesn't hold yet, with a
    // copy of the first word of its text. To be called once.
    // 0 on success, also for an unreadable file, which counts as empty; 1 when the parenthesis of a dialect
    // word doesn't close, which is told on standard error and leaves the size 0 and the stream unfinished.
    int Process(TAIndex& macros);

    char* GetStream() const { return stream; }
    int GetSize() const { return size; }

    // The line of the last stream character; 0 for an empty stream.
    int GetNbLine() const { return nbLine; }

    // The number of lines that hold at least one stream character.
    int GetNbCodeLine() const { return nbCodeLine; }

    // 0 and the place of the character at `pos`; 1 for a position outside the stream, with a text in errMsg
    // and without a change of `line` and `col`.
    int GetPos(int pos, int& line, int& col);

    // The place of the character at `pos`; (0, 0) for a position outside the stream.
    TAPSyntaxePoint GetPoint(int pos) const;

    NUBString GetName() const { return name; }
    NUBString GetErrMsg() const { return errMsg; }

    // What Process takes for blanks; null, as at first, for nothing. Callback 1 gets the bytes as they are.
    void SetLexicalSettings(std::shared_ptr<const TAPLexicalSettings> chosen) {
        lexicalSettings = std::move(chosen);
    }

    // Every include directive, those of one name too, in the order of the text. Filled by Process.
    const std::vector<TAPInclude>& GetIncludes() const { return includeList; }

    // Why Process gave 1, or took the file for an empty one since it can't be read.
    const TAPFailure& GetFailure() const { return failure; }

    // The same of the last Build over this file, whichever node it was called on.
    const TAPFailure& GetTreeFailure() const { return treeFailure; }

    // A place for what questions about the trees of this file have found out. It may name blocks and what
    // lies below them by their addresses: it goes as soon as one of these trees is built further, gets a
    // child by Append or loses a block, and with the file. Null until it is set.
    ostraka::detail::TreeMemory* GetMemory() const { return memory.get(); }
    void SetMemory(std::unique_ptr<ostraka::detail::TreeMemory> found) { memory = std::move(found); }

    // From position `pos` on, lines and columns have these bits above the 16 that the arrays hold.
    struct PlaceMark {
        int pos;
        int lineHigh;
        int colHigh;
    };

private:
    // Sorted by position; empty unless a line or a column exceeds 65,535.
    std::vector<PlaceMark> placeMarks;
    std::vector<TAPInclude> includeList;
    TAPFailure failure;
    TAPFailure treeFailure;

    friend class ostraka::detail::TreeBuilder;

    std::unique_ptr<ostraka::detail::TreeMemory> memory;
    std::shared_ptr<const TAPLexicalSettings> lexicalSettings;

    void DropBuffer();
    void AdoptStream(int length);
};

using NUBListPtrTAPSourceFile =
    ostraka::detail::PointerList<TAPSourceFile, ostraka::detail::ListKind::WithoutDuplicates>;
