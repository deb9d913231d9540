// A walk over the statements of a file and of the bodies of classes, structs, unions and namespaces in it.
// Each is what its text says; a record of the table that has its position says more.

#include <answers/resolve/Declarations.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <unordered_map>

#include <fmt/format.h>

#include <answers/resolve/NodeText.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/syntax/TAPExpression.h>

namespace ostraka::answers {

namespace {

constexpr const char* kindNames[] = {"class",          "struct",     "union",         "namespace", "forward",
                                     "enum",           "enumerator", "typedef",       "method",    "member",
                                     "implementation", "function",   "function body", "variable",  "tie"};
constexpr std::string_view visibilities[] = {"public", "protected", "private"};
constexpr std::string_view tieMark = "TIE_";

struct Word {
    int code;
    const char* word;
};

constexpr Word classKinds[] = {{TAPDefClass::PlainClass, "plain"},
                               {TAPDefClass::Interface, "interface"},
                               {TAPDefClass::ComponentClass, "component"}};
constexpr Word bindings[] = {{TAPDefMethod::Static, "static"},
                             {TAPDefMethod::Virtual, "virtual"},
                             {TAPDefMethod::PureVirtual, "pure virtual"}};
constexpr Word directions[] = {{TAPDefVar::In, "in"}, {TAPDefVar::Out, "out"}, {TAPDefVar::InOut, "inout"}};

bool LiesIn(const TAPSyntaxePath* path, const std::string& file) {
    return path != nullptr && path->filePath == file.c_str();
}

// A record's position among the children of the root of this file, or 0 if it isn't one of them.
int TopPosition(const TAPSyntaxePath* path, const std::string& file) {
    return LiesIn(path, file) && path->posInTree.size == 1 ? path->posInTree[1] : 0;
}

bool IsBlock(const TAPSyntaxe& container, int i) {
    return i <= container.ChildCount() && container.Child(i)->GetType() == STYPE_Bloc;
}

bool IsClassLike(DeclarationKind kind) {
    return kind <= DeclarationKind::Union;
}

// The visibility that a statement in a class begins with: `private:`, `public slots: void Hail()`.
std::optional<int> LabelOf(std::string_view text) {
    const std::string_view label = text.substr(0, text.find(':'));
    const std::string_view word = label.substr(0, label.find(' '));
    const auto* known = std::find(std::begin(visibilities), std::end(visibilities), word);
    const bool isLabel = label.size() < text.size() && known != std::end(visibilities) &&
                         label.find_first_of("(<,=") == std::string_view::npos;
    return isLabel ? std::optional<int>(known - std::begin(visibilities)) : std::nullopt;
}

class FileReading {
public:
    FileReading(TAPSymbolTable& symbols, const std::string& path, TAPSyntaxe& top)
        : table(symbols), file(path), root(top) {
        const TAPDefSource* source = table.GetSource(path.c_str());
        if (source == nullptr) return;
        for (int i = 1; i <= source->classes.size; ++i)
            classAt.try_emplace(TopPosition(source->classes[i]->path, file), source->classes[i]);
        for (int i = 1; i <= source->implMethods.size; ++i)
            implementationAt.try_emplace(TopPosition(source->implMethods[i]->implPath, file),
                                         source->implMethods[i]);
    }

    std::vector<OutlineEntry> Run() {
        open.push_back({&root, 1, "", DeclarationKind::Namespace, -1, nullptr});
        while (!open.empty()) {
            if (open.back().next > open.back().container->ChildCount()) {
                open.pop_back();
            } else {
                Read(open.back().next++);
            }
        }
        // What stands behind a body was read before it.
        std::stable_sort(found.begin(), found.end(), [](const OutlineEntry& a, const OutlineEntry& b) {
            return std::pair(a.place.line, a.place.column) < std::pair(b.place.line, b.place.column);
        });
        return std::move(found);
    }

private:
    // The statements of a file or a body, and how far they have been read.
    struct Scope {
        TAPSyntaxe* container;
        int next;
        std::string name;
        DeclarationKind kind;
        int visibility;
        const TAPDefClass* record;
        int listAt =
            0; // where further names of a list would stand, of which one has its initialiser in braces
        // By position among the statements.
        std::unordered_map<int, TAPDefMethod*> methodAt = {};
        std::unordered_map<int, const TAPDefVar*> memberAt = {};
    };

    Scope& Around() { return open.back(); }
    bool IsInClass() { return IsClassLike(Around().kind); }
    bool IsTop() { return open.size() == 1; }

    void Read(int i) {
        TAPSyntaxe& child = *Around().container->Child(i);
        const int type = child.GetType();
        if (type != STYPE_Instruction && type != STYPE_Declaration) return;
        if (IsTop() && ReadTie(child)) return;
        const std::string_view text = BehindLabel(WithContinuation(child, i));
        const int next = Around().next;
        const bool hasBody = IsBlock(*Around().container, next);
        if (text.starts_with(',')) return AddMoreNames(child, i, text, hasBody);
        DeclarationReading reading = ReadDeclaration(text, hasBody);
        RefuseCall(reading, hasBody);
        if (!reading.kind) return;
        at = {&child, text.substr(reading.begin, reading.past - reading.begin), next, hasBody};
        if (hasBody && reading.kind == DeclarationKind::Variable) at.text = WithoutAssignment(at.text);
        if (reading.kind == DeclarationKind::Function) return AddFunction(i, reading);
        if (hasBody && reading.kind == DeclarationKind::Enum) return AddEnum(reading);
        if (hasBody && (IsClassLike(*reading.kind) || reading.kind == DeclarationKind::Namespace))
            return AddScope(i, reading);
        AddNames(i, reading);
    }

    // What stands behind a label, which gives it its visibility.
    std::string_view BehindLabel(std::string_view text) {
        const std::optional<int> code = IsInClass() ? LabelOf(text) : std::nullopt;
        if (!code) return text;
        Around().visibility = *code;
        text.remove_prefix(text.find(':') + 1);
        return text.substr(std::min(text.find_first_not_of(' '), text.size()));
    }

    // `int depths[]` in `int depths[] = {1, 2}`.
    static std::string_view WithoutAssignment(std::string_view text) {
        return text.ends_with('=') ? text.substr(0, text.find_last_not_of(" =") + 1) : text;
    }

    // `, *high = {2}` in `int depth{1}, *high = {2}`, where the library sees two statements.
    // Behind the initialiser of a member in a constructor such a text declares nothing.
    void AddMoreNames(TAPSyntaxe& child, int i, std::string_view text, bool hasBody) {
        Scope& around = Around();
        if (i != around.listAt) return;
        text.remove_prefix(std::min(text.find_first_not_of(", "), text.size()));
        at = {&child, hasBody ? WithoutAssignment(text) : text, around.next, hasBody};
        for (const DeclaredName& name : ReadNamesBehindBody(text)) Add(KindOfVariable(), name.name, at.text);
        if (hasBody) around.listAt = around.next + 1;
    }

    // What stands behind a `)` is a statement of its own to the library, as the initialisers of a constructor
    // in its class, its `= delete`, or `(int)` in `void (*call)(int)`.
    std::string_view WithContinuation(const TAPSyntaxe& first, int i) {
        const TAPSyntaxe& container = *Around().container;
        std::string_view text = TrimmedTextOf(first);
        while (i < container.ChildCount() && text.ends_with(')')) {
            const TAPSyntaxe& next = *container.Child(++i);
            const std::string_view behind = TrimmedTextOf(next);
            if (next.GetType() == STYPE_Bloc || behind.data() != text.data() + text.size() ||
                !BelongsBehindArguments(behind))
                break;
            text = {text.data(), text.size() + behind.size()};
            ++Around().next;
        }
        return text;
    }

    // Without a type a function is a constructor, or has a body. Else it is a call of a macro.
    void RefuseCall(DeclarationReading& reading, bool hasBody) {
        if (reading.kind != DeclarationKind::Function) return;
        const std::string_view name = reading.names.front().name;
        const bool isOwn = name.starts_with('~') || (IsInClass() && EndsScope(name));
        if (!isOwn && !reading.hasType && !hasBody) reading.kind.reset();
    }

    bool EndsScope(std::string_view name) {
        const std::string& scope = Around().name;
        return scope == name || scope.ends_with(fmt::format("::{}", name));
    }

    std::string Qualified(std::string_view name) {
        return Around().name.empty() ? std::string(name) : fmt::format("{}::{}", Around().name, name);
    }

    OutlineEntry& Add(DeclarationKind kind, std::string_view name, std::string_view text) {
        OutlineEntry entry;
        entry.kind = kind;
        entry.name = name;
        entry.scope = Around().name;
        entry.scopeKind = Around().kind;
        entry.text = ReadableLine(text);
        entry.place = PlaceIn(*at.node, text);
        entry.namePlace = name.empty() ? entry.place : PlaceIn(*at.node, name);
        entry.depth = static_cast<int>(open.size()) - 1;
        entry.visibility = Around().visibility;
        entry.owner = Around().record;
        found.push_back(std::move(entry));
        return found.back();
    }

    static std::string WithScope(const DeclaredName& name) {
        return name.scope.empty() ? std::string(name.name) : fmt::format("{}::{}", name.scope, name.name);
    }

    // A name such as `Berth::Moor` tells of a class that is declared elsewhere.
    void SetScope(OutlineEntry& entry, const DeclaredName& name) {
        if (name.scope.empty()) return;
        entry.scope = Qualified(name.scope);
        entry.scopeKind = DeclarationKind::Class;
    }

    // Of a text that points into the stream of the node's file.
    static Place PlaceIn(const TAPSyntaxe& node, std::string_view text) {
        const TAPSourceFile& source = *node.GetTAPSourceFile();
        return text.empty() ? PlaceOf(node)
                            : PlaceAt(source, static_cast<int>(text.data() - source.GetStream()));
    }

    void AddFunction(int i, const DeclarationReading& reading) {
        const DeclaredName& name = reading.names.front();
        const auto record = Around().methodAt.find(i);
        const auto implementation = implementationAt.find(i);
        DeclarationKind kind = at.hasBody ? DeclarationKind::FunctionBody : DeclarationKind::Function;
        if (IsInClass())
            kind = DeclarationKind::Method;
        else if (!name.scope.empty() && at.hasBody)
            kind = DeclarationKind::Implementation;
        OutlineEntry& entry = Add(kind, name.name, at.text);
        entry.arguments = ReadableLine(reading.arguments);
        entry.hasBody = at.hasBody;
        SetScope(entry, name);
        if (record != Around().methodAt.end()) entry.method = record->second;
        if (IsTop() && implementation != implementationAt.end()) {
            entry.method = implementation->second;
            entry.visibility = VisibilityOf(*entry.method);
        }
    }

    // To a record a method is public until a label says something else; in a `class` it is private.
    int VisibilityOf(const TAPDefMethod& method) {
        if (method.visibility != 0 || method.defClass == nullptr || method.path == nullptr)
            return method.visibility;
        const auto [known, isNew] = firstLabels.try_emplace(method.defClass, 0);
        if (isNew) known->second = FirstLabel(*method.defClass);
        const NUBRawCollint& positions = method.path->posInTree;
        return positions.size > 0 && positions[positions.size] < known->second ? TAPDefEntity::Private
                                                                               : TAPDefEntity::Public;
    }

    // Of a body whose members are private before it, its position there; else 0.
    int FirstLabel(const TAPDefClass& record) {
        const TAPSyntaxe* body = table.GetSyntaxe(record.bodyPath);
        TAPSyntaxe* head = table.GetSyntaxe(record.path);
        if (body == nullptr || head == nullptr || !ReadDeclaration(TrimmedTextOf(*head), true).isPrivate)
            return 0;
        int i = 1;
        while (i <= body->ChildCount() && !LabelOf(TrimmedTextOf(*body->Child(i)))) ++i;
        return i;
    }

    void AddEnum(const DeclarationReading& reading) {
        const std::string_view name = NameOfBody(reading);
        if (!reading.isTypedef || !name.empty()) Add(DeclarationKind::Enum, name, at.text);
        const std::string scope = name.empty() ? Around().name : Qualified(name);
        const std::string_view values = TextOf(*Around().container->Child(at.next));
        for (const EnumeratorText& value : ReadEnumerators(values)) {
            OutlineEntry& entry = Add(DeclarationKind::Enumerator, value.name, value.text);
            entry.scope = scope;
            if (!name.empty()) entry.scopeKind = DeclarationKind::Enum;
            ++entry.depth;
        }
        AddNamesBehindBody(reading);
    }

    void AddScope(int i, const DeclarationReading& reading) {
        const auto known = IsTop() ? classAt.find(i) : classAt.end();
        Scope scope{Around().container->Child(at.next), 1, "", *reading.kind, -1, nullptr};
        const std::string_view name = NameOfBody(reading);
        scope.name = name.empty() ? Around().name : Qualified(WithScope(reading.names.front()));
        if (IsClassLike(scope.kind))
            scope.visibility = reading.isPrivate ? TAPDefEntity::Private : TAPDefEntity::Public;
        if (!name.empty() || IsClassLike(scope.kind)) {
            OutlineEntry& entry = Add(*reading.kind, name, at.text);
            if (!reading.names.empty()) SetScope(entry, reading.names.front());
            if (entry.kind == DeclarationKind::Namespace) entry.scopeKind = entry.kind;
            if (known != classAt.end()) entry.classRecord = known->second;
        }
        if (known != classAt.end()) TakeRecord(*known->second, scope);
        if (IsClassLike(scope.kind)) AddNamesBehindBody(reading);
        open.push_back(std::move(scope));
    }

    void TakeRecord(const TAPDefClass& record, Scope& scope) {
        scope.record = &record;
        for (int i = 1; i <= record.methods.size; ++i)
            if (const int position = PositionInBody(record.methods[i]->path); position != 0)
                scope.methodAt.try_emplace(position, record.methods[i]);
        for (int i = 1; i <= record.vars.size; ++i)
            if (const int position = PositionInBody(record.vars[i]->path); position != 0)
                scope.memberAt.try_emplace(position, record.vars[i]);
    }

    int PositionInBody(const TAPSyntaxePath* path) const {
        return LiesIn(path, file) && path->posInTree.size == 2 ? path->posInTree[2] : 0;
    }

    static std::string_view NameOfBody(const DeclarationReading& reading) {
        return reading.names.empty() ? std::string_view() : reading.names.front().name;
    }

    // `struct Place { ... } here;` declares a variable as well, `typedef struct { ... } Place;` a type. The
    // names may be a statement of their own.
    void AddNamesBehindBody(const DeclarationReading& reading) {
        Scope& around = Around();
        const TAPSyntaxe& body = *around.container->Child(at.next);
        const TAPSourceFile& source = *body.GetTAPSourceFile();
        const std::string_view stream(source.GetStream(), static_cast<std::size_t>(source.GetSize()));
        const std::size_t close = stream.find('}', static_cast<std::size_t>(body.GetBegin()) +
                                                       static_cast<std::size_t>(body.GetSize()));
        const std::size_t past =
            std::min(stream.find_first_of(";{}", std::min(close, stream.size() - 1) + 1), stream.size() - 1);
        if (close >= past || stream[past] != ';') return;
        const std::string_view text = stream.substr(close + 1, past - close - 1);
        if (at.next < around.container->ChildCount() &&
            around.container->Child(at.next + 1)->GetBegin() < static_cast<int>(past))
            around.next = at.next + 2;
        const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
        for (const DeclaredName& name : ReadNamesBehindBody(text))
            Add(reading.isTypedef ? DeclarationKind::Typedef : KindOfVariable(), name.name,
                text.substr(blanks));
    }

    DeclarationKind KindOfVariable() {
        return IsInClass() ? DeclarationKind::Member : DeclarationKind::Variable;
    }

    void AddNames(int i, const DeclarationReading& reading) {
        DeclarationKind kind = *reading.kind;
        if (reading.isTypedef) kind = DeclarationKind::Typedef;
        if (kind == DeclarationKind::Variable) kind = KindOfVariable();
        if (at.hasBody) Around().listAt = at.next + 1;
        const std::map<std::string, std::string> types = TypesOf(kind);
        for (const DeclaredName& name : reading.names) {
            const std::string key(name.name);
            if (table.keywords.Holds(key.c_str()) || table.basicTypes.Holds(key.c_str())) continue;
            OutlineEntry& entry = Add(kind, name.name, at.text);
            if (!name.scope.empty())
                entry.type = TypeOf(name);
            else if (const auto type = types.find(key); type != types.end())
                entry.type = AsWritten(type->second, name);
            else if (const auto member = Around().memberAt.find(i);
                     member != Around().memberAt.end() && reading.names.size() == 1)
                entry.type = AsWritten(member->second->type, name);
            SetScope(entry, name);
        }
    }

    // The types of the variables that the statement declares, as far as the library reads them.
    std::map<std::string, std::string> TypesOf(DeclarationKind kind) {
        std::map<std::string, std::string> types;
        if ((kind != DeclarationKind::Variable && kind != DeclarationKind::Member) ||
            at.node->ChildCount() == 0)
            return types;
        NUBListPtrTAPDefVar variables;
        table.IsVariableOrFunctionDeclaration(at.node->Child(1), variables);
        for (int i = 1; i <= variables.size; ++i) {
            if (variables[i]->name != nullptr) types.try_emplace(variables[i]->name, variables[i]->type);
            variables[i]->Release();
        }
        return types;
    }

    bool ReadTie(TAPSyntaxe& child) {
        const TAPSyntaxe* call = child.ChildCount() == 1 ? child.Child(1) : nullptr;
        if (call == nullptr || call->ChildCount() != 2) return false;
        const std::string_view word = TrimmedTextOf(*call->Child(1));
        if (!word.starts_with(tieMark) || word.size() == tieMark.size() || call->Child(2)->ChildCount() > 1)
            return false;
        at.node = &child;
        Add(DeclarationKind::Tie, word.substr(tieMark.size()), TrimmedTextOf(child)).scope =
            TrimmedTextOf(*call->Child(2));
        return true;
    }

    // The statement in hand.
    struct Statement {
        TAPSyntaxe* node;
        std::string_view text;
        int next; // the position behind it, where its body is if it has one
        bool hasBody;
    };

    TAPSymbolTable& table;
    const std::string& file;
    TAPSyntaxe& root;
    std::unordered_map<int, const TAPDefClass*> classAt; // by position below the root; 0 for all others
    std::unordered_map<int, TAPDefMethod*> implementationAt;
    std::unordered_map<const TAPDefClass*, int> firstLabels;
    std::vector<Scope> open;
    Statement at{};
    std::vector<OutlineEntry> found;
};

template <std::size_t count>
const char* WordFor(const Word (&words)[count], int code) {
    const auto* found = std::find_if(words, words + count, [=](const Word& row) { return row.code == code; });
    return found == words + count ? "" : found->word;
}

} // namespace

const char* NameOf(DeclarationKind kind) {
    return kindNames[static_cast<int>(kind)];
}

bool SharesStatement(const OutlineEntry& a, const OutlineEntry& b) {
    return a.place.line == b.place.line && a.place.column == b.place.column && a.text == b.text;
}

std::vector<OutlineEntry> DeclarationsOf(TAPSymbolTable& table, const std::string& path) {
    auto* root = static_cast<TAPSyntaxe*>(table.trees[path.c_str()]);
    if (root == nullptr) return {};
    return FileReading(table, path, *root).Run();
}

std::vector<OutlineEntry> MembersOf(TAPSymbolTable& table, const TAPDefClass& record) {
    if (record.path == nullptr) return {};
    std::vector<OutlineEntry> entries = DeclarationsOf(table, std::string(record.path->filePath.View()));
    std::erase_if(entries, [&](const OutlineEntry& entry) { return entry.owner != &record; });
    return entries;
}

std::string ImplementationText(TAPSymbolTable& table, const TAPDefMethod& method) {
    const TAPSyntaxe* node = table.GetSyntaxe(method.implPath);
    if (node == nullptr) return method.name;
    const std::string_view text = TrimmedTextOf(*node);
    const DeclarationReading reading = ReadDeclaration(text, true);
    return ReadableLine(text.substr(0, reading.past));
}

Place PlaceOf(const TAPSyntaxePath& path) {
    return {path.beginPoint.line, std::max(1, path.beginPoint.col - 1)};
}

const char* VisibilityOf(int code) {
    return code >= TAPDefEntity::Public && code <= TAPDefEntity::Private ? visibilities[code].data() : "";
}

const char* BindingOf(const TAPDefMethod& method) {
    return WordFor(bindings, method.binding);
}

const char* DirectionOf(int code) {
    return WordFor(directions, code);
}

std::string KindOf(const TAPDefClass& record) {
    std::string words;
    for (const Word& row : classKinds) {
        if ((record.kind & row.code) == 0) continue;
        if (!words.empty()) words += ',';
        words += row.word;
    }
    return words;
}

} // namespace ostraka::answers
