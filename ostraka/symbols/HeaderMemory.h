#pragma once

// What a symbol table knows of the folders around its files between two looks at the system.

#include <string>
#include <vector>

#include <ostraka/foundation/FolderMemory.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

// A directory beside a file, where a header may be.
struct BesidePlace {
    TAFileName folder;                             // around the file
    std::string directory;                         // in it, as "PrivateGenerated/unix_a"
    TAFileName path;                               // of the directory
    const FolderMemory::Folder* listing = nullptr; // null: the system is asked
};

class HeaderMemory {
public:
    static HeaderMemory& Of(const TAPSymbolTable& table) { return *table.headerMemory; }

    // Outside of loads nothing is remembered, unless it lasts.
    bool IsInUse() const { return lasts || loads > 0; }

    void Keep(bool forever) {
        lasts = forever;
        Forget();
    }
    void Forget() { folders.Forget(lasts ? FolderMemory::noWait : FolderMemory::untilSettled); }
    // Something may have changed.
    void Doubt() {
        if (!lasts) folders.BeginRound();
    }
    // Changes with each doubt, and when all is forgotten.
    unsigned Round() const { return folders.Round(); }

    // The places beside the file. Good until the next question.
    const std::vector<BesidePlace>& Around(const char* file, const NUBString& osName);

private:
    friend class LoadInProgress;

    FolderMemory folders;
    int loads = 0;
    bool lasts = false;

    std::vector<BesidePlace> places; // of the question before
    std::string file;
    NUBString osName;
    unsigned round = 0; // of that question; 0 when there was none
};

// A load, in which others may begin and end.
class LoadInProgress {
public:
    explicit LoadInProgress(const TAPSymbolTable& table) : memory(HeaderMemory::Of(table)) {
        if (memory.loads++ == 0) memory.Doubt();
    }
    ~LoadInProgress() { --memory.loads; }
    LoadInProgress(const LoadInProgress&) = delete;
    LoadInProgress& operator=(const LoadInProgress&) = delete;

private:
    HeaderMemory& memory;
};

} // namespace ostraka::detail
