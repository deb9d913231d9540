#pragma once

// Sources about which each question is quick, but that grow until it isn't any more if an answer costs as
// much as there is text. The benchmark times them and the tests hold a coarse bound.

#include <string>
#include <string_view>
#include <vector>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace texts {

// A text that is repeated, then another one as often, and a question that is asked of each word of both; null
// where the load alone asks. Each '$' becomes the number of the repetition, each '%' the one before it.
struct GrowingQuestions {
    const char* name;
    std::string_view first;
    std::string_view unit;
    std::string_view middle;
    std::string_view closing; // repeated like the unit
    void (*ask)(TAPSymbolTable& table, TAPSyntaxe& word);
};

inline void AskDeclaration(TAPSymbolTable& table, TAPSyntaxe& word) {
    NUBString type;
    table.FindDeclare(&word, type, nullptr, 0);
}

// The same from the file's level.
inline void AskDeclarationInFile(TAPSymbolTable& table, TAPSyntaxe& word) {
    TAPSyntaxe* root = &word;
    while (root->GetParent() != nullptr) root = root->GetParent();
    NUBString type;
    table.FindDeclare(&word, type, root, 0);
}

inline void AskType(TAPSymbolTable& table, TAPSyntaxe& word) {
    NUBString type;
    table.GetType(&word, type);
}

inline void AskReturned(TAPSymbolTable& table, TAPSyntaxe& word) {
    int arguments = 0;
    table.IsReturned(&word, word.GetContent(), arguments, 0);
}

inline void AskBase(TAPSymbolTable& table, TAPSyntaxe& word) {
    table.InheritFrom(word.GetContent(), "C");
}

inline constexpr GrowingQuestions growingQuestions[] = {
    {"classes in a line", "class C{};", "class C$ : public C%{};\n", "", "", nullptr},
    {"bases asked for", "class C{};", "class C$ : public C%{};\n", "", "", AskBase},
    {"members of no type", "class A{", "U$ u$;\n", "};", "", nullptr},
    {"overloads half known", "class A{", "int f(U$ a,SEQUENCE_$ b);\n", "};",
     "int A::f(U$ a,SEQUENCE_$ b){}\n", nullptr},
    {"names not declared", "void A::f(int p){", "x = y(z$);\n", "}", "", AskDeclaration},
    {"names declared", "void A::f(int p){", "int x$ = p;use(x$);\n", "}", "", AskDeclaration},
    {"names in blocks", "void A::f(int p){", "if(a){int x$ = p;use(x);}\n", "}", "", AskType},
    {"loops without braces", "void A::f(int p){", "for(int i$ = 0;i$ < p;i$++)\n", "use(i1);}", "",
     AskDeclaration},
    {"names of the file", "", "int A::f$(int p){int x;x = p;}\n", "", "", AskDeclarationInFile},
    {"variables given back", "int A::f(int p){", "int x$;if(p){return x$;}\n", "}", "", AskReturned},
};

inline void AppendRepeated(std::string& text, std::string_view unit, int count) {
    for (int i = 1; i <= count; ++i) {
        for (const char c : unit) {
            if (c == '$') {
                text += std::to_string(i);
            } else if (c == '%') {
                if (i > 1) text += std::to_string(i - 1);
            } else {
                text += c;
            }
        }
    }
}

inline std::string TextOf(const GrowingQuestions& shape, int count) {
    std::string text(shape.first);
    AppendRepeated(text, shape.unit, count);
    text += shape.middle;
    AppendRepeated(text, shape.closing, count);
    return text;
}

inline void AskAllWords(const GrowingQuestions& shape, TAPSymbolTable& table, TAPSyntaxe& root) {
    std::vector<TAPSyntaxe*> waiting;
    if (shape.ask != nullptr) waiting.push_back(&root);
    while (!waiting.empty()) {
        TAPSyntaxe* node = waiting.back();
        waiting.pop_back();
        if (node->GetType() == STYPE_Identifiant) shape.ask(table, *node);
        for (int i = node->ChildCount(); i >= 1; --i) waiting.push_back(node->Child(i));
    }
}

} // namespace texts
