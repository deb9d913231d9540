#pragma once

// How declarations that answer a question are shown.

#include <string>
#include <vector>

#include <answers/facts/Outline.h>

#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"

namespace ostraka::tool {

// "class", "method", "macro" and so on.
const char* WordFor(const PlaceAnswer& answer);
const char* WordFor(FactKind kind); // of what is no member

const char* WordOf(Access access); // "" for none

// "bases", with the access and whether it is virtual of each. They have fields as `Base`.
template <class Bases>
void BasesJson(JsonWriter& json, const Bases& bases) {
    json.List("bases", bases, [&](const auto& base) {
        json.BeginObject();
        json.Member("name", base.name);
        json.Member("access", WordOf(base.access));
        json.Member("virtual", base.isVirtual);
        json.EndObject();
    });
}

// Gives the implementations among the entries of a file the access that their classes declare.
void TakeAccess(CodeSession& code, const std::string& path, std::vector<OutlineEntry>& entries);

// The members of one declaration: its place, name, kind, scope, type and certainty.
void DeclaredMembers(JsonWriter& json, CodeSession& session, const PlaceAnswer& answer);

} // namespace ostraka::tool
