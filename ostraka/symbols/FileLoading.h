#pragma once

#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

// What a file is read as. The road of a load is the same for both.
enum class Language { Cxx, Idl };

// Loads a file with everything that it includes: TAPSymbolTable::LoadFile, respectively LoadIdlFile.
int LoadAs(Language language, TAPSymbolTable& table, TAFileBuffer* buffer, int full);

// What a header is read as that a file in the language includes.
Language LanguageOfHeader(const TAPSymbolTable& table, Language includer, const char* path);

} // namespace ostraka::detail
