#pragma once

// What libostraka shows to its clients; everything else in the library is hidden.
#if defined(OSTRAKA_STATIC)
#define OSTRAKA_EXPORT
#else
#define OSTRAKA_EXPORT __attribute__((visibility("default")))
#endif
