// The load of any IDL text, with files that it may include.

#include "LoadedTable.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckLoads(InputFiles(data, size, "text.idl"), &TAPSymbolTable::LoadIdlFile);
    return 0;
}
