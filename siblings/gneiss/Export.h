#pragma once

// What libgneiss shows to its clients; everything else in the library is hidden.
#if defined(GNEISS_STATIC)
#define GNEISS_EXPORT
#else
#define GNEISS_EXPORT __attribute__((visibility("default")))
#endif
