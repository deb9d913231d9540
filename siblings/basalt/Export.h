#pragma once

// What libbasalt shows to its clients; everything else in the library is hidden.
#if defined(BASALT_STATIC)
#define BASALT_EXPORT
#else
#define BASALT_EXPORT __attribute__((visibility("default")))
#endif
