// Three steps. What is around the node: blocks, from the inside out, with the heads before them. Then, for a
// name, what it belongs to: a name on the right of an operator belongs to the class on the left of it, any
// other to the nearest of blocks, classes, the file. Then the type, which the declaration may know better.

#include <answers/resolve/NodeAnswers.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <answers/facts/DeclarationText.h>
#include <answers/resolve/Heads.h>
#include <answers/resolve/NodeText.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/symbols/TypeNames.h>

namespace ostraka::answers {

namespace {

using detail::ClassOfType;
using detail::HeadOf;

using Text = std::optional<std::string>;

constexpr const char* ofTheFile = "variable of the file";
constexpr std::size_t none = std::string_view::npos;

Text NotEmpty(const NUBString& text) {
    if (text.Length() == 0) return std::nullopt;
    return std::string(text.View());
}

// The class whose body this is; empty for any other node.
std::string_view ClassOfBody(const TAPSyntaxe& block) {
    const TAPSyntaxe* head = detail::HeadOf(&block);
    return head != nullptr ? ClassOfHead(*head) : std::string_view();
}

bool IsNamespace(const TAPSyntaxe& block) {
    const TAPSyntaxe* head = HeadOf(&block);
    return head != nullptr && IsNamespaceHead(*head);
}

bool LiesIn(const TAPSyntaxe& node, const TAPSyntaxe& around) {
    return node.GetBegin() >= around.GetBegin() && node.GetBegin() < around.GetBegin() + around.GetSize();
}

// Whether the list of arguments is what a handler catches.
bool IsCaught(const TAPSyntaxe& list) {
    const TAPSyntaxe* statement = &list;
    while (statement != nullptr && statement->GetType() != STYPE_Instruction &&
           statement->GetType() != STYPE_Declaration)
        statement = statement->GetParent();
    return list.GetType() == STYPE_ListOfArgs && statement != nullptr &&
           TrimmedTextOf(*statement).starts_with("catch(");
}

// The operator on whose right side the name stands, called or not; else null. It has no left side where that
// is an instruction of its own, as `f()` is in `f()->g()`.
const TAPSyntaxe* OperatorBefore(TAPSyntaxe& name, std::initializer_list<const char*> operators) {
    const TAPSyntaxe* side = name.GetParent();
    const auto* call = TAPSyntaxe::NavigateFrom(name.GetParent(), SNAV_Parent, SNAV_ExprTest, "mt", 0);
    if (call != nullptr && call->Child(1) == side) side = call;
    const TAPSyntaxe* whole = side != nullptr ? side->GetParent() : nullptr;
    if (whole == nullptr || whole->Child(whole->ChildCount()) != side) return nullptr;
    const bool isOne = std::any_of(operators.begin(), operators.end(), [=](const char* spelling) {
        return whole->GetType() == STYPE_Expression && KindOf(*whole) == spelling;
    });
    return isOne ? whole : nullptr;
}

TAPSyntaxe* LeftSide(const TAPSyntaxe& operation) {
    return operation.ChildCount() > 1 ? operation.Child(1) : nullptr;
}

// The class of an object of this type: `Foo` of `const Foo* const`.
std::string_view ClassOf(std::string_view type) {
    constexpr std::string_view qualifier = "const";
    for (;;) {
        type = type.substr(0, type.find_last_not_of(" *&") + 1);
        const std::size_t before = type.size() - std::min(type.size(), qualifier.size());
        if (!type.ends_with(qualifier) || before == 0 ||
            std::string_view(" *&").find(type[before - 1]) == none)
            return ClassOfType(type);
        type = type.substr(0, before);
    }
}

// Names that are kept without a node.
struct NameIndex {
    TAIndex TAPSymbolTable::*index;
    const char* as;
};

constexpr NameIndex nameIndexes[] = {
    {&TAPSymbolTable::keywords, "keyword"},
    {&TAPSymbolTable::basicTypes, "basic type"},
    {&TAPSymbolTable::enumNames, "enum"},
    {&TAPSymbolTable::typedefNames, "typedef"},
    {&TAPSymbolTable::interfaceNames, "interface"},
    {&TAPSymbolTable::types, "type"},
    {&TAPSymbolTable::macros, "macro"},
};

class Asking {
public:
    Asking(TAPSymbolTable& symbols, TAPSyntaxe& asked)
        : table(symbols), node(asked), name(asked.ChildCount() < 2 ? asked.GetContent() : "") {}

    NodeAnswers All() {
        AskAround();
        if (node.GetType() == STYPE_Identifiant) {
            AskObject();
            AskName();
        }
        AskType();
        return std::move(answers);
    }

private:
    void AskAround() {
        answers.className = NotEmpty(table.GetClassName(&node));
        NUBString method;
        if (table.GetMethodName(&node, method) == 0) answers.method = NotEmpty(method);
        const TAPSyntaxe* inner = nullptr; // the block passed last
        for (TAPSyntaxe* around = &node; around->GetParent() != nullptr; around = around->GetParent()) {
            if (IsNamespace(*around)) break;
            topLevel = around;
            if (around->GetType() != STYPE_Bloc) continue;
            if (const std::string_view className = ClassOfBody(*around); !className.empty())
                AskClass(className, *around, inner);
            inner = around;
        }
        if (topLevel != nullptr) AskTopLevel();
    }

    // The body of a method in the class is the block directly below that of the class.
    void AskClass(std::string_view className, const TAPSyntaxe& classBody, const TAPSyntaxe* body) {
        if (!answers.className) answers.className = className;
        if (bodyOfClass == nullptr) bodyOfClass = &classBody;
        const std::string method = body != nullptr ? FunctionOfBody(*body).name : std::string();
        if (!answers.method && !method.empty()) answers.method = fmt::format("{}::{}", className, method);
    }

    // The node may stand in the body of a function, or in the head before that.
    void AskTopLevel() {
        if (topLevel->GetType() != STYPE_Bloc) {
            TAPSyntaxe* next = topLevel->NextSibling();
            if (next == nullptr || next->GetType() != STYPE_Bloc) return;
            bodyBehind = next;
        }
        const FunctionHead function = FunctionOfBody(bodyBehind != nullptr ? *bodyBehind : *topLevel);
        if (!function.className.empty()) answers.className = function.className;
        if (!answers.method && !function.name.empty()) answers.method = function.FullName();
    }

    FunctionHead FunctionOfBody(const TAPSyntaxe& body) {
        TAPSyntaxe* head = HeadOfBody(body);
        return head != nullptr ? FunctionOfHead(table, *head) : FunctionHead();
    }

    void AskObject() {
        TAPSyntaxe* cast = nullptr;
        TAPSyntaxe* object = table.FindObject(&node, &cast);
        if (object == nullptr) return;
        answers.object = Object{object, cast != nullptr ? Text(cast->GetContent()) : TypeOf(*object)};
    }

    void AskName() {
        const TAPSyntaxe* scope = OperatorBefore(node, {"::"});
        const TAPSyntaxe* access = OperatorBefore(node, {"->", "."});
        answers.isAccess = access != nullptr;
        belongs = scope != nullptr || access != nullptr;
        if (belongs) return AskOwner(LeftSide(scope != nullptr ? *scope : *access));
        AskPlainName();
    }

    void AskPlainName() {
        AskBlocks();
        if (!IsKnown()) AskClassIndex();
        if (!IsKnown() && answers.className) AskRecords(*answers.className);
        if (!IsKnown() && bodyOfClass != nullptr)
            AskStatements(*bodyOfClass, fmt::format("member of {}", *answers.className));
        if (!IsKnown()) AskFile();
        if (!IsKnown()) AskIndexes();
    }

    // The class of what stands on the left, which may be nothing.
    void AskOwner(TAPSyntaxe* left) {
        if (left == nullptr) return;
        if (!answers.isAccess) return AskRecords(left->GetLastLeaf()->GetContent());
        const Text type = answers.object ? answers.object->type : TypeOf(*left);
        if (type) AskRecords(std::string(ClassOf(*type)));
    }

    bool IsKnown() const { return !answers.declared.empty(); }

    void Add(TAPSyntaxe* declared, std::string as, std::string_view type = {}) {
        answers.declared.push_back({declared, std::move(as), InOrder(type, declared, name)});
    }

    // The type of a variable in the order in which its declaration has it.
    static std::string InOrder(std::string_view type, const TAPSyntaxe* declared, std::string_view variable) {
        if (declared == nullptr || type.empty()) return std::string(type);
        for (const DeclaredName& each : ReadDeclaration(TrimmedTextOf(*declared), false).names)
            if (each.name == variable) return AsWritten(type, each);
        return std::string(type);
    }

    void AskBlocks() {
        NUBString type;
        TAPSyntaxe* found = FindAround(type);
        if (found == nullptr) return;
        const TAPSyntaxe& parent = *found->GetParent();
        const std::string className(ClassOfBody(parent));
        if (!className.empty()) AskRecords(className);
        if (IsKnown()) return;
        if (!className.empty()) return Add(found, fmt::format("member of {}", className), type.View());
        if (IsNamespace(parent)) return Add(found, ofTheFile, type.View());
        const bool isArgument = parent.GetType() == STYPE_ListOfArgs && !IsCaught(parent);
        Add(found, isArgument ? "argument" : "variable", type.View());
        if (!answers.method) return;
        AskGoesBack(bodyBehind != nullptr ? *bodyBehind : node, isArgument ? found : nullptr);
        if (IsCaught(parent)) answers.goesBack = GoesBack{answers.goesBack->isReturned, 0, 0};
    }

    // What the library finds in the blocks around, unless a loop or the arguments have the name nearer to it.
    TAPSyntaxe* FindAround(NUBString& type) {
        NUBString inBlocks;
        TAPSyntaxe* found = table.FindDeclare(&node, inBlocks, nullptr, 0);
        for (TAPSyntaxe* around = &node; around->GetParent() != nullptr; around = around->GetParent()) {
            if (found != nullptr && around->GetType() == STYPE_Bloc && LiesIn(*found, *around)) break;
            TAPSyntaxe* nearer = FindInLoops(*around, type);
            if (nearer == nullptr) nearer = FindInArguments(*around, type);
            if (nearer != nullptr) return nearer;
        }
        if (found == nullptr && bodyBehind != nullptr)
            found = table.FindDeclare(&node, inBlocks, bodyBehind, 0);
        type = inBlocks;
        return found;
    }

    // Of a function whose head or body the node is, or what stands between the two.
    TAPSyntaxe* FindInArguments(TAPSyntaxe& around, NUBString& type) {
        TAPSyntaxe* head = HeadOfBody(around);
        const TAPSyntaxe* args = FunctionOfHead(table, head != nullptr ? *head : around).args;
        NUBString declared;
        for (int i = 1; args != nullptr && i <= args->ChildCount(); ++i) {
            if (table.GetArgType(args->Child(i), type, declared) != 0 && declared == name.c_str())
                return args->Child(i);
            if (const std::string written = TypeInText(*args->Child(i), name); !written.empty()) {
                type = NUBString(written);
                return args->Child(i);
            }
        }
        return nullptr;
    }

    // In the parentheses of a loop around the node, which may stand in them itself.
    TAPSyntaxe* FindInLoops(TAPSyntaxe& around, NUBString& type) {
        if (around.GetType() == STYPE_Bloc)
            if (TAPSyntaxe* each = FindEach(around, type)) return each;
        for (TAPSyntaxe* loop : LoopsAround(around)) {
            if (TAPSyntaxe* found = table.FindDeclare(&node, type, loop, 0)) return found;
            if (TAPSyntaxe* each = FindEach(*loop, type)) return each;
        }
        return nullptr;
    }

    // `const Ship& each: ships`, which the library doesn't read.
    TAPSyntaxe* FindEach(const TAPSyntaxe& loop, NUBString& type) const {
        TAPSyntaxe* first = loop.ChildCount() == 1 ? loop.Child(1) : nullptr;
        if (first == nullptr || TextOf(*first).find(':') == none) return nullptr;
        const std::string written = TypeInText(*first, name);
        if (written.empty()) return nullptr;
        type = NUBString(written);
        return first;
    }

    // An argument is one wherever the library sees no function.
    void AskGoesBack(TAPSyntaxe& from, const TAPSyntaxe* argument) {
        int arguments = 0;
        int result = table.IsReturned(&from, name.c_str(), arguments, 0);
        if (result == 0 && argument != nullptr) {
            result = argument->GetPosInFather();
            arguments = argument->GetParent()->ChildCount();
        }
        answers.goesBack = GoesBack{result == -1, std::max(result, 0), result > 0 ? arguments : 0};
    }

    void AskClassIndex() {
        const std::string className(ClassOfType(name));
        TAPSyntaxe* declared = table.GetClassDeclarationLocation(className.c_str());
        if (declared != nullptr) Add(declared, fmt::format("class {}", className));
    }

    // Members and methods of the name, of the first in the line of classes that has any.
    void AskRecords(const std::string& className) {
        std::set<const TAPDefClass*> visited;
        TAPDefClass* record = table.GetClass(className.c_str());
        while (record != nullptr && !IsKnown() && visited.insert(record).second) {
            AskRecord(*record);
            record = record->parent != nullptr ? table.GetClass(record->parent) : nullptr;
        }
    }

    // A record keeps the members whose type is known and of each statement the last one; the body has all.
    void AskRecord(const TAPDefClass& record) {
        std::vector<TAPDefMethod*> overloads;
        for (int i = 1; i <= record.methods.Size(); ++i)
            if (name == record.methods[i]->GetName()) overloads.push_back(record.methods[i]);
        for (TAPDefMethod* method : OnlyImplemented(std::move(overloads))) AddMethod(record, *method);
        const TAPSyntaxe* body = table.GetSyntaxe(record.bodyPath);
        if (body != nullptr) AskStatements(*body, fmt::format("member of {}", record.name));
    }

    // The first one that declares the name as a variable.
    void AskStatements(const TAPSyntaxe& parent, const std::string& as) {
        NUBString type;
        for (int i = 1; i <= parent.ChildCount() && !IsKnown(); ++i) {
            TAPSyntaxe* statement = parent.Child(i);
            const bool isOne =
                statement->GetType() == STYPE_Instruction || statement->GetType() == STYPE_Declaration;
            if (!isOne || TextOf(*statement).find(name) == none) continue;
            if (statement->GetType() == STYPE_Instruction &&
                table.FindDeclare(&node, type, statement, 0) != nullptr)
                Add(statement, as, type.View());
            else if (const std::string written = TypeInText(*statement, name); !written.empty())
                Add(statement, as, written);
        }
    }

    // In the head of an implementation the one that it implements, anywhere else all of them.
    std::vector<TAPDefMethod*> OnlyImplemented(std::vector<TAPDefMethod*> overloads) {
        if (bodyBehind == nullptr || overloads.size() < 2) return overloads;
        const auto found = std::find_if(overloads.begin(), overloads.end(), [this](TAPDefMethod* method) {
            return table.GetSyntaxe(method->GetImplementationPath()) == topLevel;
        });
        return found == overloads.end() ? overloads : std::vector<TAPDefMethod*>{*found};
    }

    // A method that no class declares is known by its implementation.
    void AddMethod(const TAPDefClass& record, TAPDefMethod& method) {
        TAPSyntaxe* declared = method.GetSyntaxe();
        if (declared == nullptr) declared = table.GetSyntaxe(method.GetImplementationPath());
        const char* type = method.GetReturnedType();
        Add(declared, fmt::format("method of {}", record.name), type != nullptr ? type : "");
    }

    // What stands on the file's own level, and the functions that the table knows.
    void AskFile() {
        for (const TAPSyntaxe* level = topLevel != nullptr ? topLevel->GetParent() : &node; level != nullptr;
             level = level->GetParent())
            AskStatements(*level, ofTheFile);
        TAPSyntaxe* function = table.GetFunctionDeclarationLocation(name.c_str());
        if (!IsKnown() && function != nullptr) Add(function, "function");
    }

    // A handle counts as what it is a handle on.
    void AskIndexes() {
        for (const std::string& key : {name, std::string(ClassOfType(name))}) {
            for (const NameIndex& row : nameIndexes) {
                const TAIndex& index = table.*row.index;
                const int position = index.IsIn(key.c_str());
                if (position < 0 || IsKnown()) continue;
                const bool hasText = row.index == &TAPSymbolTable::macros;
                Add(nullptr, row.as, hasText ? static_cast<const char*>(index.values[position]) : "");
            }
        }
    }

    // What the declaration says, else what the library reads. It reads the type of a name from the blocks
    // around it, and isn't asked for a name on the right of an operator, which those don't declare.
    void AskType() {
        answers.type = DeclaredType();
        if (!answers.type && !belongs) answers.type = TypeOfNode(node);
    }

    // As the library reads it.
    Text TypeOfNode(TAPSyntaxe& asked) {
        NUBString type;
        return table.GetType(&asked, type) == 0 ? NotEmpty(type) : std::nullopt;
    }

    // The type in which all declarations agree.
    Text DeclaredType() const {
        const auto& declared = answers.declared;
        if (declared.empty() || declared.front().node == nullptr || declared.front().type.empty())
            return std::nullopt;
        const bool agree = std::all_of(declared.begin(), declared.end(), [&](const Declaration& each) {
            return each.type == declared.front().type;
        });
        return agree ? Text(declared.front().type) : std::nullopt;
    }

    Text TypeOfPlainName() {
        AskAround();
        AskPlainName();
        return DeclaredType();
    }

    // Of an object.
    Text TypeOf(TAPSyntaxe& object) {
        TAPSyntaxe* word = object.GetLastLeaf();
        const Text declared =
            TextOf(*word) == TextOf(object) ? Asking(table, *word).TypeOfPlainName() : std::nullopt;
        return declared ? declared : TypeOfNode(object);
    }

    TAPSymbolTable& table;
    TAPSyntaxe& node;
    const std::string name; // what the node reads, where it can be a name
    NodeAnswers answers;
    TAPSyntaxe* topLevel = nullptr;          // the node itself or the one around it on the file's own level
    const TAPSyntaxe* bodyOfClass = nullptr; // the innermost around the node
    TAPSyntaxe* bodyBehind = nullptr;        // for a node that stands in the head of a block
    bool belongs = false;                    // the name stands on the right of an operator
};

} // namespace

NodeAnswers AskAbout(TAPSymbolTable& table, TAPSyntaxe& node) {
    return Asking(table, node).All();
}

} // namespace ostraka::answers
