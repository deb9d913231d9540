#pragma once

// A minimal pair of observers. A source file tells the symbol table, and the table a tool, that the raw text
// of a file is at hand: event 1, the only one. A publisher owns its list of subscribers and none of them; a
// subscriber takes itself out before it dies, its destructor doesn't.

#include <ostraka/Export.h>
#include <ostraka/foundation/TypedLists.h>

class TACallbackPublisher;

class OSTRAKA_EXPORT TACallbackSubscriber {
public:
    // Receives event `code`; what `data1` and `data2` are depends on the sender. Nobody looks at the result.
    virtual int ReceiveCallback(TACallbackPublisher* publisher, int code, void* data1, void* data2) = 0;

protected:
    TACallbackSubscriber() = default;
    TACallbackSubscriber(const TACallbackSubscriber&) = default;
    TACallbackSubscriber& operator=(const TACallbackSubscriber&) = default;
    ~TACallbackSubscriber() = default;
};

using NUBListPtrTACallbackSubscriber =
    ostraka::detail::PointerList<TACallbackSubscriber, ostraka::detail::ListKind::Plain>;

class OSTRAKA_EXPORT TACallbackPublisher {
public:
    // In order of subscription; null until the first one arrives. Owned.
    NUBListPtrTACallbackSubscriber* subscribers = nullptr;

    TACallbackPublisher() = default;
    ~TACallbackPublisher();
    TACallbackPublisher(const TACallbackPublisher&) = delete;
    TACallbackPublisher& operator=(const TACallbackPublisher&) = delete;

    // Adds at the end, a second time too.
    void AddSubscriber(TACallbackSubscriber* subscriber);
    // Takes out every entry of this subscriber.
    void RemoveSubscriber(TACallbackSubscriber* subscriber);

    // Calls each subscriber in order. 1 when there is none, else 0. One that is added meanwhile is called
    // too; one that takes itself out moves the next into its place, and that one is passed over.
    int SendCallback(int code, void* data1, void* data2);
};
