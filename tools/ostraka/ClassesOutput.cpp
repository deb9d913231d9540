// Classes of a table: as a list, one whole, and as a hierarchy.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "Declarations.h"
#include "Dot.h"
#include "Json.h"
#include "Nearest.h"
#include "Session.h"
#include "TableVerbs.h"

namespace ostraka::tool {

namespace {

// What is known of a class beside its record.
struct Shown {
    std::string file;
    Place place;
};

Shown ShownPlace(const Session& session, const TAPSyntaxePath* path) {
    if (path == nullptr) return {"?", {}};
    return {session.Shown(path->filePath.View()), PlaceOf(*path)};
}

std::string Colored(const Request& request, std::string_view color, std::string_view text) {
    return fmt::format("{}{}{}", Color(request.colorOutput, color), text,
                       Color(request.colorOutput, colorOff));
}

std::string PlaceText(const Request& request, const Session& session, const TAPSyntaxePath* path) {
    const Shown shown = ShownPlace(session, path);
    return Colored(request, colorPlace,
                   fmt::format("{}:{}:{}", shown.file, shown.place.line, shown.place.column));
}

const char* FrameworkOf(const TAPDefClass& record) {
    return record.source != nullptr && record.source->framework != nullptr ? record.source->framework : "";
}

const char* BaseOf(const TAPDefClass& record) {
    return record.parent != nullptr ? record.parent : "";
}

// Sorted by name.
std::vector<TAPDefClass*> ClassesOf(const TAPSymbolTable& table) {
    std::vector<TAPDefClass*> classes;
    for (int i = 0; i < table.classIndex.size; ++i)
        classes.push_back(static_cast<TAPDefClass*>(table.classIndex.values[i]));
    return classes;
}

JsonValue JsonOf(const Session& session, const TAPDefClass& record) {
    JsonValue item = {{"name", record.name}, {"kind", KindOf(record)}, {"base", nullptr}};
    if (record.parent != nullptr) item["base"] = record.parent;
    item["framework"] = FrameworkOf(record);
    const Shown shown = ShownPlace(session, record.path);
    PutPlace(item, shown.file, shown.place);
    return item;
}

// ---- classes

bool IsOfKinds(const TAPDefClass& record, const std::vector<std::string>& kinds) {
    const std::string own = KindOf(record);
    return kinds.empty() || std::any_of(kinds.begin(), kinds.end(),
                                        [&](const std::string& kind) { return own.find(kind) != own.npos; });
}

bool IsDerivedFrom(const TAPSymbolTable& table, const TAPDefClass& record, const std::string& base) {
    return base.empty() || (base != record.name && table.InheritFrom(record.name, base.c_str()) != 0);
}

void PrintClassLine(const Request& request, const Session& session, const TAPDefClass& record,
                    std::string& out) {
    fmt::format_to(std::back_inserter(out), "{}: {} {}", PlaceText(request, session, record.path),
                   Colored(request, colorClass, KindOf(record)), record.name);
    if (*BaseOf(record) != 0) fmt::format_to(std::back_inserter(out), " : {}", record.parent);
    fmt::format_to(std::back_inserter(out), "  [{}]\n", FrameworkOf(record));
}

// ---- show

// Says where the class stands between its bases and those derived from it.
struct Kin {
    std::vector<TAPDefClass*> bases; // the nearest first
    std::vector<TAPDefClass*> derived;
    std::vector<TAPDefClass*> tiedTo; // of an interface: classes that it is tied to
    bool inCircle = false;
};

Kin KinOf(const TAPSymbolTable& table, const TAPDefClass& record) {
    Kin kin;
    std::set<const TAPDefClass*> seen = {&record};
    for (const TAPDefClass* at = &record; at->parent != nullptr;) {
        TAPDefClass* base = table.GetClass(at->parent);
        if (base == nullptr) break;
        kin.inCircle = !seen.insert(base).second;
        if (kin.inCircle) break;
        kin.bases.push_back(base);
        at = base;
    }
    for (TAPDefClass* other : ClassesOf(table)) {
        if (other->parent != nullptr && std::string_view(other->parent) == record.name)
            kin.derived.push_back(other);
        for (int i = 1; i <= other->tied.size; ++i)
            if (other->tied[i] == &record) kin.tiedTo.push_back(other);
    }
    return kin;
}

void PrintRelation(const Request& request, const Session& session, const char* word, const TAPDefClass& other,
                   std::string& out) {
    fmt::format_to(std::back_inserter(out), "  {:<9} {}  {}\n", word, other.name,
                   PlaceText(request, session, other.path));
}

void PrintHead(const Request& request, const Session& session, const TAPDefClass& record, const Kin& kin,
               std::string& out) {
    fmt::format_to(std::back_inserter(out), "{} {}  [{}]\n  {:<9} {}\n",
                   Colored(request, colorClass, KindOf(record)), record.name, FrameworkOf(record), "declared",
                   PlaceText(request, session, record.path));
    for (const TAPDefClass* base : kin.bases) PrintRelation(request, session, "base", *base, out);
    const TAPDefClass& last = kin.bases.empty() ? record : *kin.bases.back();
    if (kin.inCircle) {
        fmt::format_to(std::back_inserter(out), "  {:<9} {}, which closes a circle\n", "base", BaseOf(last));
    } else if (last.parent != nullptr) {
        fmt::format_to(std::back_inserter(out), "  {:<9} {}, which isn't loaded\n", "base", last.parent);
    }
    for (const TAPDefClass* other : kin.derived) PrintRelation(request, session, "derived", *other, out);
    for (int i = 1; i <= record.tied.size; ++i) PrintRelation(request, session, "ties", *record.tied[i], out);
    for (const TAPDefClass* other : kin.tiedTo) PrintRelation(request, session, "tied to", *other, out);
    if (record.dispatch != 0) out += "  dispatch  through NUBBaseDispatch\n";
}

std::string WithVisibility(int code, std::string_view text) {
    const std::string_view visibility = VisibilityOf(code);
    return visibility.empty() ? std::string(text) : fmt::format("{} {}", visibility, text);
}

void PrintMembers(const Request& request, const Session& session, const TAPDefClass& record,
                  std::string& out) {
    if (record.vars.size > 0) out += "members\n";
    for (int i = 1; i <= record.vars.size; ++i) {
        const TAPDefVar& member = *record.vars[i];
        const std::string text = fmt::format("{} {}", member.type, member.name != nullptr ? member.name : "");
        fmt::format_to(std::back_inserter(out), "  {}  {}\n", WithVisibility(member.visibility, text),
                       PlaceText(request, session, member.path));
    }
}

void PrintMethods(const Request& request, const Session& session, TAPDefClass& record, std::string& out) {
    if (record.methods.size > 0) out += "methods\n";
    for (int i = 1; i <= record.methods.size; ++i) {
        TAPDefMethod& method = *record.methods[i];
        fmt::format_to(std::back_inserter(out), "  {}\n",
                       WithVisibility(method.visibility, SignatureOf(method)));
        if (method.path != nullptr)
            fmt::format_to(std::back_inserter(out), "    declared    {}\n",
                           PlaceText(request, session, method.path));
        if (method.implPath != nullptr)
            fmt::format_to(std::back_inserter(out), "    implemented {}, lines: {}\n",
                           PlaceText(request, session, method.implPath), method.GetImpLine());
    }
}

JsonValue NamesOf(const std::vector<TAPDefClass*>& classes) {
    JsonValue names = JsonValue::array();
    for (const TAPDefClass* record : classes) names.push_back(record->name);
    return names;
}

JsonValue JsonPlace(const Session& session, const TAPSyntaxePath* path) {
    if (path == nullptr) return nullptr;
    JsonValue place = JsonValue::object();
    const Shown shown = ShownPlace(session, path);
    PutPlace(place, shown.file, shown.place);
    return place;
}

JsonValue JsonOf(const TAPDefVar& variable) {
    JsonValue item = {{"name", nullptr}, {"type", variable.type}};
    if (variable.name != nullptr) item["name"] = variable.name;
    if (const std::string_view word = VisibilityOf(variable.visibility); !word.empty())
        item["visibility"] = word;
    if (const std::string_view word = DirectionOf(variable.direction); !word.empty())
        item["direction"] = word;
    return item;
}

JsonValue JsonOf(const Session& session, TAPDefMethod& method) {
    JsonValue item = {{"name", method.name}, {"type", nullptr}, {"arguments", JsonValue::array()}};
    if (method.returnedType != nullptr) item["type"] = method.returnedType;
    for (int i = 1; i <= method.args.size; ++i) item["arguments"].push_back(JsonOf(*method.args[i]));
    if (const std::string_view word = VisibilityOf(method.visibility); !word.empty())
        item["visibility"] = word;
    if (const std::string_view word = BindingOf(method); !word.empty()) item["binding"] = word;
    item["inline"] = method.inlined != 0;
    item["declared"] = JsonPlace(session, method.path);
    item["implemented"] = JsonPlace(session, method.implPath);
    if (method.implPath != nullptr) item["lines"] = method.GetImpLine();
    return item;
}

JsonValue WholeJson(const Session& session, TAPDefClass& record, const Kin& kin) {
    JsonValue item = JsonOf(session, record);
    item["bases"] = NamesOf(kin.bases);
    item["derived"] = NamesOf(kin.derived);
    item["ties"] = JsonValue::array();
    for (int i = 1; i <= record.tied.size; ++i) item["ties"].push_back(record.tied[i]->name);
    item["tiedTo"] = NamesOf(kin.tiedTo);
    item["dispatch"] = record.dispatch != 0;
    item["members"] = JsonValue::array();
    for (int i = 1; i <= record.vars.size; ++i) {
        JsonValue member = JsonOf(*record.vars[i]);
        member["declared"] = JsonPlace(session, record.vars[i]->path);
        item["members"].push_back(std::move(member));
    }
    item["methods"] = JsonValue::array();
    for (int i = 1; i <= record.methods.size; ++i)
        item["methods"].push_back(JsonOf(session, *record.methods[i]));
    return item;
}

TAPDefClass* FindClass(const Session& session, const std::string& name, Result& result) {
    if (TAPDefClass* record = session.Table().GetClass(name.c_str())) return record;
    std::vector<std::string> names;
    for (const TAPDefClass* record : ClassesOf(session.Table())) names.emplace_back(record->name);
    result.err += fmt::format("ostraka: there is no class {}{}\n", name, Hint(name, names));
    ++result.notFound;
    return nullptr;
}

// A base needn't be loaded to be one.
bool IsSomeBase(const TAPSymbolTable& table, const std::string& name) {
    const std::vector<TAPDefClass*> classes = ClassesOf(table);
    return std::any_of(classes.begin(), classes.end(),
                       [&](const TAPDefClass* record) { return BaseOf(*record) == name; });
}

// ---- hierarchy

// A line of the hierarchy: a class, or a base that isn't loaded.
struct Branch {
    std::string name;
    TAPDefClass* record; // null for a base that isn't loaded
    int depth;
};

class Hierarchy {
public:
    explicit Hierarchy(const TAPSymbolTable& table) : classes(ClassesOf(table)) {
        for (TAPDefClass* record : classes) {
            byName.emplace(record->name, record);
            if (record->parent != nullptr) derived[record->parent].push_back(record);
            for (int i = 1; i <= record->tied.size; ++i) tiedTo[record->tied[i]].push_back(record);
        }
    }

    // Every class once. Circles have no top: they begin with the first name.
    std::vector<Branch> All() {
        std::set<std::string, std::less<>> tops;
        for (const TAPDefClass* record : classes)
            if (record->parent == nullptr)
                tops.insert(record->name);
            else if (!byName.contains(record->parent))
                tops.insert(record->parent);
        for (const std::string& top : tops) Unfold(top, 0);
        for (const TAPDefClass* record : classes) Unfold(record->name, 0);
        return std::move(branches);
    }

    // The bases of a class from the top down, the class, and what is derived from it.
    std::vector<Branch> Around(const TAPDefClass& record, const Kin& kin) {
        int depth = 0;
        const TAPDefClass& last = kin.bases.empty() ? record : *kin.bases.back();
        if (last.parent != nullptr && !kin.inCircle) branches.push_back({last.parent, nullptr, depth++});
        for (auto base = kin.bases.rbegin(); base != kin.bases.rend(); ++base) {
            branches.push_back({(*base)->name, *base, depth++});
            seen.insert((*base)->name);
        }
        Unfold(record.name, depth);
        return std::move(branches);
    }

    const std::vector<TAPDefClass*>& TiedTo(const TAPDefClass* record) { return tiedTo[record]; }

private:
    void Unfold(const std::string& top, int depth) {
        std::vector<Branch> waiting = {{top, RecordOf(top), depth}};
        while (!waiting.empty()) {
            Branch branch = std::move(waiting.back());
            waiting.pop_back();
            if (!seen.insert(branch.name).second) continue;
            const auto below = derived.find(branch.name);
            if (below != derived.end())
                for (auto next = below->second.rbegin(); next != below->second.rend(); ++next)
                    waiting.push_back({(*next)->name, *next, branch.depth + 1});
            branches.push_back(std::move(branch));
        }
    }

    TAPDefClass* RecordOf(const std::string& name) const {
        const auto found = byName.find(name);
        return found == byName.end() ? nullptr : found->second;
    }

    std::vector<TAPDefClass*> classes;
    std::map<std::string, TAPDefClass*, std::less<>> byName;
    std::map<std::string, std::vector<TAPDefClass*>, std::less<>> derived; // by the name of the base
    std::map<const TAPDefClass*, std::vector<TAPDefClass*>> tiedTo;
    std::set<std::string, std::less<>> seen;
    std::vector<Branch> branches;
};

void PrintBranch(const Request& request, const Session& session, Hierarchy& hierarchy, const Branch& branch,
                 std::string& out) {
    out.append(2 * static_cast<std::size_t>(branch.depth), ' ');
    if (branch.record == nullptr) {
        fmt::format_to(std::back_inserter(out), "{}  not loaded\n", branch.name);
        return;
    }
    fmt::format_to(std::back_inserter(out), "{}  {}  {}", branch.name,
                   Colored(request, colorClass, KindOf(*branch.record)),
                   PlaceText(request, session, branch.record->path));
    for (int i = 1; i <= branch.record->tied.size; ++i)
        fmt::format_to(std::back_inserter(out), "{}{}", i == 1 ? "  ties " : ", ",
                       branch.record->tied[i]->name);
    const auto& classes = hierarchy.TiedTo(branch.record);
    for (std::size_t i = 0; i < classes.size(); ++i)
        fmt::format_to(std::back_inserter(out), "{}{}", i == 0 ? "  tied to " : ", ", classes[i]->name);
    out += '\n';
}

constexpr const char* ShapeOf(const TAPDefClass* record) {
    if (record == nullptr) return "shape=box, style=dotted";
    if ((record->kind & 2) != 0) return "shape=ellipse";
    return (record->kind & 4) != 0 ? "shape=component" : "shape=box";
}

std::string DotOf(const Request& request, const std::vector<Branch>& branches) {
    const std::size_t count = std::min(branches.size(), static_cast<std::size_t>(request.limit));
    std::set<std::string_view> drawn;
    std::string out = "digraph hierarchy {\n  rankdir=BT;\n  node [fontname=\"sans-serif\"];\n";
    for (std::size_t i = 0; i < count; ++i) {
        drawn.insert(branches[i].name);
        fmt::format_to(std::back_inserter(out), "  {} [{}];\n", Quoted(branches[i].name),
                       ShapeOf(branches[i].record));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const TAPDefClass* record = branches[i].record;
        if (record == nullptr) continue;
        if (record->parent != nullptr && drawn.contains(record->parent))
            fmt::format_to(std::back_inserter(out), "  {} -> {} [arrowhead=empty];\n", Quoted(record->name),
                           Quoted(record->parent));
        for (int k = 1; k <= record->tied.size; ++k)
            if (drawn.contains(record->tied[k]->name))
                fmt::format_to(std::back_inserter(out), "  {} -> {} [style=dashed, arrowhead=empty];\n",
                               Quoted(record->name), Quoted(record->tied[k]->name));
    }
    return out + LeftOut(branches.size() - count, "classes") + "}\n";
}

JsonValue JsonOf(const Session& session, Hierarchy& hierarchy, const Branch& branch) {
    if (branch.record == nullptr) return {{"name", branch.name}, {"depth", branch.depth}, {"loaded", false}};
    JsonValue item = JsonOf(session, *branch.record);
    item["depth"] = branch.depth;
    item["loaded"] = true;
    item["ties"] = JsonValue::array();
    for (int i = 1; i <= branch.record->tied.size; ++i) item["ties"].push_back(branch.record->tied[i]->name);
    item["tiedTo"] = NamesOf(hierarchy.TiedTo(branch.record));
    return item;
}

} // namespace

void AnswerClasses(const Request& request, const Session& session, const std::vector<std::string>& files,
                   Result& result) {
    const std::set<std::string_view> wanted(files.begin(), files.end());
    const TAPSymbolTable& table = session.Table();
    JsonValue list = JsonValue::array();
    bool found = false;
    if (!request.derivedFrom.empty() && !IsSomeBase(table, request.derivedFrom))
        FindClass(session, request.derivedFrom, result);
    for (const TAPDefClass* record : ClassesOf(table)) {
        if (record->path == nullptr || !wanted.contains(record->path->filePath.View())) continue;
        if (!IsOfKinds(*record, request.kinds) || !IsDerivedFrom(table, *record, request.derivedFrom))
            continue;
        found = true;
        if (request.format == Format::Text) PrintClassLine(request, session, *record, result.out);
        if (request.format == Format::Json) list.push_back(JsonOf(session, *record));
        if (request.format == Format::JsonLines)
            result.out += Document("classes", {{"classes", JsonValue::array({JsonOf(session, *record)})}});
    }
    if (request.format == Format::Json) result.out = Document("classes", {{"classes", std::move(list)}});
    if (!found) ++result.notFound;
}

void AnswerShow(const Request& request, const Session& session, const std::vector<std::string>&,
                Result& result) {
    TAPDefClass* record = FindClass(session, request.className, result);
    if (record == nullptr) return;
    const Kin kin = KinOf(session.Table(), *record);
    if (request.format == Format::Json) {
        result.out = Document("show", {{"class", WholeJson(session, *record, kin)}});
        return;
    }
    PrintHead(request, session, *record, kin, result.out);
    PrintMembers(request, session, *record, result.out);
    PrintMethods(request, session, *record, result.out);
}

void AnswerHierarchy(const Request& request, const Session& session, const std::vector<std::string>&,
                     Result& result) {
    Hierarchy hierarchy(session.Table());
    std::vector<Branch> branches;
    if (request.className.empty()) {
        branches = hierarchy.All();
    } else if (const TAPDefClass* record = FindClass(session, request.className, result)) {
        branches = hierarchy.Around(*record, KinOf(session.Table(), *record));
    } else {
        return;
    }
    if (branches.empty()) ++result.notFound;
    if (request.format == Format::Dot) {
        result.out = DotOf(request, branches);
        return;
    }
    JsonValue list = JsonValue::array();
    for (const Branch& branch : branches) {
        if (request.format == Format::Text)
            PrintBranch(request, session, hierarchy, branch, result.out);
        else
            list.push_back(JsonOf(session, hierarchy, branch));
    }
    if (request.format == Format::Json) result.out = Document("hierarchy", {{"classes", std::move(list)}});
}

} // namespace ostraka::tool
