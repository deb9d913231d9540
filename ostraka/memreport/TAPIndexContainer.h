#pragma once

// Every index, list and filter of the memory reports of a process, so that all calls, stacks and errors of a
// run share one set of interned texts.
//
// The indexes live from the loading of the library to its unloading, and the statics of a client find them
// alive, whether it links the library shared or not. They own their keys. The calls, stacks and errors that
// they name belong to whoever built them; the masks that the setters add to a filter live as long as it does.
// A tool calls `InitStatic` once, and `SetRespForFwIndex` before it builds calls.

#include <basalt/NUBListValNUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TAIndexB.h>
#include <ostraka/memreport/StackMask.h>

class Error;

class OSTRAKA_EXPORT TAPIndexContainer {
public:
    // Calls by their text and by their short text.
    static TAIndex LongCallIndex;
    static TAIndex ShortCallIndex;

    // Stacks by their calls.
    static TAIndexB LeaksLongStackIndex;
    static TAIndexB LeaksMediumStackIndex;
    static TAIndexB LeaksShortStackIndex;
    static TAIndexB ErrorLongStackIndex;
    static TAIndexB ErrorMediumStackIndex;
    static TAIndexB ErrorShortStackIndex;

    // What a stack passes over when it looks for whom to charge: responsibles, and short call texts.
    static TAIndex LeaksIgnoredResponsible;
    static TAIndex ErrorIgnoredResponsible;
    static TAIndex LeaksCallIgnoredResponsible;
    static TAIndex ErrorCallIgnoredResponsible;
    static NUBListValNUBString LeaksCallStringToJumpOver;
    static NUBListValNUBString ErrorCallStringToJumpOver;

    // Filled and read by the tools.
    static TAIndex ErrorsStackToJumpOver;
    static TAIndex LeaksStackToJumpOver;
    static TAIndex ErrorStackToExtend;
    static TAIndex ErrorStackToReduce;
    static TAIndex LeaksStackToExtend;
    static TAIndex LeaksStackToReduce;

    static NUBListPtrStackMask ErrorCallStackFilter;
    static NUBListPtrStackMask LeaksCallStackFilter;

    static TAIndex responsibleIndex; // each responsible once
    static TAIndex fwForSourceIndex; // source path to framework: a key of `respForFwIndex`, or null
    static TAIndex respForFwIndex;   // framework to responsible: a key of `responsibleIndex`, "." or null
    static TAIndex odtIndex;
    static TAIndex errorIndex; // each report code once

    // All errors and all leaks, with one slot more than the capacity; null until `InitStatic`, and from
    // `malloc`. The tools count the entries in use.
    static Error** ErrorList;
    static Error** LeaksList;
    static int ErrorListSize;
    static int LeaksListSize;
    static int ErrorListMaxSize;
    static int LeaksListMaxSize;

    // The codes of errors and of leaks, with null behind the last one.
    static char* ErrorTypes[26];
    static char* LeakTypes[3];

    // By how many entries the lists grow.
    static int incSize;

    // Gives the two lists their first room. A list that has room already keeps it.
    static void InitStatic();
    // Grows one of the lists by `incSize`, which before that is multiplied by 5, for both lists, when it is
    // less than a ninth of `size`. The content stays, and new slots are null.
    static void IncreaseListMaxSize(Error**& list, int& size, int& maxSize);

    // Add masks to a filter, in the reverse order of the entries. An entry reads "type@@@mask"; others are
    // passed over.
    static void SetErrorCallStackFilter(const NUBListValNUBString& entries);
    static void SetLeaksCallStackFilter(const NUBListValNUBString& entries);
    // Enters the frameworks of an ownership listing with their owners (see `MakeFrameworkOwnerDico`). A
    // framework that is known already keeps its responsible, the "." of a call included.
    static void SetRespForFwIndex(const NUBListValNUBString& people, const NUBListValNUBString& lines);
};
