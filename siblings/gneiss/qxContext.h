#pragma once

// Messages for the user of a tool: the catalogue that gives them by key, the manager that prints them or
// hands them to a sink, and the context through which a caller reaches both. The global objects are ready
// before any constructor runs and stay so to the end; nobody owns or deletes them. One thread at a time.

#include <cstdio>

#include <basalt/NUBString.h>
#include <basalt/NUBUnicodeString.h>
#include <gneiss/Export.h>

// How grave a traced text is; `label` is what its line begins with.
class qxKeyForTraceManager {
public:
    explicit constexpr qxKeyForTraceManager(const char* name) : label(name) {}

    const char* label;
};

extern GNEISS_EXPORT const qxKeyForTraceManager MSG_KEY_qxqxError; // a fault in the input
extern GNEISS_EXPORT const qxKeyForTraceManager MSG_KEY_systError; // a refusal of the system

// Receives what would be printed on standard error.
class GNEISS_EXPORT qxTraceSink {
public:
    // One traced text, without its label and the end of its line; of two texts, "text1: text2". Both
    // arguments are good during the call. A sink doesn't trace anything itself.
    virtual void Receive(const qxKeyForTraceManager& key, const NUBUnicodeString& text) = 0;

protected:
    qxTraceSink() = default;
    qxTraceSink(const qxTraceSink&) = default;
    qxTraceSink& operator=(const qxTraceSink&) = default;
    ~qxTraceSink() = default;
};

class GNEISS_EXPORT qxTraceManager {
public:
    constexpr qxTraceManager() = default;
    qxTraceManager(const qxTraceManager&) = delete;
    qxTraceManager& operator=(const qxTraceManager&) = delete;

    // Writes "error: text" or "error: text1: text2" as one line, behind everything that standard output has
    // buffered so far, and flushes. Null as `file` prints nothing. What is meant for `stderr` goes to the
    // sink instead, as long as there is one.
    void Print(const qxKeyForTraceManager& key, std::FILE* file, const NUBUnicodeString& text);
    void Print(const qxKeyForTraceManager& key, std::FILE* file, const NUBUnicodeString& text1,
               const NUBUnicodeString& text2);

    // Sets the sink, which isn't owned, and returns the former one. Null, which there is at first, prints.
    qxTraceSink* SetSink(qxTraceSink* newSink);

private:
    qxTraceSink* sink = nullptr;
};

// Has a sink in place for its own life, and then the one from before. Guards end in the reverse order of
// their beginnings.
class qxTraceSinkGuard {
public:
    qxTraceSinkGuard(qxTraceManager& traceManager, qxTraceSink* newSink)
        : manager(traceManager), former(traceManager.SetSink(newSink)) {}
    ~qxTraceSinkGuard() { manager.SetSink(former); }
    qxTraceSinkGuard(const qxTraceSinkGuard&) = delete;
    qxTraceSinkGuard& operator=(const qxTraceSinkGuard&) = delete;

private:
    qxTraceManager& manager;
    qxTraceSink* former;
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
