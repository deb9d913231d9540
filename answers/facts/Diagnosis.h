#pragma once

// The library's failures in an engineer's words, and what it says nothing of since it fails of nothing.

#include <optional>
#include <string_view>

#include <answers/facts/Place.h>
#include <gneiss/qxContext.h>
#include <ostraka/syntax/TAPFailure.h>

namespace ostraka::answers {

// Nothing for a failure with the code SFAIL_None.
std::optional<Failure> FailureOf(const TAPFailure& failure);

// The NUL before the end of a text, behind which the library reads nothing; nothing where there is none.
std::optional<Failure> FindNul(std::string_view text);

// Keeps from standard error, for its lifetime, what the library prints there: a failure that is told with its
// place needn't be told without it too.
class SilentTraces {
public:
    SilentTraces() : guard(*qxExtContext.GetTraceMngr(), &sink) {}

private:
    struct Sink final : qxTraceSink {
        void Receive(const qxKeyForTraceManager&, const NUBUnicodeString&) override {}
    };

    Sink sink;
    qxTraceSinkGuard guard;
};

} // namespace ostraka::answers
