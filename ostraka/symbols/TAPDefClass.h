#pragma once

#include <ostraka/symbols/TAPDefEntity.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefVar.h>

class TAPDefClass;
class TAPDefSource;

using NUBListPtrTAPDefClass = ostraka::detail::PointerList<TAPDefClass>;

// A class or an interface. It holds one reference on each method, member and tied class; when its file is
// unloaded, it gives up the ties that lead back to itself. Its names are held by the table, so they outlive
// the tree, and are good as long as the table.
class OSTRAKA_EXPORT TAPDefClass : public TAPDefEntity {
public:
    enum Kind : int { PlainClass = 1, Interface = 2, ComponentClass = 4 };
    enum Dispatch : int { NoDispatch = 0, BaseDispatch = 20 };

    TAPSyntaxePath* bodyPath = nullptr; // one reference held; null if the class was made without a body
    const char* name;                   // empty if the declaration couldn't be resolved
    const char* parent = nullptr;       // the last base of the head; null if it names none
    int kind = PlainClass;              // a Kind; each is a bit, so that a mask asks for several
    int dispatch = NoDispatch;          // BaseDispatch if the class inherits from NUBBaseDispatch
    NUBListPtrTAPDefMethod methods;
    NUBListPtrTAPDefClass tied; // interfaces that a "TIE_" instruction ties to this class
    NUBListPtrTAPDefVar vars;
    TAPDefSource* source; // the file that declares the class; not owned, null once its record has gone

    // Reads name and parent from the declaration, which may be null, as may `body` and `ofSource`.
    TAPDefClass(TAPSyntaxe* declaration, TAPSyntaxe* body, TAPDefSource* ofSource, TAPSymbolTable* table);
    ~TAPDefClass() override;

    int GetDefKind() override;

    const char* GetParent() const { return parent; }
    // The node of the declaration, or null.
    TAPSyntaxe* GetDeclarationLocation();

    // Takes a reference, unless it is null.
    void AddMethod(TAPDefMethod* method);
    // The method of that name that was added last, or null.
    TAPDefMethod* GetMethod(const char* methodName) const;
    // The same, in the class or the nearest base that has one. Null too at the end of a circle of bases.
    TAPDefMethod* GetMethodAll(const char* methodName) const;

    // Read the body and fill the record. 1 without a body path, else 0, also for a null table and for a body
    // that can't be found, when they do nothing. To be called once.
    int SearchMethods(TAPSymbolTable* table);
    int SearchIdlMethods(TAPSymbolTable* table);
};
