#include <ostraka/foundation/TACallback.h>

TACallbackPublisher::~TACallbackPublisher() {
    delete subscribers;
}

void TACallbackPublisher::AddSubscriber(TACallbackSubscriber* subscriber) {
    if (!subscribers) subscribers = new NUBListPtrTACallbackSubscriber(0);
    subscribers->Append(subscriber);
}

void TACallbackPublisher::RemoveSubscriber(TACallbackSubscriber* subscriber) {
    if (!subscribers) return;
    for (int i = subscribers->size; i >= 1; --i)
        if ((*subscribers)[i] == subscriber) subscribers->RemovePosition(i);
}

// The size is read afresh after each call, since a callback may change the list.
int TACallbackPublisher::SendCallback(int code, void* data1, void* data2) {
    if (!subscribers || subscribers->size == 0) return 1;
    for (int i = 1; i <= subscribers->size; ++i) (*subscribers)[i]->ReceiveCallback(this, code, data1, data2);
    return 0;
}
