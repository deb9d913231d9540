#pragma once

// TAFileName, the value class of all paths, and the list of such values.
//
// A name holds its text as it was given, but for backslashes, which become slashes; nothing is resolved or
// tidied, so equality of names is equality of text. Copies share one text, which lives as long as a name that
// holds it, and a name that is changed leaves its copies as they are. The null name is what an empty text
// gives; it holds nothing. The text that a name converts to is good until the name changes or dies. Names
// that share a text give one address, so `==` between names tells sharing and `IsEqual` tells equality. Null
// for a text counts as the empty text.
//
// The count of holders isn't atomic and `GetFullPath` leaves the working directory for a moment: one thread
// at a time. What the system refuses to look at, a path too long for it included, counts as absent.

#include <cstddef>
#include <string_view>
#include <utility>

#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TypedLists.h>

class OSTRAKA_EXPORT TAFileName {
public:
    TAFileName() = default;
    TAFileName(const NUBString& text);
    TAFileName(const char* text);
    // The first `length` characters of the text, or all if it has fewer.
    TAFileName(const char* text, int length);
    TAFileName(const TAFileName& other);
    TAFileName(TAFileName&& other) noexcept : block(std::exchange(other.block, nullptr)) {}
    ~TAFileName();
    // The text may be this name's own.
    TAFileName& operator=(const char* text);
    TAFileName& operator=(const NUBString& text);
    TAFileName& operator=(const TAFileName& other);
    TAFileName& operator=(TAFileName&& other) noexcept;

    // Never null: the empty text, always at the same address, for the null name.
    operator const char*() const;
    int IsNull() const { return block == nullptr; }

    // 1 or 0. The null name counts as an empty text.
    int IsEqual(const TAFileName& other) const;
    // As `strcmp` of the two texts; for `QuickSort`.
    static int Compare(TAFileName* a, TAFileName* b);
    // 1 when this name, or what is left of it before one of its slashes, equals `directory`; else 0. Nothing
    // is under "/", and the null name is under nothing.
    int IsUnderDirectory(const TAFileName& directory) const;

    // The last component, or with a greater level the one so many from the end; a level below 1 counts as 1.
    // A slash at the very front separates nothing: "/a" has the one component "/a". A name with fewer
    // components gives itself, and one that ends in a slash gives null for level 1.
    TAFileName basename(int level) const;
    // What is left without the last `level` components, and null when nothing is: "/a/b" gives "/a" and then
    // null. "a/" gives "a". A level below 1 gives the whole text.
    TAFileName dirname(int level) const;
    // What is behind the last dot of the whole text, its folders included; empty without a dot.
    NUBString GetExtension() const;

    // This name, a slash and `part`, whatever slashes they have already; `part` alone for the null name.
    TAFileName operator+(const char* part) const;
    TAFileName operator+(const NUBString& part) const;
    TAFileName& operator+=(const char* part);
    // Puts the text behind the name, without a dot. Backslashes stay.
    void AddExtension(const NUBString& extension);
    // Replaces what is behind the last dot; without a dot the same as `AddExtension`. Backslashes stay.
    void SetExtension(const NUBString& extension);
    // Turns each backslash into a slash.
    void Normalize();

    // 1 or 0, following symbolic links. A socket is both a file and a directory, and a block device a
    // directory, since one bit of the mode decides.
    int IsFile() const;
    int IsDirectory() const;
    // Lets the owner execute the file. Nothing if the file can't be read.
    void SetAsExecutable() const;
    // 0, also for the null name, or -1 with the reason in `errno`.
    int Delete() const;
    // Makes this one directory, not its parents. 0; 1 for the null name; -1 with the reason in `errno`.
    int CreateDirectory() const;

    // The folder of this name as the system reports it, joined with `basename(1)`. A name without a folder,
    // "/a" among them, and one whose folder can't be entered end up under the working directory, which is
    // what the null name gives. The name itself when the system can't report, or when there would be no way
    // back to the working directory.
    TAFileName GetFullPath() const;
    // The working directory, or "." when it can't be had.
    static TAFileName GetWorkDir();
    // 0, or -1 with the reason in `errno`.
    static int SetWorkDir(const TAFileName& directory);
    // "/tmp/Ostra_", the process, "_" and a number that counts from 1. Nothing is created or looked at.
    static TAFileName GetTemporaryFileName();

private:
    struct Block;

    // The three texts in a row, just as they are; null if all are empty.
    static TAFileName Joined(std::string_view head, std::string_view glue, std::string_view tail);
    std::string_view View() const;

    Block* block = nullptr;
};

// Elements of two lists are the same if they share their text or are both null.
using NUBListValTAFileName = ostraka::detail::ValueList<TAFileName>;
