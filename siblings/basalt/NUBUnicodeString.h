#pragma once

// Text on its way into a message: file names, pieces of source, texts of system errors. It keeps the bytes
// that it is given, so what is printed in the end is what the caller put in, whatever its encoding.

#include <basalt/NUBString.h>

class BASALT_EXPORT NUBUnicodeString {
public:
    NUBUnicodeString() = default;
    NUBUnicodeString(const char* from) : bytes(from) {}
    NUBUnicodeString(const NUBString& from) : bytes(from) {}

    NUBUnicodeString& operator+=(const NUBUnicodeString& more) {
        bytes += more.bytes;
        return *this;
    }
    NUBUnicodeString& operator+=(const NUBString& more) {
        bytes += more;
        return *this;
    }
    NUBUnicodeString& operator+=(const char* more) {
        bytes += more;
        return *this;
    }

    // The bytes with a NUL behind them; good until the text changes or dies.
    const char* CastToCharPtr() const { return bytes.CastToCharPtr(); }
    int Length() const { return bytes.Length(); }

private:
    NUBString bytes;
};
