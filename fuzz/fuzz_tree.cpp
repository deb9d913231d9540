// The whole tree of any text, with all questions to it.

#include <cstdint>

#include "Check.h"
#include "support/TreeProperties.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string fault = TreeProperties({reinterpret_cast<const char*>(data), size}).Fault();
    if (!fault.empty()) std::fprintf(stderr, "%s\n", fault.c_str());
    CHECK(fault.empty());
    return 0;
}
