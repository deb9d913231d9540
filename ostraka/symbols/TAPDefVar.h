#pragma once

#include <ostraka/symbols/TAPDefEntity.h>

// A data member, a variable, or an argument. The texts are the record's own and live as long as it does.
class OSTRAKA_EXPORT TAPDefVar : public TAPDefEntity {
public:
    enum Direction : int { NoDirection = -1, In = 100, Out = 101, InOut = 102 };

    char* type; // owned; never null, "?" where the type couldn't be read
    char* name; // owned; null for an unnamed argument
    int visibility = UnknownVisibility;
    int direction = NoDirection; // another one only for an IDL argument

    // Copies both texts, of which the name may be null, and addresses the definition, which may be null too.
    TAPDefVar(TAPSyntaxe* definition, const char* varName, const char* varType, TAPSymbolTable* table);
    ~TAPDefVar() override;

    int GetDefKind() override;

    // The node of the definition, or null.
    TAPSyntaxe* GetDefinition();
};

using NUBListPtrTAPDefVar = ostraka::detail::PointerList<TAPDefVar>;
