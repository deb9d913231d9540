// Answers to a tool that stands on a node: where a name was declared, in which class and method the node is,
// on which object a method is called, whether a variable goes back to the caller.
//
// The scopes of a node are the blocks around it, innermost first; what heads a block is its previous sibling.
// Instructions, declarations and blocks lie below one another only, never below an expression, so that no
// walk for them enters one. The walks keep stacks of their own.

#include <string>
#include <string_view>
#include <vector>

#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/symbols/TypeReading.h>

namespace {

using ostraka::detail::ChildOf;
using ostraka::detail::ChildOfKind;
using ostraka::detail::ChildOfType;
using ostraka::detail::HeadOf;
using ostraka::detail::IsOfKind;
using ostraka::detail::IsOfType;
using ostraka::detail::TextOf;

// Whether instructions, declarations or blocks can lie below the node.
bool HoldsStatements(const TAPSyntaxe& node) {
    switch (node.GetType()) {
    case STYPE_Expression:
    case STYPE_Identifiant:
    case STYPE_ListOfArgs:
    case STYPE_NULL: return false;
    default: return true;
    }
}

// The variables that an instruction or an argument declares, for as long as this object lives.
class DeclaredVariables {
public:
    DeclaredVariables(TAPSymbolTable& table, TAPSyntaxe* node) {
        isDeclaration = table.IsVariableOrFunctionDeclaration(node, vars) == 1;
    }
    ~DeclaredVariables() { ostraka::detail::ReleaseAll(vars); }
    DeclaredVariables(const DeclaredVariables&) = delete;
    DeclaredVariables& operator=(const DeclaredVariables&) = delete;

    int Size() const { return isDeclaration ? vars.Size() : 0; }
    const TAPDefVar& operator[](int i) const { return *vars[i]; }

    // Hands all over to the list, the last first.
    void MoveTo(NUBListPtrTAPDefVar& list) {
        if (!isDeclaration) return;
        for (int i = vars.Size(); i >= 1; --i) list.Append(vars[i]);
        vars.RemoveAll(1);
    }

private:
    NUBListPtrTAPDefVar vars;
    bool isDeclaration;
};

// Takes the first declaration of one name.
class OneName {
public:
    OneName(std::string_view soughtName, NUBString& foundType) : name(soughtName), type(foundType) {}

    // A declared name stands in the text that declares it.
    bool MayBeIn(std::string_view text) const { return text.find(name) != std::string_view::npos; }
    bool Takes(std::string_view declared, std::string_view itsType) {
        if (declared != name) return false;
        type = NUBString(itsType);
        return true;
    }

private:
    std::string_view name;
    NUBString& type;
};

// Keeps the first declaration of every name.
class AllNames {
public:
    explicit AllNames(std::unordered_map<std::string, NUBString>& names) : types(names) {}

    static bool MayBeIn(std::string_view) { return true; }
    bool Takes(std::string_view declared, std::string_view itsType) {
        types.try_emplace(std::string(declared), itsType);
        return false;
    }

private:
    std::unordered_map<std::string, NUBString>& types;
};

// Shows a visitor what is declared at and below a node, in the order in which names are searched: text order,
// and behind the content of a block the arguments of the method whose body it is.
template <class Visitor>
class ScopeWalk {
public:
    ScopeWalk(TAPSymbolTable& symbols, Visitor& names) : table(symbols), visitor(names) {}

    // The declaring node that the visitor takes, or null. The walk doesn't enter `searched`.
    TAPSyntaxe* From(TAPSyntaxe* top, const TAPSyntaxe* searched) {
        open = {{top, 1}};
        while (!open.empty()) {
            auto& [node, nextChild] = open.back();
            if (node->GetType() != STYPE_Instruction && nextChild <= node->ChildCount()) {
                TAPSyntaxe* child = node->Child(nextChild++);
                if (child != searched && HoldsStatements(*child)) open.push_back({child, 1});
                continue;
            }
            if (TAPSyntaxe* taken = Close(node)) return taken;
            open.pop_back();
        }
        return nullptr;
    }

private:
    struct Level {
        TAPSyntaxe* node;
        int nextChild;
    };

    TAPSyntaxe* Close(TAPSyntaxe* node) {
        return node->GetType() == STYPE_Instruction ? FromInstruction(node) : FromArguments(HeadOf(node));
    }

    TAPSyntaxe* FromInstruction(TAPSyntaxe* instruction) {
        if (!visitor.MayBeIn(TextOf(*instruction))) return nullptr;
        const DeclaredVariables vars(table, instruction);
        for (int i = 1; i <= vars.Size(); ++i) {
            const char* name = vars[i].name;
            if (visitor.Takes(name != nullptr ? name : "", vars[i].type)) return instruction;
        }
        return nullptr;
    }

    TAPSyntaxe* FromArguments(TAPSyntaxe* head) {
        NUBString className;
        NUBString methodName;
        TAPSyntaxe* args = nullptr;
        if (head == nullptr || !visitor.MayBeIn(TextOf(*head))) return nullptr;
        if (table.IsMethodImplementation(head, className, methodName, args) == 0) return nullptr;
        for (int i = 1; TAPSyntaxe* arg = ChildOf(args, i); ++i) {
            NUBString type;
            NUBString name;
            if (table.GetArgType(arg, type, name) == 1 && visitor.Takes(name.View(), type.View())) return arg;
        }
        return nullptr;
    }

    TAPSymbolTable& table;
    Visitor& visitor;
    std::vector<Level> open; // from the top down to the node in hand
};

enum class Then { GoBelow, PassBy, Stop };

// Walks the nodes that may hold statements, in text order; `visit` says what to do with what lies below one.
// Whether it stopped the walk.
template <class Visit>
bool WalkStatements(TAPSyntaxe* top, Visit visit) {
    std::vector<TAPSyntaxe*> waiting = {top}; // the next one last
    while (!waiting.empty()) {
        TAPSyntaxe* node = waiting.back();
        waiting.pop_back();
        if (!HoldsStatements(*node)) continue;
        const Then then = visit(node);
        if (then == Then::Stop) return true;
        for (int i = node->ChildCount(); then == Then::GoBelow && i >= 1; --i)
            waiting.push_back(node->Child(i));
    }
    return false;
}

TAPSyntaxe* OutermostBlock(TAPSyntaxe* node) {
    TAPSyntaxe* block = nullptr;
    for (; node != nullptr; node = node->GetParent())
        if (node->GetType() == STYPE_Bloc) block = node;
    return block;
}

// `return x`, or `return (Foo*)x`.
bool ReturnsName(const TAPSyntaxe& node, const char* name) {
    if (node.GetType() != STYPE_Instruction) return false;
    if (node.StartWith("return ") == 0 && node.StartWith("return(") == 0) return false;
    const TAPSyntaxe* value = ChildOf(&node, 1);
    if (IsOfKind(value, "ct")) value = ChildOf(value, 2);
    return IsOfKind(value, "id") && value->TestContent(name, -1) == 0;
}

bool IsReturnedBelow(TAPSyntaxe* top, const char* name) {
    return WalkStatements(
        top, [=](TAPSyntaxe* node) { return ReturnsName(*node, name) ? Then::Stop : Then::GoBelow; });
}

// Whether an identifier of this text stands at or below the node, searched from the last child to the first.
// Each argument list on the way leaves its number of arguments in `nbArgs`, so that the last one passed does.
bool HoldsName(TAPSyntaxe* top, const char* name, int& nbArgs) {
    std::vector<TAPSyntaxe*> waiting = {top}; // the next one last
    while (!waiting.empty()) {
        TAPSyntaxe* node = waiting.back();
        waiting.pop_back();
        if (node->GetType() == STYPE_Identifiant && node->TestContent(name, -1) == 0) return true;
        if (node->GetType() == STYPE_ListOfArgs && node->ChildCount() > 0) nbArgs = node->ChildCount();
        for (int i = 1; i <= node->ChildCount(); ++i) waiting.push_back(node->Child(i));
    }
    return false;
}

// The position of the last child that holds the name, from 1; 1 for a node that is the name itself; else 0.
int PositionOfName(TAPSyntaxe* args, const char* name, int& nbArgs) {
    if (args->GetType() == STYPE_Identifiant && args->TestContent(name, -1) == 0) return 1;
    if (args->GetType() == STYPE_ListOfArgs && args->ChildCount() > 0) nbArgs = args->ChildCount();
    for (int i = args->ChildCount(); i >= 1; --i)
        if (HoldsName(args->Child(i), name, nbArgs)) return i;
    return 0;
}

// The argument list of the method, or else of the function, that this node heads; null for other nodes.
TAPSyntaxe* ArgumentsOfHead(TAPSymbolTable& table, TAPSyntaxe* head) {
    NUBString className;
    NUBString name;
    TAPSyntaxe* args = nullptr;
    if (table.IsMethodImplementation(head, className, name, args) != 0 && args != nullptr) return args;
    args = nullptr;
    return table.IsFunctionImplementation(head, name, args) != 0 ? args : nullptr;
}

// The first node around the definition that ends behind the place.
const TAPSyntaxe* ScopeOf(const TAPSyntaxe& definition, int place) {
    const TAPSyntaxe* scope = definition.GetParent();
    while (scope != nullptr && scope->GetBegin() + scope->GetSize() <= place) scope = scope->GetParent();
    return scope;
}

bool IsMemberAccess(const TAPSyntaxe* node) {
    return IsOfKind(node, "->") || IsOfKind(node, ".");
}

} // namespace

ostraka::detail::DeclaredNames::DeclaredNames(TAPSymbolTable& table, TAPSyntaxe* block) {
    AllNames names(types);
    ScopeWalk<AllNames>(table, names).From(block, nullptr);
}

const NUBString* ostraka::detail::DeclaredNames::TypeOf(std::string_view name) const {
    const auto found = types.find(std::string(name));
    return found != types.end() ? &found->second : nullptr;
}

NUBString TAPSymbolTable::FindClass(TAPSyntaxe* node) {
    if (node == nullptr) return {};
    if (TextOf(*node) == "this") return GetClassName(node);
    NUBString type;
    return FindDeclare(node, type, nullptr, 0) != nullptr ? type : NUBString();
}

TAPSyntaxe* TAPSymbolTable::FindDeclare(TAPSyntaxe* name, NUBString& type, TAPSyntaxe* scope, int) {
    if (name == nullptr) return nullptr;
    OneName sought(TextOf(*name), type);
    ScopeWalk<OneName> walk(*this, sought);
    if (scope != nullptr) return walk.From(scope, nullptr);
    const TAPSyntaxe* searched = nullptr;
    for (TAPSyntaxe* node = name; node != nullptr; node = node->GetParent()) {
        if (node->GetType() != STYPE_Bloc) continue;
        if (TAPSyntaxe* found = walk.From(node, searched)) return found;
        searched = node;
    }
    return nullptr;
}

NUBString TAPSymbolTable::GetClassName(TAPSyntaxe* node) {
    NUBString className;
    NUBString methodName;
    TAPSyntaxe* args = nullptr;
    for (; node != nullptr; node = node->GetParent()) {
        TAPSyntaxe* head = HeadOf(node);
        if (head != nullptr && IsMethodImplementation(head, className, methodName, args) != 0)
            return className;
    }
    return {};
}

int TAPSymbolTable::GetMethodName(TAPSyntaxe* node, NUBString& name) {
    name = "";
    if (node == nullptr) return 1;
    while (node->depth > 1) node = node->GetParent();
    const TAPSyntaxe* head = HeadOf(node);
    if (!IsOfType(head, STYPE_Declaration)) return 1;
    if (const TAPSyntaxe* function = ChildOfKind(ChildOfKind(ChildOfKind(head, 1, "mt"), 1, "dc"), 2, "id")) {
        name = NUBString(TextOf(*function));
        return 0;
    }
    const TAPSyntaxe* scope = ChildOfKind(head, 1, "::");
    const TAPSyntaxe* method = ChildOfKind(ChildOfKind(scope, 2, "mt"), 1, "id");
    if (method == nullptr) return 1;
    name = NUBString(TextOf(*scope->Child(1)->GetLastLeaf()));
    name += "::";
    name += TextOf(*method);
    return 0;
}

TAPSyntaxe* TAPSymbolTable::FindObject(TAPSyntaxe* node, TAPSyntaxe** castType) {
    if (node == nullptr || castType == nullptr) return nullptr;
    *castType = nullptr;
    const TAPSyntaxe* call = node->Navigate(SNAV_Parent, SNAV_Parent, SNAV_ExprTest, "mt", 0);
    if (call == nullptr || !IsMemberAccess(call->GetParent())) return nullptr;
    // A call that is itself the object of a further call stands left of that one's operator.
    while (call == call->GetParent()->Child(1)) {
        call = call->GetParent();
        if (!IsMemberAccess(call->GetParent())) return nullptr;
    }
    TAPSyntaxe* object = ChildOfType(call->GetParent(), 1, STYPE_Expression);
    TAPSyntaxe* word = ChildOfType(object, 1, STYPE_Identifiant);
    if (word == nullptr || !IsOfKind(object, "ct")) return word;
    *castType = word;
    return ChildOf(object, 2);
}

int TAPSymbolTable::IsReturned(TAPSyntaxe* node, const char* name, int& nbArgs, int mode) {
    if (node == nullptr || name == nullptr) return 0;
    if (mode == 1) return IsReturnedBelow(node, name) ? -1 : 0;
    if (mode == 2) return PositionOfName(node, name, nbArgs);
    TAPSyntaxe* block = OutermostBlock(node); // it holds all the others
    if (block != nullptr && IsReturnedBelow(block, name)) return -1;
    for (; node != nullptr; node = node->GetParent()) {
        TAPSyntaxe* head = HeadOf(node);
        if (head == nullptr) continue;
        nbArgs = 0;
        if (TAPSyntaxe* args = ArgumentsOfHead(*this, head)) return PositionOfName(args, name, nbArgs);
    }
    return 0;
}

void TAPSymbolTable::GetVariableDefinitions(TAPSyntaxe* node, NUBListPtrTAPDefVar& vars) {
    if (node == nullptr) return;
    WalkStatements(node, [&](TAPSyntaxe* reached) {
        if (reached->GetType() == STYPE_Instruction) {
            DeclaredVariables(*this, reached).MoveTo(vars);
            return Then::PassBy;
        }
        if (reached->GetType() != STYPE_Declaration) return Then::GoBelow;
        const TAPSyntaxe* args = ArgumentsOfHead(*this, reached);
        for (int i = 1; TAPSyntaxe* arg = ChildOf(args, i); ++i) DeclaredVariables(*this, arg).MoveTo(vars);
        return Then::PassBy;
    });
}

TAPDefVar* TAPSymbolTable::GetVariable(const char* name, TAPSyntaxe* at, NUBListPtrTAPDefVar& vars) {
    if (name == nullptr || at == nullptr) return nullptr;
    TAPDefVar* innermost = nullptr;
    int innermostBegin = -1;
    for (int i = vars.Size(); i >= 1; --i) {
        TAPDefVar* var = vars[i];
        if (var->name == nullptr || std::string_view(var->name) != name) continue;
        const TAPSyntaxe* definition = var->GetDefinition();
        if (definition == nullptr || definition->GetBegin() > at->GetBegin()) continue;
        const TAPSyntaxe* scope = ScopeOf(*definition, at->GetBegin());
        if (scope == nullptr || scope->GetBegin() <= innermostBegin) continue;
        innermost = var;
        innermostBegin = scope->GetBegin();
    }
    return innermost;
}

TAPSyntaxe* TAPSymbolTable::GetFunctionDeclarationLocation(const char* name) const {
    return name != nullptr ? static_cast<TAPSyntaxe*>(functions[name]) : nullptr;
}

TAPSyntaxe* TAPSymbolTable::GetClassDeclarationLocation(const char* name) const {
    TAPDefClass* found = name != nullptr ? GetClass(name) : nullptr;
    return found != nullptr ? found->GetDeclarationLocation() : nullptr;
}
