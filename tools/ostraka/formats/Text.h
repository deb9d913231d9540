#pragma once

// How texts and places look in every output.

#include <string>
#include <string_view>

#include <answers/facts/Escapes.h>
#include <answers/facts/Place.h>

#include "cli/Messages.h"
#include "cli/Request.h"

namespace ostraka::tool {

// The first `limit` bytes of the text, the last three an ellipsis where it was cut; no UTF-8 character is
// cut.
std::string Shortened(std::string_view text, std::size_t limit);

// The text, and "file:line:column", as the request wants them on standard output.
std::string Colored(const Request& request, std::string_view color, std::string_view text);
std::string PlaceText(const Request& request, std::string_view file, const Place& place);

} // namespace ostraka::tool
