#include <ostraka/symbols/TAPDefMethod.h>

#include <ostraka/symbols/OwnedParts.h>

using namespace ostraka::detail;

TAPDefMethod::TAPDefMethod(TAPSyntaxe* declaration, const char* methodName, TAPDefClass* ofClass,
                           TAPSymbolTable* table)
    : TAPDefMethod(declaration, nullptr, methodName, ofClass, table) {}

TAPDefMethod::TAPDefMethod(TAPSyntaxe* declaration, TAPSyntaxe* implementation, const char* methodName,
                           TAPDefClass* ofClass, TAPSymbolTable* table)
    : implPath(PathTo(implementation)), defClass(ofClass),
      name(CopyOf(methodName != nullptr ? methodName : "")) {
    symTab = table;
    path = PathTo(declaration);
}

TAPDefMethod::~TAPDefMethod() {
    std::free(name);
    ReleaseIfAny(implPath);
    std::free(returnedType);
    ReleaseAll(args);
}

int TAPDefMethod::GetDefKind() {
    return MethodRecord;
}

void TAPDefMethod::SetReturnedType(const NUBString& type) {
    std::free(returnedType);
    returnedType = CopyOf(type.CastToCharPtr());
}

void TAPDefMethod::SetImplementationPath(TAPSyntaxePath* newPath) {
    SharePath(implPath, newPath);
}

void TAPDefMethod::SetImplementation(TAPSyntaxe* node) {
    ReleaseIfAny(implPath);
    implPath = PathTo(node);
}

NUBListValNUBString* TAPDefMethod::GetArgTypes() const {
    auto* types = new NUBListValNUBString(args.size);
    for (int i = 1; i <= args.size; ++i) types->Append(NUBString(args[i]->type));
    return types;
}

int TAPDefMethod::Compare(TAPDefMethod* a, TAPDefMethod* b) {
    const int order = std::strcmp(a->name, b->name);
    return (order > 0) - (order < 0);
}
