#pragma once

// Questions answered by the plain walk, from node to node and from class to class, without anything that an
// earlier question has left behind.

#include <set>
#include <string>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace slow {

// The first declaration in the scope, with its type.
inline TAPSyntaxe* FindInScope(TAPSymbolTable& table, TAPSyntaxe* name, std::string& type,
                               TAPSyntaxe* scope) {
    if (scope->GetType() == STYPE_Instruction) {
        TAPSyntaxe* found = nullptr;
        NUBListPtrTAPDefVar vars;
        const bool declares = table.IsVariableOrFunctionDeclaration(scope, vars) == 1;
        for (int i = 1; i <= vars.Size(); ++i) {
            if (declares && found == nullptr && name->TestContent(vars[i]->name, -1) == 0) {
                found = scope;
                type = vars[i]->type;
            }
            vars[i]->Release();
        }
        return found;
    }
    for (int i = 1; i <= scope->ChildCount(); ++i)
        if (TAPSyntaxe* found = FindInScope(table, name, type, scope->Child(i))) return found;
    TAPSyntaxe* parent = scope->GetParent();
    TAPSyntaxe* head =
        scope->GetType() == STYPE_Bloc && parent != nullptr ? parent->GetPrevious(scope) : nullptr;
    NUBString className, methodName, argType, argName;
    TAPSyntaxe* args = nullptr;
    if (table.IsMethodImplementation(head, className, methodName, args) == 0 || args == nullptr)
        return nullptr;
    for (int i = 1; i <= args->ChildCount(); ++i) {
        if (table.GetArgType(args->Child(i), argType, argName) != 1) continue;
        if (name->TestContent(argName.CastToCharPtr(), -1) != 0) continue;
        type = argType.CastToCharPtr();
        return args->Child(i);
    }
    return nullptr;
}

// The same in the blocks around the name.
inline TAPSyntaxe* FindAround(TAPSymbolTable& table, TAPSyntaxe* name, std::string& type) {
    for (TAPSyntaxe* node = name; node != nullptr; node = node->GetParent()) {
        if (node->GetType() != STYPE_Bloc) continue;
        if (TAPSyntaxe* found = FindInScope(table, name, type, node)) return found;
    }
    return nullptr;
}

// Of two names without marks.
inline bool IsDerived(const TAPSymbolTable& table, const std::string& derived, const std::string& base) {
    std::set<const TAPDefClass*> passed;
    if (derived.empty() || derived == base) return !derived.empty();
    const TAPDefClass* cls = table.GetClass(derived.c_str());
    while (cls != nullptr && passed.insert(cls).second) {
        if (cls->name == base) return true;
        if (cls->parent == nullptr) return false;
        if (cls->parent == base) return true;
        cls = table.GetClass(cls->parent);
    }
    return false;
}

} // namespace slow
