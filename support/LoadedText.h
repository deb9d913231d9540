#pragma once

#include <string_view>

#include <ostraka/symbols/TAPSymbolTable.h>

#include "support/Workspace.h"

// A table that has loaded one C++ text fully.
class LoadedText {
public:
    explicit LoadedText(std::string_view text) : files{{"src/text.cpp", text}}, table(new TAPSymbolTable) {
        result = table->LoadFile(Path().c_str(), 1);
        root = static_cast<TAPSyntaxe*>(table->trees[Path().c_str()]);
    }
    ~LoadedText() { table->Release(); }
    LoadedText(const LoadedText&) = delete;
    LoadedText& operator=(const LoadedText&) = delete;

    std::string Path() const { return files("src/text.cpp"); }

    // The leaf with this text, the first unless a later one is asked for; null if there are fewer.
    TAPSyntaxe* Leaf(const char* text, int occurrence = 1) const {
        NUBListPtrTAPSyntaxe found;
        root->FindOccurrences(text, found);
        return occurrence <= found.Size() ? found[occurrence] : nullptr;
    }

    Workspace files;
    TAPSymbolTable* table;
    int result = 0;
    TAPSyntaxe* root = nullptr;
};
