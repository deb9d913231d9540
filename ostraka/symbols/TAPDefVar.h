#pragma once

#include <ostraka/symbols/TAPDefEntity.h>

// A data member, a variable, or an argument. The texts are the record's own and live as long as it does.
class OSTRAKA_EXPORT TAPDefVar : public TAPDefEntity {
public:
    char* type;          // owned; never null, "?" where the type couldn't be read
    char* name;          // owned; null for an unnamed argument
    int visibility = -1; // -1 unknown, 0 public, 1 protected, 2 private
    int direction = -1;  // of an IDL argument: 100 in, 101 out, 102 inout; else -1

    // Copies both texts, of which the name may be null, and addresses the definition, which may be null too.
    TAPDefVar(TAPSyntaxe* definition, const char* varName, const char* varType, TAPSymbolTable* table);
    ~TAPDefVar() override;

    int GetDefKind() override;

    // The node of the definition, or null.
    TAPSyntaxe* GetDefinition();
};

using NUBListPtrTAPDefVar = ostraka::detail::PointerList<TAPDefVar>;
