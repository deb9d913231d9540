// Who derives from whom.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <unistd.h>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/Dot.h"
#include "formats/JsonWriter.h"
#include "verbs/ClassRecords.h"
#include "verbs/PlainClass.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

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
            if (HasBase(*record)) derived[record->parent].push_back(record);
            for (int i = 1; i <= record->tied.size; ++i) tiedTo[record->tied[i]].push_back(record);
        }
    }

    // Every class once. Circles have no top: they begin with the first name.
    std::vector<Branch> All() {
        std::set<std::string, std::less<>> tops;
        for (const TAPDefClass* record : classes)
            if (!HasBase(*record))
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
        if (HasBase(last) && !kin.inCircle) branches.push_back({last.parent, nullptr, depth++});
        std::for_each(kin.bases.rbegin(), kin.bases.rend(), [&](TAPDefClass* base) {
            branches.push_back({base->name, base, depth++});
            seen.insert(base->name);
        });
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
                std::for_each(below->second.rbegin(), below->second.rend(), [&](TAPDefClass* next) {
                    waiting.push_back({next->name, next, branch.depth + 1});
                });
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
    if ((record->kind & TAPDefClass::Interface) != 0) return "shape=ellipse";
    return (record->kind & TAPDefClass::ComponentClass) != 0 ? "shape=component" : "shape=box";
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
        if (HasBase(*record) && drawn.contains(record->parent))
            fmt::format_to(std::back_inserter(out), "  {} -> {} [arrowhead=empty];\n", Quoted(record->name),
                           Quoted(record->parent));
        for (int k = 1; k <= record->tied.size; ++k)
            if (drawn.contains(record->tied[k]->name))
                fmt::format_to(std::back_inserter(out), "  {} -> {} [style=dashed, arrowhead=empty];\n",
                               Quoted(record->name), Quoted(record->tied[k]->name));
    }
    return out + LeftOut(branches.size() - count, "classes") + "}\n";
}

void BranchJson(JsonWriter& json, const Session& session, Hierarchy& hierarchy, const Branch& branch) {
    json.BeginObject();
    if (branch.record != nullptr)
        ClassMembers(json, session, *branch.record);
    else
        json.Member("name", branch.name);
    json.Member("depth", branch.depth);
    json.Member("loaded", branch.record != nullptr);
    if (branch.record != nullptr) {
        TiesJson(json, *branch.record);
        NamesJson(json, "tiedTo", hierarchy.TiedTo(branch.record));
    }
    json.EndObject();
}

// What only the table knows: interfaces, components and ties.
bool IsOfDialect(const TAPDefClass& record) {
    return (record.kind & (TAPDefClass::Interface | TAPDefClass::ComponentClass)) != 0 ||
           record.tied.size > 0;
}

// Whether the files tell more than the table: of a class that isn't of the dialect, or of all where none is.
bool IsToldByFiles(const Request& request, const TAPSymbolTable& table) {
    if (request.format == Format::Dot) return false;
    if (!request.className.empty()) {
        const TAPDefClass* record = table.GetClass(request.className.c_str());
        return record == nullptr || !IsOfDialect(*record);
    }
    const std::vector<TAPDefClass*> all = ClassesOf(table);
    return std::none_of(all.begin(), all.end(),
                        [](const TAPDefClass* record) { return IsOfDialect(*record); });
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    if (IsToldByFiles(request, session.Table()) &&
        PlainClasses(request, session, files).ShowKin(request.className, result))
        return;
    Hierarchy hierarchy(session.Table());
    std::vector<Branch> branches;
    if (request.className.empty()) {
        branches = hierarchy.All();
    } else if (const TAPDefClass* record = session.Table().GetClass(request.className.c_str())) {
        branches = hierarchy.Around(*record, KinOf(session.Table(), *record));
    } else {
        TellNoClass(session, request.className, result);
        return;
    }
    if (branches.empty()) ++result.notFound;
    if (request.format == Format::Dot) {
        result.out = DotOf(request, branches);
    } else if (request.format == Format::Json) {
        JsonAnswer answer(request, [&](std::string_view piece) { result.out += piece; });
        answer.List("classes", branches, false, [&](JsonWriter& json, const Branch& branch) {
            BranchJson(json, session, hierarchy, branch);
        });
        answer.Close();
    } else {
        for (const Branch& branch : branches) PrintBranch(request, session, hierarchy, branch, result.out);
    }
}

void RunHierarchy(Run& run) {
    AnswerFromTable(run, Answer);
}

// `hierarchy harbour/Ships` names no class.
void TakeFileForClass(Request& request) {
    if (request.className.empty() || access(request.className.c_str(), F_OK) != 0) return;
    request.paths.insert(request.paths.begin(), request.className);
    request.className.clear();
}

constexpr Option operands[] = {{"CLASS", nullptr, "The class around which to look; all without one",
                                Operand{[](Request& r, const std::string& name) { r.className = name; }}}};
constexpr std::span<const Option> options[] = {operands,         tableFileOptions,    outputOptions,
                                               workspaceOptions, headerFolderOptions, missingOptions,
                                               limitOptions};

} // namespace

const Verb hierarchyVerb = {
    "hierarchy",
    "Tell who derives from whom, and which interface is tied to which class",
    {"ostraka hierarchy -w harbour:coast", "ostraka hierarchy Ship -w harbour:coast",
     "ostraka hierarchy -w harbour:coast --format dot"},
    graphFormats,
    options,
    TakeFileForClass,
    RunHierarchy,
};

} // namespace ostraka::tool
