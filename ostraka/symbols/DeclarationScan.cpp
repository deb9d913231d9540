// What a file declares and implements is told by the shape of its tree, not by a grammar: a word order that
// the builder gives a certain shape is taken for what that shape usually is. Four passes go over the children
// of the root: classes and types, implementations of methods, tied interfaces, functions. So all classes of
// the file are there before the first implementation is looked at.
//
// The recognisers below the scan say what one instruction is.

#include <ostraka/symbols/DeclarationScan.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include <ostraka/foundation/Ref.h>
#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/symbols/DialectMarks.h>
#include <ostraka/symbols/DroppedFunctions.h>
#include <ostraka/symbols/FileLoading.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/OverloadIndex.h>
#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefSource.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/symbols/TypeNames.h>

namespace ostraka::detail {

namespace {

constexpr std::string_view exportWord = "ExportedBy";

void Enter(TAIndex& index, const NUBString& name) {
    index.Append(name.CastToCharPtr(), nullptr, 0);
}

TAPDefClass* FindClass(const TAPSymbolTable& table, std::string_view name) {
    const int position = table.classIndex.IsIn(name.data(), static_cast<int>(name.size()));
    return position < 0 ? nullptr : static_cast<TAPDefClass*>(table.classIndex.values[position]);
}

// The leaf that names the function that child i of the root declares; null if it declares none.
const TAPSyntaxe* DeclaredFunction(const TAPSyntaxe& root, int i) {
    const TAPSyntaxe* call = ChildOfKind(ChildOfType(&root, i, STYPE_Instruction), 1, "mt");
    TAPSyntaxe* declared = ChildOf(call, 1);
    if (declared == nullptr || ChildOfType(&root, i + 1, STYPE_Bloc) != nullptr) return nullptr;
    const TAPSyntaxe* leaf = declared->GetLastLeaf();
    return leaf->GetType() == STYPE_Identifiant ? leaf : nullptr;
}

// Calls `action(position, declaration)` for each entry of `functions` that the scan of this root has made.
template <class Action>
void ForEachFunction(const TAPSymbolTable& table, const TAPSyntaxe& root, Action action) {
    for (int i = 1; i <= root.ChildCount(); ++i) {
        const TAPSyntaxe* name = DeclaredFunction(root, i);
        if (name == nullptr) continue;
        const std::string_view key = TextOf(*name);
        const int position = table.functions.IsIn(key.data(), static_cast<int>(key.size()));
        if (position >= 0 && table.functions.values[position] == root.Child(i))
            action(position, *root.Child(i));
    }
}

class FileScan {
public:
    FileScan(TAPSymbolTable& symbols, TAPSyntaxe& top, TAPDefSource& record, bool withRecords)
        : table(symbols), root(top), source(record), full(withRecords) {}

    void Run() {
        const int count = root.ChildCount();
        for (int i = 1; i <= count; ++i) ScanDeclaration(i);
        for (int i = 1; i <= count; ++i) ScanImplementation(*root.Child(i));
        for (int i = count; i >= 1; --i) ScanTie(*root.Child(i));
        for (int i = count; i >= 1; --i) ScanFunction(i);
    }

private:
    void ScanDeclaration(int i) {
        TAPSyntaxe* child = root.Child(i);
        if (child->GetType() != STYPE_Declaration || EnterNamedType(table, *child)) return;
        if (!StreamOf(*child).starts_with("class ") || child->ChildCount() == 0) return;
        const NUBString name(TextOf(*child->Child(1)));
        if (TAPSyntaxe* body = ChildOfType(&root, i + 1, STYPE_Bloc)) {
            DefineClass(name, *child, *body);
        } else {
            DeclareForward(name);
        }
    }

    // The first declaration of a class wins. A handle class only makes known what it is a handle on.
    void DefineClass(const NUBString& name, TAPSyntaxe& head, TAPSyntaxe& body) {
        if (Holds(table.classIndex, name.View())) return;
        const auto record = Ref<TAPDefClass>::Adopt(new TAPDefClass(&head, &body, &source, &table));
        const NUBString referred(BeforeHandle(name.View()));
        if (referred == name) {
            Register(name, record);
        } else if (referred.Length() > 0) {
            Enter(table.classNames, referred);
            Enter(table.types, referred);
        }
    }

    void Register(const NUBString& name, const Ref<TAPDefClass>& record) {
        if (full) {
            table.classIndex.Append(name.CastToCharPtr(), Ref(record).HandOver(), 0);
            source.AddDefClass(record.Get());
        }
        Enter(table.types, name);
        record->SearchMethods(&table);
        Enter(record->kind == TAPDefClass::Interface ? table.interfaceNames : table.classNames, name);
    }

    void DeclareForward(const NUBString& name) {
        Enter(source.forwardClasses, name);
        const NUBString referred(BeforeHandle(name.View()));
        if (referred.Length() == 0 && name.Length() > 0) return;
        const bool handle = referred != name;
        if (!handle) Enter(table.types, name);
        if (full && table.lazyHeaders == 0) LoadHeaderOf(referred);
        if (handle) Enter(table.types, referred);
    }

    // Scan-only: makes the types of the header known, and not its classes.
    void LoadHeaderOf(const NUBString& className) {
        const TAFileName path =
            table.SearchHeaderFile(source.name.CastToCharPtr(), (className + ".h").CastToCharPtr());
        const char* text = path;
        if (*text == '\0' || Holds(table.sources, text)) return;
        LoadAs(LanguageOfHeader(table, Language::Cxx, text), table, new TAFileBuffer(text, 0), 0);
    }

    void ScanImplementation(TAPSyntaxe& head) {
        NUBString className, methodName;
        TAPSyntaxe* argsNode = nullptr;
        if (table.IsMethodImplementation(&head, className, methodName, argsNode) == 0) return;
        TAPDefClass* owner = table.GetClass(className.CastToCharPtr());
        if (owner == nullptr) return;
        OverloadIndex& declared = overloads.try_emplace(owner, *owner).first->second;
        TAPDefMethod* method = declared.Find(methodName.View(), TypesOfArgs(argsNode));
        if (method != nullptr) {
            method->SetImplementation(&head);
            if (IsOfPreciseType(&head, SINST_Inline)) method->inlined = TAPDefMethod::Inlined;
            source.AddImplMethod(method);
            return;
        }
        const auto added = Ref<TAPDefMethod>::Adopt(
            new TAPDefMethod(nullptr, &head, methodName.CastToCharPtr(), owner, &table));
        owner->AddMethod(added.Get());
        source.AddImplMethod(added.Get());
        declared.Add(added.Get());
    }

    ArgTypes TypesOfArgs(const TAPSyntaxe* argsNode) {
        ArgTypes types;
        NUBString type, name;
        for (int i = 1; argsNode != nullptr && i <= argsNode->ChildCount(); ++i) {
            const bool known = table.GetArgType(argsNode->Child(i), type, name) != 0;
            types.emplace_back(known ? type.CastToCharPtr() : "?");
        }
        if (types.size() == 1 && types[0] == "void") types.clear();
        return types;
    }

    // `TIE_Interface(Class)` ties an interface to a class.
    void ScanTie(const TAPSyntaxe& child) {
        if (child.GetType() != STYPE_Instruction || child.ChildCount() != 1) return;
        const TAPSyntaxe* call = ChildOfKind(&child, 1, "mt");
        if (call == nullptr || call->ChildCount() != 2) return;
        const std::string_view word = TextOf(*call->Child(1));
        if (word.size() <= tieMark.size() || !TextOf(*call).starts_with(tieMark)) return;
        TAPDefClass* owner = FindClass(table, TextOf(*call->Child(2)));
        TAPDefClass* tied = owner != nullptr ? FindClass(table, word.substr(tieMark.size())) : nullptr;
        if (tied == nullptr) return;
        AppendShared(owner->tied, tied);
    }

    void ScanFunction(int i) {
        const TAPSyntaxe* name = DeclaredFunction(root, i);
        if (name != nullptr)
            table.functions.Append(NUBString(TextOf(*name)).CastToCharPtr(), root.Child(i), 0);
    }

    TAPSymbolTable& table;
    TAPSyntaxe& root;
    TAPDefSource& source;
    bool full;
    std::unordered_map<TAPDefClass*, OverloadIndex> overloads; // of the classes that the file implements
};

bool IsLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// Whether the first "operator" of the text stands for itself and isn't part of a longer word.
bool DeclaresOperator(std::string_view text) {
    static constexpr std::string_view word = "operator";
    const std::size_t begin = text.find(word);
    if (begin == std::string_view::npos) return false;
    const std::size_t past = begin + word.size();
    return (begin == 0 || !IsLetterOrDigit(text[begin - 1])) &&
           (past == text.size() || !IsLetterOrDigit(text[past]));
}

// What a function declaration is made of; a constructor has no type.
struct Signature {
    std::optional<NUBString> type;
    const TAPSyntaxe* name = nullptr; // null in what is no declaration
    TAPSyntaxe* args = nullptr;
};

// `Foo(args)` or `Type foo(args)`.
Signature ReadPlainSignature(const TAPSyntaxe& call) {
    TAPSyntaxe* args = ChildOfType(&call, 2, STYPE_ListOfArgs);
    if (const TAPSyntaxe* name = ChildOfKind(&call, 1, "id")) return {std::nullopt, name, args};
    const TAPSyntaxe* declaration = ChildOfKind(&call, 1, "dc");
    const TAPSyntaxe* type = ChildOfType(declaration, 1, STYPE_Expression);
    if (type == nullptr) return {};
    return {NUBString(TextOf(*type)), ChildOfKind(declaration, 2, "id"), args};
}

// `Type* foo(args)`: the marks stand on a chain of first children, the last of them nearest to the root.
Signature ReadMarkedSignature(const TAPSyntaxe* declaration) {
    const TAPSyntaxe* marked = MarkedChild(declaration, 1);
    const TAPSyntaxe* call = ChildOfKind(marked, 2, "mt");
    const TAPSyntaxe* name = ChildOfKind(call, 1, "id");
    if (name == nullptr) return {};
    std::string marks(MarkOf(marked));
    while (const TAPSyntaxe* inner = MarkedChild(marked, 1)) {
        marks.insert(0, MarkOf(inner));
        marked = inner;
    }
    const TAPSyntaxe* type = ChildOfKind(marked, 1, "id");
    if (type == nullptr) type = ChildOfKind(marked, 1, "dc");
    if (type == nullptr) return {};
    return {NUBString(TextOf(*type)).Append(marks), name, ChildOfType(call, 2, STYPE_ListOfArgs)};
}

// Takes the word and the blank behind it out of a type; a type that begins with the word keeps it.
void CutExportWord(NUBString& type) {
    const std::size_t begin = type.View().find(exportWord);
    if (begin == 0 || begin == std::string_view::npos) return;
    const std::size_t blank = type.View().find(' ', begin);
    const std::size_t past = blank == std::string_view::npos ? type.View().size() : blank + 1;
    type.Remove(static_cast<int>(begin), static_cast<int>(past - begin));
}

// The node whose child 1 is the head of an implementation, without the initialisers of a constructor; null if
// the node is none.
const TAPSyntaxe* HeadOfImplementation(const TAPSyntaxe* node) {
    const bool isInline = IsOfPreciseType(node, SINST_Inline);
    if (!isInline && !IsOfType(node, STYPE_Declaration)) return nullptr;
    const TAPSyntaxe* head = isInline && node->ChildCount() > 0 ? node->Child(1) : node;
    const TAPSyntaxe* initialised = ChildOfKind(head, 1, ":");
    return initialised != nullptr ? initialised : head;
}

} // namespace

bool EnterNamedType(TAPSymbolTable& table, TAPSyntaxe& declaration) {
    if (StreamOf(declaration).starts_with("typedef ")) {
        const NUBString name(TextOf(*declaration.GetLastLeaf()));
        Enter(table.types, name);
        Enter(table.typedefNames, name);
        return true;
    }
    const TAPSyntaxe* named = ChildOfType(&declaration, 1, STYPE_Expression);
    const bool isEnum = StreamOf(declaration).starts_with("enum ") ||
                        TextOf(declaration).find(" enum ") != std::string_view::npos;
    if (!isEnum || named == nullptr) return false;
    std::string_view text = TextOf(*named);
    while (text.size() > 1 && text.back() == ' ') text.remove_suffix(1);
    if (text.empty()) return false;
    const NUBString name(text);
    Enter(table.types, name);
    Enter(table.enumNames, name);
    return true;
}

void ForgetFunctions(TAPSymbolTable& table, const TAPSyntaxe& root) {
    ForEachFunction(table, root,
                    [&](int position, const TAPSyntaxe&) { table.functions.RemovePosition(position); });
}

void DroppedFunctions::Keep(const TAPSyntaxe& root) {
    ForEachFunction(table, root, [&](int position, TAPSyntaxe& declaration) {
        const std::string name = table.functions.keys[position];
        auto path = Ref<TAPSyntaxePath>::Adopt(new TAPSyntaxePath(&declaration));
        std::string file(path->filePath.View());
        const auto entry = paths.insert_or_assign(name, std::move(path)).first;
        ofFile[std::move(file)].push_back(&*entry);
        table.functions.RemovePosition(position);
        table.functions.Append(name.c_str(), nullptr, 0);
    });
}

TAPSyntaxe* DroppedFunctions::Find(const char* name) const {
    const auto found = paths.find(name);
    return found != paths.end() ? table.GetSyntaxe(found->second.Get()) : nullptr;
}

void DroppedFunctions::Forget(const NUBString& file) {
    const auto found = ofFile.find(std::string(file.View()));
    if (found == ofFile.end()) return;
    for (const Paths::const_pointer entry : found->second) {
        table.functions.RemovePosition(table.functions.IsIn(entry->first.c_str()));
        paths.erase(paths.find(entry->first));
    }
    ofFile.erase(found);
}

} // namespace ostraka::detail

using namespace ostraka::detail;

int TAPSymbolTable::SearchDeclarations(TAPSyntaxe* root, TAPDefSource* source, int full) {
    if (root != nullptr && source != nullptr) FileScan(*this, *root, *source, full != 0).Run();
    return 0;
}

int TAPSymbolTable::IsVariableOrFunctionDeclaration(TAPSyntaxe* node, NUBListPtrTAPDefVar& vars) {
    NUBListValNUBString words;
    const int result = IsVariableDeclarationInternal(node, words, 1);
    if (result != 1) return result;
    if (GetVariablesAndType(node, words, vars) > 0) return 1;
    ReleaseAll(vars);
    return 0;
}

int TAPSymbolTable::IsFunctionDeclaration(TAPSyntaxe* node, NUBString& returnedType, NUBString& name,
                                          TAPSyntaxe*& argsNode) {
    if (node == nullptr || DeclaresOperator(TextOf(*node))) return 0;
    const TAPSyntaxe* head = node;
    if (IsOfPreciseType(node, SINST_Inline))
        if (const TAPSyntaxe* behind = ChildOfType(node, 1, STYPE_Instruction)) head = behind;
    const TAPSyntaxe* pure = IsOfType(head, STYPE_Instruction) ? ChildOfKind(head, 1, "=") : nullptr;
    const TAPSyntaxe* declaration = pure != nullptr ? pure : head;
    const TAPSyntaxe* call = ChildOfKind(declaration, 1, "mt");
    Signature signature = call != nullptr ? ReadPlainSignature(*call) : ReadMarkedSignature(declaration);
    if (signature.name == nullptr) return 0;
    name = NUBString(TextOf(*signature.name));
    argsNode = signature.args;
    returnedType = signature.type.value_or(NUBString());
    if (!signature.type) return 2;
    CutExportWord(returnedType);
    return IsARecognizedType(returnedType) != 0 ? 2 : 0;
}

int TAPSymbolTable::IsMethodImplementation(TAPSyntaxe* node, NUBString& className, NUBString& methodName,
                                           TAPSyntaxe*& argsNode) {
    const TAPSyntaxe* head = HeadOfImplementation(node);
    const TAPSyntaxe* scope = ChildOfKind(head, 1, "::");
    const TAPSyntaxe* owner = ChildOfKind(ChildOf(scope, 1), 2, "id"); // behind a returned type
    if (scope == nullptr) scope = ChildOfKind(MarkedChild(head, 1), 2, "::");
    if (owner == nullptr) owner = ChildOfKind(scope, 1, "id");
    const TAPSyntaxe* call = ChildOfKind(scope, 2, "mt");
    const TAPSyntaxe* method = ChildOfKind(call, 1, "id");
    if (owner == nullptr || method == nullptr) return 0;
    className = NUBString(TextOf(*owner));
    methodName = NUBString(TextOf(*method));
    argsNode = ChildOf(call, 2);
    return 1;
}

int TAPSymbolTable::IsFunctionImplementation(TAPSyntaxe* node, NUBString& name, TAPSyntaxe*& argsNode) {
    const TAPSyntaxe* head = HeadOfImplementation(node);
    const TAPSyntaxe* direct = ChildOfKind(head, 1, "mt");
    const TAPSyntaxe* call = direct != nullptr ? direct : ChildOfKind(MarkedChild(head, 1), 2, "mt");
    if (call == nullptr) return 0;
    if (call->ChildCount() == 2) {
        // A definition declares its first argument, a call doesn't.
        TAPSyntaxe* first = ChildOf(ChildOfType(call, 2, STYPE_ListOfArgs), 1);
        NUBListPtrTAPDefVar vars;
        const int result = IsVariableOrFunctionDeclaration(first, vars);
        ReleaseAll(vars);
        if (result != 1) return 0;
    }
    const TAPSyntaxe* named = ChildOfKind(ChildOfKind(direct, 1, "dc"), 2, "id");
    if (named == nullptr) named = ChildOfKind(call, 1, "id");
    if (named == nullptr) return 0;
    name = NUBString(TextOf(*named));
    argsNode = ChildOf(call, 2);
    return 1;
}
