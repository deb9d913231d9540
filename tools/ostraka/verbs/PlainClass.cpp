#include "verbs/PlainClass.h"

#include <iterator>
#include <set>
#include <utility>

#include <fmt/format.h>

#include <answers/resolve/Finding.h>

#include "formats/Text.h"
#include "verbs/Declared.h"
#include "verbs/Session.h"

namespace ostraka::tool {

namespace {

const char* KeyOf(const ClassEntry& entry) {
    switch (entry.kind) {
    case FactKind::Struct: return "struct";
    case FactKind::Union: return "union";
    case FactKind::Interface: return "interface";
    case FactKind::Exception: return "exception";
    default: return "class";
    }
}

std::string BindingOf(const Declared& method) {
    if (method.Has(IsPure)) return "pure virtual";
    if (method.Has(IsVirtual)) return "virtual";
    return method.Has(IsStatic) ? "static" : "";
}

// "virtual int Moor(Berth* berth) const = 0"
std::string TextOf(const FileFacts& facts, const Declared& declared) {
    std::string text = declared.Has(IsStatic) ? "static " : declared.Has(IsVirtual) ? "virtual " : "";
    if (declared.kind == FactKind::Enum) text += "enum ";
    if (declared.kind == FactKind::Typedef) text += "typedef ";
    if (!declared.type.empty() && !declared.Has(IsConversion)) text.append(declared.type).append(" ");
    text += declared.name;
    if (declared.kind == FactKind::Function) text += SignatureText(facts, declared);
    return text;
}

} // namespace

PlainClasses::PlainClasses(const Request& asked, const Session& session,
                           const std::vector<std::string>& named)
    : request(asked), paths(named), code(asked, named, &session) {}

ClassList PlainClasses::List(bool onlyNamed) {
    std::vector<int> files;
    std::set<int> known;
    for (const std::string& path : paths)
        if (known.insert(code.FileAt(path)).second) files.push_back(code.FileAt(path));
    if (!onlyNamed)
        for (const int file : code.Base().AllFiles())
            if (known.insert(file).second) files.push_back(file);
    return ClassList(code.Base(), code.AllNames(), code.Ask(), files);
}

std::string PlainClasses::PlaceOf(const DeclarationRef& ref, std::uint32_t at) {
    return PlaceText(request, code.Shown(ref.file), code.Base().FactsOf(ref.file).PlaceOf(at));
}

std::vector<int> PlainClasses::MembersOf(const ClassEntry& entry) {
    const FileFacts& facts = code.Base().FactsOf(entry.ref.file);
    const Declared& declared = facts.declared[static_cast<std::size_t>(entry.ref.index)];
    std::vector<int> members;
    for (int i = entry.ref.index + 1; i < static_cast<int>(facts.declared.size()); ++i) {
        const Declared& each = facts.declared[static_cast<std::size_t>(i)];
        if (each.begin >= declared.past) break;
        if (each.scope == declared.body && !each.name.empty()) members.push_back(i);
    }
    return members;
}

DeclarationRef PlainClasses::ImplementationOf(const ClassEntry& entry, const Declared& method) {
    const Names& names = code.AllNames();
    const std::string signature = SignatureText(code.Base().FactsOf(entry.ref.file), method);
    const Refs& implemented = names.ImplementedFor(entry.entity, names.IdOf(method.name));
    for (const DeclarationRef& ref : implemented) {
        const FileFacts& facts = code.Base().FactsOf(ref.file);
        const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
        if (implemented.size() == 1 || SignatureText(facts, declared) == signature) return ref;
    }
    return {};
}

void PlainClasses::PrintMember(const Declared& declared, int file, std::string& out) {
    std::string line;
    AppendOneLine(line, TextOf(code.Base().FactsOf(file), declared));
    fmt::format_to(std::back_inserter(out), "  {}{}{}  {}\n", WordOf(declared.access),
                   declared.access == Access::None ? "" : " ", line, PlaceOf({file, 0}, declared.at));
}

void PlainClasses::PrintClass(const ClassList& list, int number, std::string& out) {
    const ClassEntry& entry = list.All()[static_cast<std::size_t>(number)];
    fmt::format_to(std::back_inserter(out), "{} {}\n  declared  {}\n",
                   Colored(request, colorClass, KeyOf(entry)), entry.name, PlaceOf(entry.ref, entry.at));
    const auto relation = [&](const char* word, const ClassEntry& other) {
        fmt::format_to(std::back_inserter(out), "  {:<9} {}  {}\n", word, other.name,
                       PlaceOf(other.ref, other.at));
    };
    std::set<int> loaded;
    for (const int base : list.BasesOf(number)) {
        relation("base", list.All()[static_cast<std::size_t>(base)]);
        loaded.insert(list.All()[static_cast<std::size_t>(base)].entity);
    }
    for (const ClassBase& base : entry.bases)
        if (!loaded.contains(base.entity))
            out += fmt::format("  base      {}, which isn't loaded\n", base.name);
    for (const int below : list.Below(number))
        relation("derived", list.All()[static_cast<std::size_t>(below)]);
    const FileFacts& facts = code.Base().FactsOf(entry.ref.file);
    const std::vector<int> members = MembersOf(entry);
    for (const bool methods : {false, true}) {
        bool isFirst = true;
        for (const int i : members) {
            const Declared& each = facts.declared[static_cast<std::size_t>(i)];
            if ((each.kind == FactKind::Function) != methods || each.kind == FactKind::Enumerator) continue;
            if (std::exchange(isFirst, false)) out += methods ? "methods\n" : "members\n";
            PrintMember(each, entry.ref.file, out);
            if (!methods) continue;
            if (const DeclarationRef body = ImplementationOf(entry, each); !body.IsNone()) {
                const Declared& implemented =
                    code.Base().FactsOf(body.file).declared[static_cast<std::size_t>(body.index)];
                fmt::format_to(std::back_inserter(out), "    implemented {}\n",
                               PlaceOf(body, implemented.at));
            }
        }
    }
}

void PlainClasses::WriteClass(JsonWriter& json, const ClassList& list, int number) {
    const ClassEntry& entry = list.All()[static_cast<std::size_t>(number)];
    const FileFacts& facts = code.Base().FactsOf(entry.ref.file);
    const auto place = [&](const DeclarationRef& ref, std::uint32_t at) {
        json.Object(
            [&] { json.PlaceMembers(code.Shown(ref.file), code.Base().FactsOf(ref.file).PlaceOf(at)); });
    };
    json.BeginObject();
    json.Member("name", entry.name);
    json.Member("kind", entry.kind == FactKind::Interface ? "interface" : "plain");
    json.Member("base", entry.bases.empty() ? OrNull("") : OrNull(entry.bases.front().name));
    json.Member("framework", "");
    json.PlaceMembers(code.Shown(entry.ref.file), facts.PlaceOf(entry.at));
    json.List("bases", entry.bases, [&](const ClassBase& base) { json.Value(base.name); });
    json.List("derived", list.Below(number),
              [&](int below) { json.Value(list.All()[static_cast<std::size_t>(below)].name); });
    for (const char* key : {"ties", "tiedTo"}) json.List(key, std::vector<std::string>());
    json.Member("dispatch", false);
    const std::vector<int> members = MembersOf(entry);
    const auto common = [&](const Declared& each, const char* kind) {
        json.Member("name", each.name);
        json.Member("kind", kind);
        json.Member("text", TextOf(facts, each));
        json.Member("type", OrNull(std::string(each.type)));
        if (each.access != Access::None) json.Member("visibility", WordOf(each.access));
        json.Key("declared");
        place(entry.ref, each.at);
    };
    json.Key("members");
    json.BeginList();
    for (const int i : members) {
        const Declared& each = facts.declared[static_cast<std::size_t>(i)];
        if (each.kind == FactKind::Function || each.kind == FactKind::Enumerator) continue;
        json.Object([&] { common(each, each.kind == FactKind::Variable ? "member" : WordFor(each.kind)); });
    }
    json.EndList();
    json.Key("methods");
    json.BeginList();
    for (const int i : members) {
        const Declared& each = facts.declared[static_cast<std::size_t>(i)];
        if (each.kind != FactKind::Function) continue;
        json.Object([&] {
            common(each, "method");
            json.Member("arguments", nullptr);
            json.Key("implemented");
            if (const DeclarationRef body = ImplementationOf(entry, each); !body.IsNone()) {
                place(body, code.Base().FactsOf(body.file).declared[static_cast<std::size_t>(body.index)].at);
            } else if (each.Has(HasBody)) {
                place(entry.ref, each.at);
            } else {
                json.Value(nullptr);
            }
            if (const std::string binding = BindingOf(each); !binding.empty())
                json.Member("binding", binding);
        });
    }
    json.EndList();
    json.EndObject();
}

bool PlainClasses::ShowMethods(const std::string& name, Result& result) {
    if (request.format == Format::Json || name.find("::") == name.npos) return false;
    const std::vector<FoundDeclaration> found = FindDeclarations(code.Base(), code.AllNames(), name, false);
    for (const FoundDeclaration& each : found) {
        std::string line;
        AppendOneLine(line,
                      fmt::format("{} {}{}{}", each.answer.type, each.answer.scope + "::" + each.answer.name,
                                  each.signature, each.hasBody ? " {}" : ""));
        fmt::format_to(std::back_inserter(result.out), "{}\n  {:<11} {}\n", line,
                       each.hasBody ? "implemented" : "declared",
                       PlaceOf({each.answer.file, 0}, each.answer.at));
    }
    return !found.empty();
}

bool PlainClasses::Show(const std::string& name, Result& result) {
    const ClassList list = List(false);
    const std::vector<int> found = list.Find(name);
    if (found.empty()) return ShowMethods(name, result);
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out, [&](JsonWriter& json) {
            json.Key("class");
            WriteClass(json, list, found.front());
        });
        return true;
    }
    for (const int each : found) PrintClass(list, each, result.out);
    return true;
}

bool PlainClasses::ShowKin(const std::string& name, Result& result) {
    const ClassList list = List(name.empty());
    std::vector<int> found = name.empty() ? list.Tops() : list.Find(name);
    if (found.empty()) return false;
    struct Branch {
        int entry;
        int depth;
    };
    std::vector<Branch> branches;
    std::set<int> seen;
    for (const int top : found) {
        int depth = 0;
        std::vector<int> line; // the first base of each, upwards
        std::set<int> climbed = {top};
        for (std::vector<int> bases = list.BasesOf(top);
             !bases.empty() && climbed.insert(bases.front()).second; bases = list.BasesOf(bases.front()))
            line.push_back(bases.front());
        for (auto base = line.rbegin(); base != line.rend(); ++base)
            if (seen.insert(*base).second) branches.push_back({*base, depth++});
        std::vector<Branch> waiting = {{top, depth}};
        while (!waiting.empty()) {
            const Branch branch = waiting.back();
            waiting.pop_back();
            if (!seen.insert(branch.entry).second) continue;
            const std::vector<int> below = list.Below(branch.entry);
            for (auto next = below.rbegin(); next != below.rend(); ++next)
                waiting.push_back({*next, branch.depth + 1});
            branches.push_back(branch);
        }
    }
    if (request.format == Format::Json) {
        JsonAnswer answer(request, [&](std::string_view piece) { result.out += piece; });
        answer.List("classes", branches, false, [&](JsonWriter& json, const Branch& branch) {
            const ClassEntry& entry = list.All()[static_cast<std::size_t>(branch.entry)];
            json.BeginObject();
            json.Member("name", entry.name);
            json.Member("kind", entry.kind == FactKind::Interface ? "interface" : "plain");
            json.Member("base", entry.bases.empty() ? OrNull("") : OrNull(entry.bases.front().name));
            json.Member("framework", "");
            json.PlaceMembers(code.Shown(entry.ref.file),
                              code.Base().FactsOf(entry.ref.file).PlaceOf(entry.at));
            json.Member("depth", branch.depth);
            json.Member("loaded", true);
            for (const char* key : {"ties", "tiedTo"}) json.List(key, std::vector<std::string>());
            json.EndObject();
        });
        answer.Close();
        return true;
    }
    for (const Branch& branch : branches) {
        const ClassEntry& entry = list.All()[static_cast<std::size_t>(branch.entry)];
        result.out.append(2 * static_cast<std::size_t>(branch.depth), ' ');
        fmt::format_to(std::back_inserter(result.out), "{}  {}  {}\n", entry.name,
                       Colored(request, colorClass, KeyOf(entry)), PlaceOf(entry.ref, entry.at));
    }
    return true;
}

} // namespace ostraka::tool
