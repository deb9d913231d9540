#pragma once

// What a loaded file declares and implements, in the order of its text: the records that the symbol table
// made of it, and beside them what it recognises without making a record.

#include <string>
#include <vector>

#include "Text.h"

class TAPDefClass;
class TAPDefMethod;
class TAPDefVar;
class TAPSyntaxePath;
class TAPSymbolTable;

namespace ostraka::tool {

enum class DeclarationKind {
    Class, // with a body
    Forward,
    Enum,
    Typedef,
    Method, // in the body of its class
    Member,
    Implementation, // of a method, outside of its class
    Function,       // declared
    FunctionBody,
    Variable,
    Tie, // of the interface `name` to the class `scope`
};

// "class", "forward", "enum" and so on.
const char* NameOf(DeclarationKind kind);

// Records are the table's, and null where there is none.
struct OutlineEntry {
    DeclarationKind kind;
    std::string name;
    std::string scope; // the class of a method, a member or a tie; else empty
    std::string text;  // the declaration as it reads: "virtual int Moor(Ship* ship)"
    Place place;
    const TAPDefClass* classRecord = nullptr;
    const TAPDefMethod* method = nullptr;
    const TAPDefVar* variable = nullptr;
};

// Members of a class stand behind it. A class that was declared in an earlier file has no record and no
// members.
std::vector<OutlineEntry> DeclarationsOf(TAPSymbolTable& table, const std::string& path);

// The place of a record in its file.
Place PlaceOf(const TAPSyntaxePath& path);

// Words for the codes of records; "" for what needs no word, as the plain binding.
const char* VisibilityOf(int code);
const char* BindingOf(const TAPDefMethod& method);
const char* DirectionOf(int code);
// "plain", "interface", "component"; several with a comma between them.
std::string KindOf(const TAPDefClass& record);

// "(Ship* ship, in long slot)", and "virtual int Moor(Ship* ship)".
std::string ArgumentsOf(const TAPDefMethod& method);
std::string SignatureOf(const TAPDefMethod& method);

} // namespace ostraka::tool
