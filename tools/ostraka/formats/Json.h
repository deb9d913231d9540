#pragma once

// Answers as JSON documents. Members stand in the order in which they are put in.

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "formats/Text.h"

namespace ostraka::tool {

using JsonValue = nlohmann::ordered_json;

// The document of a verb with the members of `answer`, as one line. Bytes that aren't UTF-8 are replaced.
std::string Document(const char* verb, const JsonValue& answer);

// Puts "file", "line" and "column" into an object.
void PutPlace(JsonValue& object, const std::string& file, const Place& place);

// The value, or null.
template <class Value>
JsonValue OrNull(const std::optional<Value>& value) {
    return value ? JsonValue(*value) : JsonValue();
}

} // namespace ostraka::tool
