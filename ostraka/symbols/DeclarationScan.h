#pragma once

// What the scan of a C++ file shares with the scan of an IDL file and with the unloading of both.

#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

// Enters the name that a typedef or a named enum declares. False if the declaration is neither.
bool EnterNamedType(TAPSymbolTable& table, TAPSyntaxe& declaration);

// Takes out of `functions` what the scan of this root has entered there, before the tree goes.
void ForgetFunctions(TAPSymbolTable& table, const TAPSyntaxe& root);

} // namespace ostraka::detail
