// Answers to a tool that stands on a node: where a name was declared, in which class and method the node is,
// on which object a method is called, whether a variable goes back to the caller.
//
// The scopes of a node are the blocks around it, innermost first; what heads a block is its previous sibling.

#include <string_view>
#include <vector>

#include <ostraka/symbols/BlockIndex.h>
#include <ostraka/symbols/DeclaredVariables.h>
#include <ostraka/symbols/DroppedFunctions.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/StatementWalk.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace {

using ostraka::detail::BlockIndex;
using ostraka::detail::ChildOf;
using ostraka::detail::ChildOfKind;
using ostraka::detail::ChildOfType;
using ostraka::detail::DeclaredVariables;
using ostraka::detail::HeadOf;
using ostraka::detail::IsOfKind;
using ostraka::detail::IsOfType;
using ostraka::detail::ReturnedName;
using ostraka::detail::TextOf;
using ostraka::detail::Then;
using ostraka::detail::WalkStatements;

TAPSyntaxe* OutermostBlock(TAPSyntaxe* node) {
    TAPSyntaxe* block = nullptr;
    for (; node != nullptr; node = node->GetParent())
        if (node->GetType() == STYPE_Bloc) block = node;
    return block;
}

bool IsReturnedBelow(TAPSyntaxe* top, std::string_view name) {
    return WalkStatements(top, [=](TAPSyntaxe* node) {
        const TAPSyntaxe* returned = ReturnedName(*node);
        return returned != nullptr && TextOf(*returned) == name ? Then::Stop : Then::GoBelow;
    });
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

NUBString TAPSymbolTable::FindClass(TAPSyntaxe* node) {
    if (node == nullptr) return {};
    if (TextOf(*node) == "this") return GetClassName(node);
    NUBString type;
    return FindDeclare(node, type, nullptr, 0) != nullptr ? type : NUBString();
}

TAPSyntaxe* TAPSymbolTable::FindDeclare(TAPSyntaxe* name, NUBString& type, TAPSyntaxe* scope, int) {
    if (name == nullptr) return nullptr;
    const std::string_view sought = TextOf(*name);
    if (scope != nullptr) return BlockIndex::FindDeclare(*this, sought, *scope, type);
    for (TAPSyntaxe* node = name; node != nullptr; node = node->GetParent()) {
        if (node->GetType() != STYPE_Bloc) continue;
        if (TAPSyntaxe* found = BlockIndex::FindDeclare(*this, sought, *node, type)) return found;
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
    if (block != nullptr && BlockIndex::IsReturned(name, *block)) return -1;
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
    if (name == nullptr) return nullptr;
    auto* declaration = static_cast<TAPSyntaxe*>(functions[name]);
    return declaration != nullptr ? declaration : droppedFunctions->Find(name);
}

TAPSyntaxe* TAPSymbolTable::GetClassDeclarationLocation(const char* name) const {
    TAPDefClass* found = name != nullptr ? GetClass(name) : nullptr;
    return found != nullptr ? found->GetDeclarationLocation() : nullptr;
}
