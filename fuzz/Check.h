#pragma once

#include <cstdio>
#include <cstdlib>

// Stops the process, so that the fuzzer keeps the input, when a property doesn't hold.
#define CHECK(property)                                                                                      \
    ((property) ? void() : (std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #property), std::abort()))
