#pragma once

// How declarations that answer a question are shown.

#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"

namespace ostraka::tool {

// "class", "method", "macro" and so on.
const char* WordFor(const PlaceAnswer& answer);
const char* WordFor(FactKind kind); // of what is no member

// The members of one declaration: its place, name, kind, scope, type and certainty.
void DeclaredMembers(JsonWriter& json, CodeSession& session, const PlaceAnswer& answer);

} // namespace ostraka::tool
