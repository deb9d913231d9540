#include <answers/resolve/Heads.h>

#include <algorithm>

#include <answers/facts/DeclarationText.h>
#include <answers/resolve/NodeText.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::answers {

namespace {

// Whether it stands between the head of a function and one of its blocks.
bool IsInBetween(const TAPSyntaxe& node) {
    const std::string_view text = TrimmedTextOf(node);
    return node.GetType() == STYPE_Bloc || text.starts_with(',') || text.starts_with("catch(") ||
           BelongsBehindArguments(text);
}

// Functions stand in the file, in namespaces and in classes.
bool HoldsFunctions(const TAPSyntaxe& container) {
    if (container.GetParent() == nullptr) return true;
    const TAPSyntaxe* head = detail::HeadOf(&container);
    return head != nullptr && (IsNamespaceHead(*head) || !ClassOfHead(*head).empty());
}

// The list of arguments below the node that begins behind this position of the stream.
const TAPSyntaxe* ListBehind(const TAPSyntaxe& node, int pos) {
    const TAPSyntaxe* at = &node;
    while (at != nullptr && (at->GetType() != STYPE_ListOfArgs || at->GetBegin() < pos)) {
        const TAPSyntaxe* inner = nullptr;
        for (int i = 1; i <= at->ChildCount() && inner == nullptr; ++i) {
            const TAPSyntaxe* child = at->Child(i);
            if (child->GetBegin() <= pos && pos < child->GetBegin() + child->GetSize()) inner = child;
        }
        at = inner;
    }
    return at;
}

bool StartsWithElse(const TAPSyntaxe& node) {
    const std::string_view text = TrimmedTextOf(node);
    return node.GetType() == STYPE_Instruction && (text == "else" || text.starts_with("else "));
}

// Whether the sibling behind is what it does: after `else`, after `for(...)` and the like without a `;`.
bool Governs(const TAPSyntaxe& node) {
    if (node.GetType() != STYPE_Instruction || node.ChildCount() == 0) return false;
    if (TrimmedTextOf(node) == "else") return true;
    const TAPSyntaxe& last = *node.Child(node.ChildCount());
    const int past = node.GetBegin() + node.GetSize();
    const TAPSourceFile& file = *node.GetTAPSourceFile();
    return last.GetType() == STYPE_Bloc && last.GetSize() == 0 &&
           !(past < file.GetSize() && file.GetStream()[past] == ';');
}

// The last part of a scope, without the arguments of a template: `Berth` of `sea::Berth<int>`.
std::string_view ClassOfScope(std::string_view scope) {
    scope = scope.substr(0, scope.find('<'));
    const std::size_t colons = scope.rfind("::");
    return colons == std::string_view::npos ? scope : scope.substr(colons + 2);
}

FunctionHead ReadFunction(const TAPSyntaxe& head) {
    const std::string_view text = TrimmedTextOf(head);
    const DeclarationReading reading = ReadDeclaration(text, true);
    if (reading.kind != DeclarationKind::Function) return {};
    const DeclaredName& name = reading.names.front();
    const auto arguments = reading.arguments.data() - head.GetTAPSourceFile()->GetStream();
    return {std::string(ClassOfScope(name.scope)), std::string(name.name),
            ListBehind(head, static_cast<int>(arguments) + 1)};
}

} // namespace

TAPSyntaxe* HeadOfBody(const TAPSyntaxe& block) {
    TAPSyntaxe* head = detail::HeadOf(&block);
    const bool isStatement = block.GetType() == STYPE_Instruction || block.GetType() == STYPE_Declaration;
    if (isStatement && IsInBetween(block)) head = block.PreviousSibling();
    if (head == nullptr || !IsInBetween(*head) || !HoldsFunctions(*block.GetParent())) return head;
    while (head != nullptr && IsInBetween(*head)) head = head->PreviousSibling();
    return head;
}

std::string_view ClassOfHead(const TAPSyntaxe& head) {
    if (head.GetType() == STYPE_Bloc) return {};
    const DeclarationReading reading = ReadDeclaration(TrimmedTextOf(head), true);
    const bool isClass = reading.kind && *reading.kind <= DeclarationKind::Union && !reading.names.empty();
    return isClass ? reading.names.front().name : std::string_view();
}

bool IsNamespaceHead(const TAPSyntaxe& head) {
    return head.GetType() != STYPE_Bloc &&
           ReadDeclaration(TrimmedTextOf(head), true).kind == DeclarationKind::Namespace;
}

FunctionHead FunctionOfHead(TAPSymbolTable& table, TAPSyntaxe& head) {
    NUBString first;
    NUBString second;
    TAPSyntaxe* args = nullptr;
    if (table.IsMethodImplementation(&head, first, second, args) != 0)
        return {std::string(first.View()), std::string(second.View()), args};
    if (table.IsFunctionImplementation(&head, second, args = nullptr) != 0 ||
        table.IsFunctionDeclaration(&head, first, second, args = nullptr) == 2)
        return {"", std::string(second.View()), args};
    const bool isStatement = head.GetType() == STYPE_Instruction || head.GetType() == STYPE_Declaration;
    return isStatement && HoldsFunctions(*head.GetParent()) ? ReadFunction(head) : FunctionHead();
}

std::vector<TAPSyntaxe*> LoopsAround(const TAPSyntaxe& statement) {
    std::vector<TAPSyntaxe*> loops;
    int elses = 0; // whose `if` comes yet: a loop between the two ends before the `else`
    const TAPSyntaxe* at = &statement;
    for (;;) {
        const bool isElse = StartsWithElse(*at);
        const TAPSyntaxe* before = at->PreviousSibling();
        if (before == nullptr || (!isElse && !Governs(*before))) return loops;
        const std::string_view text = TrimmedTextOf(*before);
        if (isElse) ++elses;
        if (elses > 0 && (isElse ? text.starts_with("else if") : text.starts_with("if"))) --elses;
        TAPSyntaxe* inside = before->ChildCount() > 0 ? before->Child(1) : nullptr;
        if (!isElse && elses == 0 && text.starts_with("for") && inside->GetType() == STYPE_Bloc)
            loops.push_back(inside);
        at = before;
    }
}

std::string TypeInText(const TAPSyntaxe& declaration, std::string_view name) {
    const DeclarationReading reading = ReadDeclaration(TrimmedTextOf(declaration), false);
    if (reading.kind != DeclarationKind::Variable || reading.isTypedef) return {};
    for (const DeclaredName& declared : reading.names)
        if (declared.name == name) return TypeOf(declared);
    return {};
}

} // namespace ostraka::answers
