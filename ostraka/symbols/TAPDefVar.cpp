#include <ostraka/symbols/TAPDefVar.h>

#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPSymbolTable.h>

using namespace ostraka::detail;

TAPDefVar::TAPDefVar(TAPSyntaxe* definition, const char* varName, const char* varType, TAPSymbolTable* table)
    : type(CopyOf(varType != nullptr ? varType : "")), name(CopyOf(varName)) {
    symTab = table;
    path = PathTo(definition);
}

TAPDefVar::~TAPDefVar() {
    std::free(type);
    std::free(name);
}

int TAPDefVar::GetDefKind() {
    return VarRecord;
}

TAPSyntaxe* TAPDefVar::GetDefinition() {
    return GetSyntaxe();
}
