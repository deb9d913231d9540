#pragma once

// What a loaded file declares and implements, in the order of its text: the records that the symbol table
// made of it, and beside them what shows in the text alone.

#include <string>
#include <string_view>
#include <vector>

#include <answers/facts/DeclarationText.h>
#include <answers/facts/Place.h>

class TAPDefClass;
class TAPDefMethod;
class TAPDefVar;
class TAPSyntaxePath;
class TAPSymbolTable;

namespace ostraka::answers {

// "class", "forward", "enum" and so on.
const char* NameOf(DeclarationKind kind);

// Records are the table's, and null where there is none.
struct OutlineEntry {
    DeclarationKind kind = DeclarationKind::Variable;
    std::string name;
    std::string scope; // "Berth::Side": the class, the enum or the namespace around the name; else empty
    DeclarationKind scopeKind = DeclarationKind::Class;
    std::string text;      // the declaration as it reads: "virtual int Moor(Ship* ship) = 0"
    std::string arguments; // of a function: "(Ship* ship)"
    std::string type;      // of a variable, where it can be read
    bool hasBody = false;  // of a function
    Place place;           // of the statement
    Place namePlace;       // of the name in it
    int depth = 0;         // how many of the entries before it are around it
    int visibility = -1;   // as in records
    const TAPDefClass* classRecord = nullptr;
    TAPDefMethod* method = nullptr;
    const TAPDefClass* owner = nullptr; // in whose body it stands
};

// Whether both are names of one statement, which they show as their text.
bool SharesStatement(const OutlineEntry& a, const OutlineEntry& b);

// Members of a class stand behind it. A class that was declared in an earlier file has no record.
std::vector<OutlineEntry> DeclarationsOf(TAPSymbolTable& table, const std::string& path);

// What stands in the body of the class.
std::vector<OutlineEntry> MembersOf(TAPSymbolTable& table, const TAPDefClass& record);

// The head of an implementation as it reads, without the list of initialisers.
std::string ImplementationText(TAPSymbolTable& table, const TAPDefMethod& method);

// The place of a record in its file.
Place PlaceOf(const TAPSyntaxePath& path);

// Words for the codes of records; "" for what needs no word, as the plain binding.
const char* VisibilityOf(int code);
const char* BindingOf(const TAPDefMethod& method);
const char* DirectionOf(int code);
// "plain", "interface", "component"; several with a comma between them.
std::string KindOf(const TAPDefClass& record);

} // namespace ostraka::answers
