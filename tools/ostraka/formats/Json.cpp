#include "formats/Json.h"

namespace ostraka::tool {

std::string Document(const char* verb, const JsonValue& answer) {
    JsonValue document = {{"format", std::string("ostraka.") + verb}, {"version", 1}};
    document.update(answer);
    return document.dump(-1, ' ', false, JsonValue::error_handler_t::replace) + "\n";
}

void PutPlace(JsonValue& object, const std::string& file, const Place& place) {
    object["file"] = file;
    object["line"] = place.line;
    object["column"] = place.column;
}

} // namespace ostraka::tool
