#pragma once

// A memory error or leak of a run. Its texts are held by the indexes of `TAPIndexContainer` and are good
// while those hold them; the stack belongs to whoever built it.

#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TypedLists.h>

class Error;
class Stack;

using NUBListPtrError = ostraka::detail::PointerList<Error>;

class OSTRAKA_EXPORT Error {
public:
    const char* odt;
    const char* fw;
    const char* type; // one of the report codes
    Stack* longStack;
    int count;

    // Enters the three texts in their indexes. A framework that is new there has a null responsible.
    Error(const NUBString& odtName, const NUBString& framework, const char* code, Stack* stack, int number);

    const char* GetType() const { return type; }
    const char* GetFw() const { return fw; }
    const char* GetOdt() const { return odt; }
    Stack* GetLongStack() const { return longStack; }
    // The shorter form of the long stack, which isn't null; null when it has none.
    Stack* GetMediumStack() const;
    int GetCount() const { return count; }
};
