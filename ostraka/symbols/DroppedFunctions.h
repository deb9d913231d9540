#pragma once

// The functions of files whose trees were dropped. Their names stay in `functions` of the table, which then
// holds null for them; where they are declared stands here.

#include <string>
#include <unordered_map>
#include <vector>

#include <ostraka/foundation/Ref.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

class DroppedFunctions {
public:
    explicit DroppedFunctions(TAPSymbolTable& ofTable) : table(ofTable) {}

    // Before the tree goes.
    void Keep(const TAPSyntaxe& root);

    // The node, from a tree that is read again; null for a function of a tree that wasn't dropped.
    TAPSyntaxe* Find(const char* name) const;

    // When the file is unloaded.
    void Forget(const NUBString& file);
    void ForgetAll() {
        ofFile.clear();
        paths.clear();
    }

private:
    using Paths = std::unordered_map<std::string, Ref<TAPSyntaxePath>>;

    TAPSymbolTable& table;
    Paths paths;                                                               // by the name of the function
    std::unordered_map<std::string, std::vector<Paths::const_pointer>> ofFile; // entries of `paths`
};

} // namespace ostraka::detail
