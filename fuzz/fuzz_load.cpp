// The load of any C++ text, with a header and an IDL file that it may include.

#include "LoadedTable.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckLoads(InputFiles(data, size, "text.cpp"), &TAPSymbolTable::LoadFile);
    return 0;
}
