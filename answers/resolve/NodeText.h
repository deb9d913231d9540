#pragma once

// How a node reads: its class, its kind, its text, its place. Texts point into the stream of the node's file.

#include <string>
#include <string_view>

#include <answers/facts/Place.h>

class TAPSyntaxe;

namespace ostraka::answers {

const char* ClassNameOf(const TAPSyntaxe& node);

// What a node is within its class; "" for the classes that have one sort of node only.
std::string KindOf(const TAPSyntaxe& node);

// Both as they stand in a list: `TAPExpression "dc"`.
std::string DescriptionOf(const TAPSyntaxe& node);

// The node's range of the stream. A name can lie behind the stream's end, in a text that breaks off.
std::string_view TextOf(const TAPSyntaxe& node);

// The same without blanks at the ends, which a list doesn't want.
std::string_view TrimmedTextOf(const TAPSyntaxe& node);

// The place of the first character that shows.
Place PlaceOf(const TAPSyntaxe& node);

} // namespace ostraka::answers
