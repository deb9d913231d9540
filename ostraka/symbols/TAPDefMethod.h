#pragma once

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/symbols/TAPDefEntity.h>
#include <ostraka/symbols/TAPDefVar.h>

class TAPDefClass;

// A method of a class. It owns its texts and its arguments outright. A method that the class doesn't declare,
// but that somebody implements, has a null `path` and no arguments.
class OSTRAKA_EXPORT TAPDefMethod : public TAPDefEntity {
public:
    enum Binding : int { Plain = 10, Static = 11, Virtual = 12, PureVirtual = 13 };
    enum Inlining : int { NotInlined = 0, Inlined = 14 };

    // One reference held; null without a known implementation. Outside the class it addresses the head in
    // front of the body's block, for a body in the class the block itself.
    TAPSyntaxePath* implPath = nullptr;
    TAPDefClass* defClass;        // not owned; null once the class has gone
    char* name;                   // owned
    char* returnedType = nullptr; // owned; null until SetReturnedType
    NUBListPtrTAPDefVar args;     // in order of declaration; one reference held for each
    int visibility = UnknownVisibility;
    int binding = Plain;
    int inlined = NotInlined; // Inlined if it is inline or has its body in the class
    int impLine = -1;         // lines of the implementation; -1 until they have been counted

    // Copies the name and addresses the nodes, each of which may be null.
    TAPDefMethod(TAPSyntaxe* declaration, const char* methodName, TAPDefClass* ofClass,
                 TAPSymbolTable* table);
    TAPDefMethod(TAPSyntaxe* declaration, TAPSyntaxe* implementation, const char* methodName,
                 TAPDefClass* ofClass, TAPSymbolTable* table);
    ~TAPDefMethod() override;

    int GetDefKind() override;

    char* GetName() const { return name; }
    char* GetReturnedType() const { return returnedType; }
    void SetReturnedType(const NUBString& type);

    // As the functions of TAPDefEntity treat `path`.
    TAPSyntaxePath* GetImplementationPath() const { return implPath; }
    void SetImplementationPath(TAPSyntaxePath* newPath);
    void SetImplementation(TAPSyntaxe* node);

    // The types of the arguments in order, in a new list that the caller deletes.
    NUBListValNUBString* GetArgTypes() const;

    // -1, 0 or 1, by the bytes of the names; for QuickSort.
    static int Compare(TAPDefMethod* a, TAPDefMethod* b);

    // Makes the arguments from the list of a declaration. 0; 1 if either pointer is null. For IDL, 1 also
    // when an argument was refused, which is told on standard error; those before it stay.
    int SearchArgs(TAPSymbolTable* table, TAPSyntaxe* argsNode);
    int SearchIdlArgs(TAPSymbolTable* table, TAPSyntaxe* argsNode);

    // The number of lines of the implementation on which something begins; 0 without one. Counted once.
    int GetImpLine();
    // Adds to `lines` the lines below `lastLine` on which a node of the subtree begins, and returns the last
    // line seen. A null node adds nothing.
    int ComputeImpLine(int& lines, TAPSyntaxe* node, int lastLine);
};

using NUBListPtrTAPDefMethod = ostraka::detail::PointerList<TAPDefMethod>;
