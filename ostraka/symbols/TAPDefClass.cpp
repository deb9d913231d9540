#include <ostraka/symbols/TAPDefClass.h>

#include <ostraka/symbols/CircleWatch.h>
#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPDefSource.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/symbols/Ties.h>

using namespace ostraka::detail;

TAPDefClass::TAPDefClass(TAPSyntaxe* declaration, TAPSyntaxe* body, TAPDefSource* ofSource,
                         TAPSymbolTable* table)
    : bodyPath(PathTo(body)), source(ofSource) {
    symTab = table;
    path = PathTo(declaration);
    // Behind the word `class` come the name and, with a colon, the bases.
    TAPSyntaxe* head = GetDeclarationLocation();
    const bool named = head != nullptr && head->ChildCount() > 0;
    name = named ? table->HoldText(head->Child(1)->GetContent()) : "";
    if (declaration != nullptr && declaration->ChildCount() >= 2)
        parent = table->HoldText(declaration->GetLastLeaf()->GetContent());
}

TAPDefClass::~TAPDefClass() {
    for (int i = 1; i <= methods.size; ++i)
        if (methods[i] != nullptr && methods[i]->defClass == this) methods[i]->defClass = nullptr;
    ReleaseAll(methods);
    ReleaseAll(vars);
    ReleaseIfAny(bodyPath);
    ReleaseTies(tied);
}

int TAPDefClass::GetDefKind() {
    return ClassRecord;
}

TAPSyntaxe* TAPDefClass::GetDeclarationLocation() {
    return GetSyntaxe();
}

void TAPDefClass::AddMethod(TAPDefMethod* method) {
    AppendShared(methods, method);
}

TAPDefMethod* TAPDefClass::GetMethod(const char* methodName) const {
    for (int i = methods.size; i >= 1; --i)
        if (methods[i] != nullptr && std::strcmp(methods[i]->name, methodName) == 0) return methods[i];
    return nullptr;
}

TAPDefMethod* TAPDefClass::GetMethodAll(const char* methodName) const {
    CircleWatch watch;
    for (const TAPDefClass* cls = this; cls != nullptr && !watch.IsBackAt(cls);) {
        if (TAPDefMethod* method = cls->GetMethod(methodName)) return method;
        cls = cls->parent != nullptr ? symTab->GetClass(cls->parent) : nullptr;
    }
    return nullptr;
}
