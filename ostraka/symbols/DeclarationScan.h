#pragma once

// What the scan of a C++ file shares with the scan of an IDL file and with the unloading of both.

#include <string_view>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

// The word that makes a class name that of a handle: `Foo_var` is a handle on `Foo`.
inline constexpr std::string_view handleMark = "_var";

// The part of a name before its first handle mark; the whole name if it has none.
inline std::string_view WithoutHandle(std::string_view name) {
    return name.substr(0, name.find(handleMark));
}

// Enters the name that a typedef or a named enum declares. False if the declaration is neither.
bool EnterNamedType(TAPSymbolTable& table, TAPSyntaxe& declaration);

// Takes out of `functions` what the scan of this root has entered there, before the tree goes.
void ForgetFunctions(TAPSymbolTable& table, const TAPSyntaxe& root);

} // namespace ostraka::detail
