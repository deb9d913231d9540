#pragma once

// Messages for the user of a tool: the catalogue that gives them by key, the manager that prints them, the
// text of the last system error, and the context through which a caller reaches the first two. The global
// objects are ready before any constructor runs and stay so to the end; nobody owns or deletes them.

#include <basalt/NUBString.h>
#include <basalt/NUBUnicodeString.h>
#include <gneiss/Export.h>

#include <cstdio>

// How grave a traced text is; `label` is what its line begins with.
class qxKeyForTraceManager {
public:
    explicit constexpr qxKeyForTraceManager(const char* name) : label(name) {}

    const char* label;
};

extern GNEISS_EXPORT const qxKeyForTraceManager MSG_KEY_qxqxError; // a fault in the input
extern GNEISS_EXPORT const qxKeyForTraceManager MSG_KEY_systError; // a refusal of the system

class GNEISS_EXPORT qxTraceManager {
public:
    // Writes "error: text" or "error: text1: text2" as one line, behind everything that standard output has
    // buffered so far, and flushes. Null as `file` prints nothing.
    void Print(const qxKeyForTraceManager& key, std::FILE* file, const NUBUnicodeString& text);
    void Print(const qxKeyForTraceManager& key, std::FILE* file, const NUBUnicodeString& text1,
               const NUBUnicodeString& text2);
};

class GNEISS_EXPORT qxMsgManager {
public:
    // The English text for the key, with `params` in its place; the key itself if the catalogue hasn't got
    // it.
    NUBUnicodeString GetMsg(const NUBString& key);
    NUBUnicodeString GetMsg(const NUBString& key, const NUBUnicodeString& params);
};

class GNEISS_EXPORT qxContext {
public:
    constexpr qxContext() = default;
    qxContext(const qxContext&) = delete;
    qxContext& operator=(const qxContext&) = delete;

    // Never null.
    qxTraceManager* GetTraceMngr() { return &traceManager; }
    qxMsgManager* GetMsgMngr() { return &msgManager; }

private:
    qxTraceManager traceManager;
    qxMsgManager msgManager;
};

extern GNEISS_EXPORT qxContext qxExtContext;
