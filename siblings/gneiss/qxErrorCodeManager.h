#pragma once

// The last system error that a service of this library met. It is kept here and not in `errno`, so that it
// survives what the caller does between the failure and the report.

#include <basalt/NUBUnicodeString.h>
#include <gneiss/Export.h>

class GNEISS_EXPORT qxErrorCodeManager {
public:
    constexpr qxErrorCodeManager() = default;
    qxErrorCodeManager(const qxErrorCodeManager&) = delete;
    qxErrorCodeManager& operator=(const qxErrorCodeManager&) = delete;

    // Remembers a value of `errno`.
    void SetError(int code) { last = code; }
    // What was remembered, 0 at first.
    int GetError() const { return last; }
    // The system's words for it.
    NUBUnicodeString GetMsgError() const;

private:
    int last = 0;
};

extern GNEISS_EXPORT qxErrorCodeManager qxExtLastError;
