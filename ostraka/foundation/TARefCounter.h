#pragma once

// Base of every shared object. A new object has one reference, held by whoever created it; whoever stores it
// elsewhere calls `AddRef`, each holder ends with `Release`, and the last `Release` destroys the object. The
// count isn't atomic: one thread at a time.

#include <ostraka/Export.h>
#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/TypedLists.h>

class OSTRAKA_EXPORT TARefCounter {
public:
    // References that are held; -1 once the object is dead.
    int count = 1;

    TARefCounter() = default;
    TARefCounter(const TARefCounter&) = delete;
    TARefCounter& operator=(const TARefCounter&) = delete;

    void AddRef() { ++count; }

    // Gives one reference back. The last one deletes the object, which keeps the count 1 while it dies. FATAL
    // when there was none to give back.
    void Release() {
        FATAL(count < 1, "Too many release on object number ");
        if (count == 1)
            delete this;
        else
            --count;
    }

    // An object without a second holder may also be deleted or go out of scope. FATAL while others hold it.
    virtual ~TARefCounter() {
        FATAL(count != 1, "Delete on references object");
        // Volatile, or the compiler drops a store to an object at its end; memory that is recycled keeps the
        // mark.
        volatile int& mark = count;
        mark = -1;
    }
};

using NUBListPtrTARefCounter = ostraka::detail::PointerList<TARefCounter, ostraka::detail::ListKind::Plain>;
