#pragma once

// A frame line of a memory report, and the framework that its source file belongs to.
//
//     Foo::Bar(int) [/w/FwA/Mod.m/src/a.cpp:12]
//
// The short call is what stands before the first "[", without the blanks and control characters at its end,
// and the whole line where there is no "[". The source path goes from there to the first ":"; without a ":",
// when ".m/src/" stands in it, to the first "]" behind that. Any other line has no source and no framework.
//
// Neither text of a call is its own. The line is held by the index that was given to the constructor, and
// all calls that one index has for one line hold one address; the framework's name is held by
// `TAPIndexContainer::respForFwIndex`. Both are good while those entries last. Lines and paths may have any
// length.

#include <string_view>

#include <ostraka/Export.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TypedLists.h>

class Call;

// An index whose values are `Call*`.
using TAIndexCall = TAIndex;
using NUBListPtrCall = ostraka::detail::PointerList<Call>;

// What a frame line says, as views of it.
struct CallParts {
    std::string_view function; // the short call
    std::string_view path;     // of the source, empty without one
    int line = 0;              // the number behind the path and its ":", 0 when there is none
};

class OSTRAKA_EXPORT Call {
public:
    const char* fwResponsible = nullptr; // null when the line shows no framework
    const char* call;

    // The workspace of the run, which the library only keeps; null until it is set.
    static char* wsOfRun;

    // Enters the line in `index`, which names the first call that was built for it. A source path that was
    // seen before has the framework it had then, none included; that of a new one is the component two above
    // the ".m/src" or "LocalGenerated" layer: FwA in the example.
    Call(const char* text, TAIndexCall* index);
    Call(const Call&) = default;
    Call& operator=(const Call&) = default;
    // Leaves both fields null.
    ~Call();

    // Keeps a copy, which lasts until the next one; null keeps null.
    static void SetWsOfRun(const char* workspace);

    const char* GetCall() const { return call; }
    const char* GetFwResponsible() const { return fwResponsible; }
    // Keeps the pointer itself.
    void SetFwResponsible(const char* framework) { fwResponsible = framework; }
    // Who is responsible for the framework: null without a framework, and where only an error has brought it
    // into the index; "." when nobody is known, also when the index doesn't have the framework.
    const char* GetResponsible() const;

    // 1 when both hold one line of one index, else 0.
    int IsEqual(const Call* other) const { return call == other->call; }
    // 1 when the line begins with `prefix`, else 0.
    int HasString(const char* prefix) const;
    // A copy of the short call, for `free`.
    char* GetShortCall() const;
    // Good as long as the line.
    CallParts GetParts() const;
};
