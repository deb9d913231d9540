#include <ostraka/symbols/TAPDefEntity.h>

#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPSymbolTable.h>

using namespace ostraka::detail;

TAPDefEntity::~TAPDefEntity() {
    ReleaseIfAny(path);
}

int TAPDefEntity::GetDefKind() {
    return BareEntity;
}

void TAPDefEntity::SetSyntaxePath(TAPSyntaxePath* newPath) {
    SharePath(path, newPath);
}

void TAPDefEntity::SetSyntaxe(TAPSyntaxe* node) {
    ReleaseIfAny(path);
    path = PathTo(node);
}

TAPSyntaxe* TAPDefEntity::GetSyntaxe() {
    return path != nullptr && symTab != nullptr ? symTab->GetSyntaxe(path) : nullptr;
}
