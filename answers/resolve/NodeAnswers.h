#pragma once

// What the symbol table can say of one node: its type, where its name is declared, what is around it, on what
// a method is called, whether a variable goes back to the caller. The library looks at the blocks around a
// node; the heads of blocks, the file's own variables and the records of classes are asked here besides.
//
// Nodes are those of the table, good until it changes.

#include <optional>
#include <string>
#include <vector>

class TAPSymbolTable;
class TAPSyntaxe;

namespace ostraka::answers {

// One thing that the name is known as, such as "variable", "member of Ship", "method of Ship" or "class".
struct Declaration {
    TAPSyntaxe* node; // null where only the name is kept, as of enums and macros
    std::string as;
    std::string type; // of a variable, or what a method returns, or the text of a macro; else empty
};

struct Object {
    TAPSyntaxe* node;
    std::optional<std::string> type; // the one that it is cast to, where it is
};

// Whether a variable goes back to the caller.
struct GoesBack {
    bool isReturned;
    int argument;  // the position of the argument that it is, from 1; else 0
    int arguments; // how many there are
};

struct NodeAnswers {
    std::optional<std::string> type;
    std::vector<Declaration> declared; // several for a method with overloads
    std::optional<std::string> className;
    std::optional<std::string> method;
    bool isAccess = false; // the name stands on the right of `->` or `.`
    std::optional<Object> object;
    std::optional<GoesBack> goesBack; // for variables and arguments
};

NodeAnswers AskAbout(TAPSymbolTable& table, TAPSyntaxe& node);

} // namespace ostraka::answers
