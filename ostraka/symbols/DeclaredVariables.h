#pragma once

#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

// The variables that an instruction or an argument declares, for as long as this object lives.
class DeclaredVariables {
public:
    DeclaredVariables(TAPSymbolTable& table, TAPSyntaxe* node) {
        isDeclaration = table.IsVariableOrFunctionDeclaration(node, vars) == 1;
    }
    ~DeclaredVariables() { ReleaseAll(vars); }
    DeclaredVariables(const DeclaredVariables&) = delete;
    DeclaredVariables& operator=(const DeclaredVariables&) = delete;

    int Size() const { return isDeclaration ? vars.Size() : 0; }
    const TAPDefVar& operator[](int i) const { return *vars[i]; }

    // Hands all over to the list, the last first.
    void MoveTo(NUBListPtrTAPDefVar& list) {
        if (!isDeclaration) return;
        for (int i = vars.Size(); i >= 1; --i) list.Append(vars[i]);
        vars.RemoveAll(1);
    }

private:
    NUBListPtrTAPDefVar vars;
    bool isDeclaration;
};

} // namespace ostraka::detail
