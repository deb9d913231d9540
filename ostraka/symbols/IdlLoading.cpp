// A file of interfaces takes the road of a header, through the same tree; only the scan of the tree differs.
// What it understands of the text is:
//
//     interface Name: Base { ReturnType Method(direction Type name, ...); ... }
//     interface Name;
//     typedef ... Name;   enum Name { ... }

#include <cstdio>
#include <cstring>
#include <string_view>

#include <basalt/NUBUnicodeString.h>
#include <gneiss/qxContext.h>
#include <ostraka/foundation/Ref.h>
#include <ostraka/symbols/DeclarationScan.h>
#include <ostraka/symbols/FileLoading.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/TypeNames.h>

using namespace ostraka::detail;

namespace {

// How an argument is passed, and what its type ends in when it is told in terms of C++.
struct Direction {
    const char* word;
    int code;
    const char* ending;
};

constexpr Direction directions[] = {
    {"in", TAPDefVar::In, "&"}, {"out", TAPDefVar::Out, "*&"}, {"inout", TAPDefVar::InOut, "&"}};

const Direction* DirectionOf(const NUBString& word) {
    for (const Direction& direction : directions)
        if (word == direction.word) return &direction;
    return nullptr;
}

void Enter(TAIndex& index, const NUBString& name) {
    index.Append(name.CastToCharPtr(), nullptr, 0);
}

class InterfaceScan {
public:
    InterfaceScan(TAPSymbolTable& symbols, TAPDefSource& record, bool withRecords)
        : table(symbols), source(record), full(withRecords) {}

    // A declaration, with the block behind it or null.
    void Scan(TAPSyntaxe& head, TAPSyntaxe* body) {
        if (EnterNamedType(table, head)) return;
        if (!StreamOf(head).starts_with("interface ") || head.ChildCount() == 0) return;
        const NUBString name(TextOf(*head.Child(1)));
        if (body == nullptr) {
            Enter(source.forwardClasses, name);
            EnterNames(name);
        } else if (IsFree(name)) {
            Define(name, head, *body);
        }
    }

private:
    // Whether the name can be declared now. The first declaration wins, but of `IDispatch`, and of what that
    // begins with, the last does.
    bool IsFree(const NUBString& name) {
        const int position = table.classIndex.IsIn(name.CastToCharPtr());
        if (position < 0) return true;
        if (!std::string_view("IDispatch").starts_with(name.View())) return false;
        const auto former =
            Ref<TAPDefClass>::Adopt(static_cast<TAPDefClass*>(table.classIndex.values[position]));
        table.classIndex.RemovePosition(position);
        return true;
    }

    void Define(const NUBString& name, TAPSyntaxe& head, TAPSyntaxe& body) {
        const auto record = Ref<TAPDefClass>::Adopt(new TAPDefClass(&head, &body, &source, &table));
        const bool handle = name.FindPosition("_var") >= 0;
        if (!handle) {
            record->kind = TAPDefClass::Interface;
            if (full) Keep(name, record);
        }
        EnterNames(name);
        if (!handle) record->SearchIdlMethods(&table);
    }

    void Keep(const NUBString& name, Ref<TAPDefClass> record) {
        source.AddDefClass(record.Get());
        table.classIndex.Append(name.CastToCharPtr(), record.HandOver(), 0);
    }

    // A handle makes known what it is a handle on, if anything.
    void EnterNames(const NUBString& name) {
        const NUBString referred(BeforeHandle(name.View()));
        if (referred.Length() == 0 && name.Length() > 0) return;
        Enter(table.types, referred);
        Enter(table.interfaceNames, referred);
    }

    TAPSymbolTable& table;
    TAPDefSource& source;
    bool full;
};

void Refuse(const char* key, const NUBListValNUBString& pieces) {
    NUBUnicodeString argument;
    for (const NUBString& piece : pieces) {
        argument += piece;
        argument += " ";
    }
    qxExtContext.GetTraceMngr()->Print(MSG_KEY_qxqxError, stderr,
                                       qxExtContext.GetMsgMngr()->GetMsg(key, argument));
}

NUBString Joined(const NUBListValNUBString& pieces, int first, int last) {
    NUBString text;
    for (int i = first; i <= last; ++i) text.Append(i == first ? "" : " ").Append(pieces[i]);
    return text;
}

// What stands between the direction and the name, told in terms of C++.
NUBString TypeOf(const NUBListValNUBString& pieces, const Direction& direction) {
    return Joined(pieces, 2, pieces.Size() - 1).Append(direction.ending);
}

// Null for an argument that is refused, with a message and an entry in the record of its file.
const Direction* CheckedDirection(TAPSyntaxe& argument, const NUBListValNUBString& pieces,
                                  TAPDefSource* source) {
    const bool tooFew = pieces.Size() < 3;
    const Direction* direction = tooFew ? nullptr : DirectionOf(pieces[1]);
    if (direction != nullptr) return direction;
    Refuse(tooFew ? "TAparser.InvIdlArg" : "TAparser.InvNubIdlArg", pieces);
    if (source != nullptr) {
        using Cause = RefusedArgument::Cause;
        source->refusedArguments.push_back({tooFew ? Cause::TooFewWords : Cause::NoDirection,
                                            argument.GetTAPSourceFile()->GetPoint(argument.GetBegin()),
                                            Joined(pieces, 1, pieces.Size())});
    }
    return nullptr;
}

} // namespace

int TAPSymbolTable::LoadIdlFile(const char* name, int full) {
    return sources.Holds(name) ? 0 : LoadIdlFile(new TAFileBuffer(name, 0), full);
}

int TAPSymbolTable::LoadIdlFile(TAFileBuffer* buffer, int full) {
    return LoadAs(Language::Idl, *this, buffer, full);
}

int TAPSymbolTable::SearchIdlDeclarations(TAPSyntaxe* root, TAPDefSource* source, int full) {
    if (root == nullptr || source == nullptr) return 0;
    InterfaceScan scan(*this, *source, full != 0);
    for (int i = 1; i <= root->ChildCount(); ++i)
        if (TAPSyntaxe* head = ChildOfType(root, i, STYPE_Declaration))
            scan.Scan(*head, ChildOfType(root, i + 1, STYPE_Bloc));
    return 0;
}

int TAPDefClass::SearchIdlMethods(TAPSymbolTable* table) {
    if (table == nullptr) return 0;
    if (bodyPath == nullptr) return 1;
    TAPSyntaxe* body = table->GetSyntaxe(bodyPath);
    if (body == nullptr) return 0;
    for (int i = 1; i <= body->ChildCount(); ++i) {
        TAPSyntaxe* child = ChildOfType(body, i, STYPE_Instruction);
        NUBString returned, methodName;
        TAPSyntaxe* argsNode = nullptr;
        if (child == nullptr || table->IsFunctionDeclaration(child, returned, methodName, argsNode) != 2)
            continue;
        auto* method = new TAPDefMethod(child, methodName.CastToCharPtr(), this, table);
        method->SetReturnedType(returned);
        method->binding = TAPDefMethod::PureVirtual;
        method->visibility = TAPDefMethod::Public;
        methods.Append(method); // which takes over the reference
        method->SearchIdlArgs(table, argsNode);
    }
    if (table->InheritFrom(name, "NUBBaseDispatch") != 0) dispatch = BaseDispatch;
    return 0;
}

int TAPDefMethod::SearchIdlArgs(TAPSymbolTable* table, TAPSyntaxe* argsNode) {
    if (argsNode == nullptr) return 1;
    for (int i = 1; i <= argsNode->ChildCount(); ++i) {
        TAPSyntaxe* child = argsNode->Child(i);
        NUBListValNUBString pieces;
        child->GetListOfString(pieces);
        const Direction* direction =
            CheckedDirection(*child, pieces, defClass != nullptr ? defClass->source : nullptr);
        if (direction == nullptr) return 1;
        auto* argument = new TAPDefVar(child, pieces[pieces.Size()].CastToCharPtr(),
                                       TypeOf(pieces, *direction).CastToCharPtr(), table);
        argument->direction = direction->code;
        args.Append(argument);
    }
    return 0;
}

// GetArgType, but that the name of a plain declaration is left alone.
int TAPSymbolTable::GetIdlArgType(TAPSyntaxe* node, NUBString& type, NUBString& name, int&) {
    if (node == nullptr) return 0;
    NUBString declared;
    const int recognised = GetArgType(node, type, declared);
    const TAPSyntaxe* argument = IsOfKind(node, "=") ? ChildOf(node, 1) : node;
    if (!MarkOf(argument).empty() && ChildOfKind(argument, 2, "id") != nullptr) name = declared;
    return recognised;
}
