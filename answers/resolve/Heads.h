#pragma once

// What stands before a block and says what the block is: the head of a class, of a namespace, of a function.
// Where the library reads none, as of constructors whose members have braces of their own, the text is read.

#include <string>
#include <string_view>
#include <vector>

class TAPSymbolTable;
class TAPSyntaxe;

namespace ostraka::answers {

// The head of a block; null for other nodes. Before the body of a function its initialisers are passed over,
// before a handler what it guards; what stands there has the same head.
TAPSyntaxe* HeadOfBody(const TAPSyntaxe& block);

// The class, struct or union whose head this is; empty for any other.
std::string_view ClassOfHead(const TAPSyntaxe& head);

// Whether it heads a namespace, or a block of another language.
bool IsNamespaceHead(const TAPSyntaxe& head);

struct FunctionHead {
    std::string className; // that the name is qualified with
    std::string name;      // empty for what is no function
    const TAPSyntaxe* args = nullptr;

    std::string FullName() const { return className.empty() ? name : className + "::" + name; }
};

FunctionHead FunctionOfHead(TAPSymbolTable& table, TAPSyntaxe& head);

// The blocks between the parentheses of the `for` loops that the statement is the body of, or stands in the
// body of without braces, from the inside out. To the tree a body is the sibling of what it belongs to.
std::vector<TAPSyntaxe*> LoopsAround(const TAPSyntaxe& statement);

// An argument of a function, or a statement that declares variables: the type of the name in it as it is
// written, without array marks turned to stars; empty where the text declares no such name.
std::string TypeInText(const TAPSyntaxe& declaration, std::string_view name);

} // namespace ostraka::answers
