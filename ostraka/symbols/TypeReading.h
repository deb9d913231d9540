#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include <basalt/NUBString.h>

class TAPSymbolTable;
class TAPSyntaxe;

// The type of an expression, and what a block declares, each in the form that serves a reader of many
// declarations of one block.
namespace ostraka::detail {

// Gives the type of the object that a node names, or an empty text: TAPSymbolTable::FindClass, or an answer
// that is the same and costs less.
using TypeOfObject = std::function<NUBString(TAPSyntaxe*)>;

// TAPSymbolTable::GetType, with the types of objects from `typeOfObject`: 0 with the type in `type`, 1 where
// it can't be told.
int ReadType(const TAPSymbolTable& table, TAPSyntaxe* node, NUBString& type,
             const TypeOfObject& typeOfObject);

// Every name that TAPSymbolTable::FindDeclare finds in one block, with the type that it finds, from one walk
// over the block. It keeps texts of its own and no node, and knows what the table knew on construction.
class DeclaredNames {
public:
    DeclaredNames(TAPSymbolTable& table, TAPSyntaxe* block);

    // Good as long as this object; null for a name that isn't declared.
    const NUBString* TypeOf(std::string_view name) const;

private:
    std::unordered_map<std::string, NUBString> types;
};

} // namespace ostraka::detail
