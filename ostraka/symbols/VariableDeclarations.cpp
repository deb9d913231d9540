// There is no grammar behind a declaration. A walk over the expression of a statement proves the words that
// come first in it to be a type, by looking each of them up, and flattens the statement into a list of words:
// `int a, *b, c[3];` becomes
//
//     int  a  ,  *  b  ,  c  [  ]
//
// A second walk over that list makes the records. What is declared therefore hangs on the types that were met
// before, and headers are loaded first.

#include <algorithm>
#include <string>
#include <string_view>

#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/symbols/TypeNames.h>

using namespace ostraka::detail;

namespace {

constexpr int noSign = -1;
constexpr int noDeclaration = 0;
constexpr int variable = 1;
constexpr int function = 2;

// Typed lists and sequences, as the stream shows them.
bool IsTypedList(std::string_view word) {
    static constexpr std::string_view prefixes[] = {"NUBLISTP_", "NUBLISTV_", "SEQUENCE_"};
    return std::any_of(std::begin(prefixes), std::end(prefixes),
                       [=](std::string_view prefix) { return word.starts_with(prefix); });
}

bool IsTypeMacro(const TAPSymbolTable& table, std::string_view word) {
    const int position = table.macros.IsIn(word.data(), static_cast<int>(word.size()));
    if (position < 0) return false;
    const auto* text = static_cast<const char*>(table.macros.values[position]);
    return text != nullptr &&
           (Holds(table.basicTypes, text) || Holds(table.types, text) || IsTypedList(text));
}

bool IsTypeWord(const TAPSymbolTable& table, std::string_view word) {
    return Holds(table.keywords, word) || Holds(table.basicTypes, word) || Holds(table.types, word) ||
           (IsHandle(word) && Holds(table.types, Referred(word))) || IsTypedList(word) ||
           IsTypeMacro(table, word);
}

// The last word of a type; the words before it have been found to be keywords.
bool IsLastWordOfType(const TAPSymbolTable& table, std::string_view word) {
    const std::string_view referred = Referred(word);
    return Holds(table.basicTypes, referred) || Holds(table.types, referred) || Holds(table.types, word) ||
           Holds(table.keywords, referred) || IsTypedList(referred) || IsTypeMacro(table, referred);
}

bool IsType(const TAPSymbolTable& table, std::string_view type) {
    static constexpr std::string_view separators = " *&";
    std::string_view last;
    for (std::size_t begin = 0;
         (begin = type.find_first_not_of(separators, begin)) != std::string_view::npos;) {
        const std::size_t past = std::min(type.find_first_of(separators, begin), type.size());
        if (!last.empty() && !Holds(table.keywords, last)) return false;
        last = type.substr(begin, past - begin);
        begin = past;
    }
    return !last.empty() && IsLastWordOfType(table, last);
}

// The walk that proves and flattens. A strict step demands that the words reached so far are a type; a loose
// one comes behind that proof and only collects. The steps call each other in proportion to the depth of the
// tree, which its builder bounds.
class DeclarationWalk {
public:
    DeclarationWalk(TAPSymbolTable& symbols, NUBListValNUBString& list) : table(symbols), words(list) {}

    // The two walks over a node, which may be null.
    int Loose(TAPSyntaxe* node) { return Step(node, &Row::loose); }
    int Strict(TAPSyntaxe* node) { return Step(node, &Row::strict); }

private:
    using Rule = int (DeclarationWalk::*)(TAPSyntaxe& node, const char* kind);

    struct Row {
        const char* kind;
        Rule loose;
        Rule strict;
    };

    static const Row rows[];

    int Step(TAPSyntaxe* node, Rule Row::*column);

    int LooseComma(TAPSyntaxe& node, const char* kind);
    int StrictComma(TAPSyntaxe& node, const char* kind);
    int LooseFirst(TAPSyntaxe& node, const char* kind);
    int StrictFirst(TAPSyntaxe& node, const char* kind);
    int LooseMark(TAPSyntaxe& node, const char* kind);
    int StrictMark(TAPSyntaxe& node, const char* kind);
    int LooseReference(TAPSyntaxe& node, const char* kind);
    int StrictReference(TAPSyntaxe& node, const char* kind);
    int LooseIndex(TAPSyntaxe& node, const char* kind);
    int StrictIndex(TAPSyntaxe& node, const char* kind);
    int LooseCall(TAPSyntaxe& node, const char* kind);
    int StrictCall(TAPSyntaxe& node, const char* kind);
    int LooseWord(TAPSyntaxe& node, const char* kind);
    int StrictWord(TAPSyntaxe& node, const char* kind);
    int LooseOther(TAPSyntaxe& node, const char* kind);
    int StrictOther(TAPSyntaxe& node, const char* kind);
    int Refuse(TAPSyntaxe&, const char*) { return noDeclaration; }

    void Append(std::string_view word) { words.Append(NUBString(word)); }

    TAPSymbolTable& table;
    NUBListValNUBString& words;
};

// The first row whose kind the node has decides; the last one takes what is left.
constexpr DeclarationWalk::Row DeclarationWalk::rows[] = {
    // clang-format off
    // kind, loose,                            strict
    {",",  &DeclarationWalk::LooseComma,     &DeclarationWalk::StrictComma},
    {"=",  &DeclarationWalk::LooseFirst,     &DeclarationWalk::StrictFirst},
    {"&&", &DeclarationWalk::LooseMark,      &DeclarationWalk::StrictMark},
    {"&",  &DeclarationWalk::LooseReference, &DeclarationWalk::StrictReference},
    {"*",  &DeclarationWalk::LooseMark,      &DeclarationWalk::StrictMark},
    {"in", &DeclarationWalk::LooseIndex,     &DeclarationWalk::StrictIndex},
    {"mt", &DeclarationWalk::LooseCall,      &DeclarationWalk::StrictCall},
    {"ct", &DeclarationWalk::LooseOther,     &DeclarationWalk::Refuse},
    {"id", &DeclarationWalk::LooseWord,      &DeclarationWalk::StrictWord},
    {"",   &DeclarationWalk::LooseOther,     &DeclarationWalk::StrictOther},
    // clang-format on
};

int DeclarationWalk::Step(TAPSyntaxe* node, Rule Row::*column) {
    if (node == nullptr) return noSign;
    if (node->GetType() == STYPE_Instruction && node->ChildCount() > 0) node = node->Child(1);
    const Row* row = rows;
    while (*row->kind != '\0' && !IsOfKind(node, row->kind)) ++row;
    return (this->*(row->*column))(*node, row->kind);
}

int DeclarationWalk::LooseComma(TAPSyntaxe& node, const char*) {
    Loose(ChildOf(&node, 1));
    Append(",");
    Loose(ChildOf(&node, 2));
    return variable;
}

int DeclarationWalk::StrictComma(TAPSyntaxe& node, const char*) {
    if (node.ChildCount() == 0 || Strict(node.Child(1)) == noDeclaration) return noDeclaration;
    Append(",");
    Loose(ChildOf(&node, 2));
    return variable;
}

// The initialiser behind the first child is never looked at.
int DeclarationWalk::LooseFirst(TAPSyntaxe& node, const char*) {
    return Loose(ChildOf(&node, 1));
}

int DeclarationWalk::StrictFirst(TAPSyntaxe& node, const char*) {
    return node.ChildCount() == 0 ? noDeclaration : Strict(node.Child(1));
}

int DeclarationWalk::LooseMark(TAPSyntaxe& node, const char* kind) {
    const int first = Loose(ChildOf(&node, 1));
    Append(kind);
    return node.ChildCount() == 2 ? Loose(node.Child(2)) : first;
}

int DeclarationWalk::StrictMark(TAPSyntaxe& node, const char* kind) {
    const int first = node.ChildCount() == 0 ? noDeclaration : Strict(node.Child(1));
    if (first == noDeclaration) return noDeclaration;
    Append(kind);
    const int second = node.ChildCount() == 2 ? Loose(node.Child(2)) : noSign;
    return second != noSign ? second : first;
}

int DeclarationWalk::LooseReference(TAPSyntaxe& node, const char* kind) {
    const int count = node.ChildCount();
    if (count == 0) return noDeclaration;
    const int first = count == 1 ? noSign : Loose(node.Child(1));
    Append(kind);
    const int last = Loose(node.Child(count == 1 ? 1 : 2));
    return last != noSign ? last : first;
}

// Without a second child it takes an address.
int DeclarationWalk::StrictReference(TAPSyntaxe& node, const char* kind) {
    return node.ChildCount() < 2 ? noDeclaration : StrictMark(node, kind);
}

int DeclarationWalk::LooseIndex(TAPSyntaxe& node, const char*) {
    const int first = Loose(ChildOf(&node, 1));
    Append("[");
    Append("]");
    return first;
}

int DeclarationWalk::StrictIndex(TAPSyntaxe& node, const char*) {
    if (node.ChildCount() == 0) return noDeclaration;
    const int first = Strict(node.Child(1));
    Append("[");
    Append("]");
    return first;
}

int DeclarationWalk::LooseCall(TAPSyntaxe& node, const char*) {
    Loose(ChildOf(&node, 1));
    if (node.ChildCount() < 2) {
        Append("(");
        Append(")");
        return function;
    }
    NUBString type, name;
    TAPSyntaxe* argument = ChildOf(ChildOfType(&node, 2, STYPE_ListOfArgs), 1);
    return table.GetArgType(argument, type, name) != 0 ? function : variable;
}

// A function if its arguments begin with a type, or there are none; else a variable with its constructor.
int DeclarationWalk::StrictCall(TAPSyntaxe& node, const char*) {
    if (node.ChildCount() == 0 || Strict(node.Child(1)) == noDeclaration) return noDeclaration;
    if (node.ChildCount() == 1 || Strict(node.Child(2)) == variable) return function;
    Append("(");
    Append(")");
    return variable;
}

int DeclarationWalk::LooseWord(TAPSyntaxe& node, const char*) {
    Append(TextOf(node));
    return variable;
}

int DeclarationWalk::StrictWord(TAPSyntaxe& node, const char*) {
    if (!IsTypeWord(table, TextOf(node))) return noDeclaration;
    Append(TextOf(node));
    return variable;
}

int DeclarationWalk::LooseOther(TAPSyntaxe& node, const char*) {
    int result = noDeclaration;
    for (int i = 1; i <= node.ChildCount(); ++i) {
        const int child = Loose(node.Child(i));
        if (child != noSign || result == noDeclaration) result = child;
    }
    return TextOf(node).empty() ? noSign : result;
}

// A missing operand is no type, so that an assignment through a pointer isn't taken for a declaration.
int DeclarationWalk::StrictOther(TAPSyntaxe& node, const char*) {
    if (node.GetType() == STYPE_NULL) return noDeclaration;
    if (node.ChildCount() == 0) return variable;
    if (Strict(node.Child(1)) == noDeclaration) return noDeclaration;
    for (int i = 2; i <= node.ChildCount(); ++i) Loose(node.Child(i));
    return variable;
}

// Makes a record of each declarator in a list of words.
class RecordMaker {
public:
    RecordMaker(TAPSymbolTable& symbols, TAPSyntaxe* definition, NUBListPtrTAPDefVar& records)
        : table(symbols), node(definition), vars(records) {}

    int Read(const NUBListValNUBString& words) {
        for (int i = 1; i <= words.Size(); ++i) {
            const NUBString& word = words[i];
            if (count == 0 && IsTypeWord(table, word.View())) {
                if (!type.empty()) type += ' ';
                type += word.View();
            } else if (word == "[" || word == "(") {
                if (word == "[") marks += '*'; // an array is told as a pointer
                ++i;
            } else if (!Take(word)) {
                return count;
            }
        }
        EndDeclarator();
        return count;
    }

private:
    // False for a second name.
    bool Take(const NUBString& word) {
        if (std::find(std::begin(typeMarks), std::end(typeMarks), word.View()) != std::end(typeMarks)) {
            marks += word.View();
        } else if (word == ",") {
            EndDeclarator();
        } else if (name.empty()) {
            name = word.View();
        } else {
            return false;
        }
        return true;
    }

    void EndDeclarator() {
        if (!name.empty()) {
            vars.Append(new TAPDefVar(node, name.c_str(), (type + marks).c_str(), &table));
            ++count;
        }
        name.clear();
        marks.clear();
    }

    TAPSymbolTable& table;
    TAPSyntaxe* node;
    NUBListPtrTAPDefVar& vars;
    std::string type;
    std::string marks;
    std::string name;
    int count = 0;
};

} // namespace

int TAPSymbolTable::IsVariableDeclarationInternal(TAPSyntaxe* node, NUBListValNUBString& words, int strict) {
    DeclarationWalk walk(*this, words);
    return strict != 0 ? walk.Strict(node) : walk.Loose(node);
}

int TAPSymbolTable::GetVariablesAndType(TAPSyntaxe* node, NUBListValNUBString& words,
                                        NUBListPtrTAPDefVar& vars) {
    return RecordMaker(*this, node, vars).Read(words);
}

int TAPSymbolTable::IsARecognizedType(const NUBString& type) const {
    return IsType(*this, type.View()) ? 1 : 0;
}

int TAPSymbolTable::GetArgType(TAPSyntaxe* node, NUBString& type, NUBString& name) {
    type = "";
    name = "";
    if (node == nullptr || node->GetType() != STYPE_Expression) return 0;
    TAPSyntaxe* argument = IsOfKind(node, "=") ? ChildOf(node, 1) : node; // without its default value
    if (argument == nullptr) return 0;
    TAPSyntaxe* first = ChildOf(argument, 1);
    const std::string_view mark = MarkOf(argument);
    if (!mark.empty()) {
        if (const TAPSyntaxe* named = ChildOfKind(argument, 2, "id")) name = NUBString(TextOf(*named));
        if (first == nullptr) return 0;
        type = NUBString(TextOf(*first)).Append(mark);
        return IsARecognizedType(type);
    }
    type = NUBString(TextOf(*argument));
    if (IsARecognizedType(type) != 0) return 1;
    const TAPSyntaxe* second = ChildOf(argument, 2);
    if (first == nullptr || second == nullptr) return 0;
    name = NUBString(TextOf(*second));
    type = NUBString(TextOf(*first));
    return IsARecognizedType(type);
}
