#pragma once

// What the verbs over classes ask of the records of a table. Records are the table's.

#include <string>
#include <string_view>
#include <vector>

#include "formats/JsonWriter.h"
#include "formats/Text.h"

class TAPDefClass;
class TAPSymbolTable;
class TAPSyntaxePath;

namespace ostraka::tool {

struct Request;
struct Result;
class Session;

// Sorted by name.
std::vector<TAPDefClass*> ClassesOf(const TAPSymbolTable& table);

// Tells that there is no such class, with the nearest name.
void TellNoClass(const Session& session, const std::string& name, Result& result);

// The class of that name; else null, which is told.
TAPDefClass* FindClass(const Session& session, const std::string& name, Result& result);

// "" where none is known, as where the head of a class breaks off behind the colon.
const char* BaseOf(const TAPDefClass& record);
bool HasBase(const TAPDefClass& record);

// "" for a class outside of all frameworks; the text stands behind a class in a list.
std::string_view FrameworkOf(const TAPDefClass& record);
std::string FrameworkText(const TAPDefClass& record);

// Where the class stands between its bases and those derived from it.
struct Kin {
    std::vector<TAPDefClass*> bases; // those that are loaded, the nearest first
    std::vector<TAPDefClass*> derived;
    std::vector<TAPDefClass*> tiedTo; // of an interface: classes that it is tied to
    bool inCircle = false;
};

Kin KinOf(const TAPSymbolTable& table, const TAPDefClass& record);

// As it stands in texts.
std::string PlaceText(const Request& request, const Session& session, const TAPSyntaxePath* path);

// As they stand in documents. A class adds its members to an open object.
void PlaceJson(JsonWriter& json, const std::string& file, const Place& place);
void PlaceJson(JsonWriter& json, const Session& session, const TAPSyntaxePath* path);
void ClassMembers(JsonWriter& json, const Session& session, const TAPDefClass& record);
void NamesJson(JsonWriter& json, std::string_view member, const std::vector<TAPDefClass*>& classes);
void TiesJson(JsonWriter& json, const TAPDefClass& record);

} // namespace ostraka::tool
