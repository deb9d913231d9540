// What the body of a class tells: of which sort the class is, its methods, their arguments, its data members.
//
// The body is read child by child, and each child is one of a mark (a visibility label or a declaration
// macro of the dialect), a method, a data member, or nothing of interest.

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include <ostraka/symbols/DialectMarks.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefSource.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace {

using ostraka::detail::ChildOf;
using ostraka::detail::ChildOfType;
using ostraka::detail::IsOfKind;
using ostraka::detail::IsOfType;
using ostraka::detail::TextOf;

// A statement of the body that sets the visibility of those behind it; its text is the whole statement.
struct Label {
    std::string_view text;
    int visibility;
};

constexpr Label labels[] = {
    {"public:", TAPDefEntity::Public},
    {"protected:", TAPDefEntity::Protected},
    {"private:", TAPDefEntity::Private},
};

TAPDefMethod::Binding BindingOf(const TAPSyntaxe& method) {
    const std::string_view text = TextOf(method);
    if (text.starts_with("static ")) return TAPDefMethod::Static;
    if (!text.starts_with("virtual ")) return TAPDefMethod::Plain;
    return IsOfKind(ChildOf(&method, 1), "=") ? TAPDefMethod::PureVirtual : TAPDefMethod::Virtual;
}

NUBString ContentOf(const TAPSyntaxe& node) {
    return NUBString(TextOf(node));
}

class BodyReader {
public:
    BodyReader(TAPDefClass& record, TAPSymbolTable& symbols, TAPSyntaxe& block)
        : owner(record), table(symbols), body(block) {}

    void Read() {
        while (next <= body.ChildCount()) {
            TAPSyntaxe* child = body.Child(next++);
            if (child->GetType() == STYPE_Instruction) ReadStatement(*child);
        }
    }

private:
    void ReadStatement(TAPSyntaxe& statement) {
        const std::string_view text = TextOf(statement);
        if (TakeMark(text) || text.starts_with("friend ")) return;
        NUBString returnedType;
        NUBString name;
        TAPSyntaxe* args = nullptr;
        if (table.IsFunctionDeclaration(&statement, returnedType, name, args) == 2) {
            AddMethod(statement, returnedType, name, args);
        } else {
            AddMember(statement);
        }
    }

    bool TakeMark(std::string_view text) {
        if (const auto* mark = ostraka::detail::SortMarkOf(text)) {
            owner.kind = mark->kind;
            return true;
        }
        const Label* label = std::find_if(std::begin(labels), std::end(labels),
                                          [=](const Label& each) { return each.text == text; });
        if (label == std::end(labels)) return false;
        visibility = label->visibility;
        return true;
    }

    void AddMethod(TAPSyntaxe& statement, NUBString& returnedType, const NUBString& name, TAPSyntaxe* args) {
        const bool saysInline = TextOf(statement).starts_with("inline ");
        const TAPSyntaxe* head = saysInline ? ChildOf(&statement, 1) : &statement;
        if (head == nullptr) return;
        auto* method = new TAPDefMethod(&statement, name.CastToCharPtr(), &owner, &table);
        method->SetReturnedType(returnedType);
        if (saysInline) method->inlined = TAPDefMethod::Inlined;
        method->binding = BindingOf(*head);
        method->visibility = visibility;
        owner.methods.Append(method); // with the creator's reference
        method->SearchArgs(&table, args);
        if (TAPSyntaxe* block = ChildOfType(&body, next, STYPE_Bloc)) AddImplementation(*method, *block);
    }

    // The block behind the method is its body, and no child of interest any more.
    void AddImplementation(TAPDefMethod& method, TAPSyntaxe& block) {
        method.inlined = TAPDefMethod::Inlined;
        method.SetImplementation(&block);
        if (owner.source != nullptr) owner.source->AddImplMethod(&method);
        ++next;
    }

    // One member at most: the last declarator of the statement.
    void AddMember(TAPSyntaxe& statement) {
        TAPSyntaxe* expression = ChildOfType(&statement, 1, STYPE_Expression);
        NUBString type;
        if (expression == nullptr || table.GetType(expression, type) != 0) return;
        if (expression->ChildCount() == 0) return; // a literal
        const TAPSyntaxe* last = expression->Child(expression->ChildCount());
        if (last->GetType() != STYPE_Identifiant && !IsOfKind(last, "id")) return;
        auto* member =
            new TAPDefVar(&statement, ContentOf(*last).CastToCharPtr(), type.CastToCharPtr(), &table);
        member->visibility = visibility;
        owner.vars.Append(member); // with the creator's reference
    }

    TAPDefClass& owner;
    TAPSymbolTable& table;
    TAPSyntaxe& body;
    int next = 1; // the child to be read
    int visibility = TAPDefEntity::Public;
};

bool IsOnlyVoid(const NUBListPtrTAPDefVar& args) {
    return args.Size() == 1 && std::string_view(args[1]->type) == "void";
}

} // namespace

int TAPDefClass::SearchMethods(TAPSymbolTable* table) {
    if (bodyPath == nullptr) return 1;
    TAPSyntaxe* body = table != nullptr ? table->GetSyntaxe(bodyPath) : nullptr;
    if (body == nullptr) return 0;
    BodyReader(*this, *table, *body).Read();
    // What the unknown types in it were sought in. The next class knows more types, and has a body of its
    // own.
    if (body->source != nullptr) body->source->SetMemory(nullptr);
    if (table->InheritFrom(name, "NUBBaseDispatch") != 0) dispatch = BaseDispatch;
    return 0;
}

int TAPDefMethod::SearchArgs(TAPSymbolTable* table, TAPSyntaxe* argsNode) {
    if (table == nullptr || argsNode == nullptr) return 1;
    for (int i = 1; i <= argsNode->ChildCount(); ++i) {
        TAPSyntaxe* node = argsNode->Child(i);
        NUBString type;
        NUBString argName;
        const bool isKnown = table->GetArgType(node, type, argName) == 1;
        args.Append(new TAPDefVar(node, isKnown ? argName.CastToCharPtr() : nullptr,
                                  isKnown ? type.CastToCharPtr() : "?", table));
    }
    if (IsOnlyVoid(args)) ostraka::detail::ReleaseAll(args);
    return 0;
}

int TAPDefMethod::GetImpLine() {
    if (impLine >= 0) return impLine;
    if (implPath == nullptr) return 0;
    impLine = 0;
    TAPSyntaxe* node = symTab != nullptr ? symTab->GetSyntaxe(implPath) : nullptr;
    if (node == nullptr) return 0;
    // The path of a body in the class leads to the block itself, any other to the head in front of it.
    ComputeImpLine(impLine, node->GetType() == STYPE_Bloc ? node : node->NextSibling(), 0);
    return impLine;
}

int TAPDefMethod::ComputeImpLine(int& lines, TAPSyntaxe* node, int lastLine) {
    std::vector<TAPSyntaxe*> waiting; // the next one last
    if (node != nullptr) waiting.push_back(node);
    while (!waiting.empty()) {
        TAPSyntaxe* reached = waiting.back();
        waiting.pop_back();
        int line = 0;
        int col = 0;
        if (reached->GetPos(line, col) == 0 && line > lastLine) {
            ++lines;
            lastLine = line;
        }
        for (int i = reached->ChildCount(); i >= 1; --i) waiting.push_back(reached->Child(i));
    }
    return lastLine;
}
