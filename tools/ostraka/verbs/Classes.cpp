// Classes as a list: what the files say, and what the table knows of them besides.

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include <answers/resolve/Classes.h>
#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/ClassRecords.h"
#include "verbs/CodeSession.h"
#include "verbs/Declared.h"
#include "verbs/FileId.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// A class as its file says it, or as the table knows it, or both.
struct Listed {
    const ClassEntry* entry = nullptr;
    const TAPDefClass* record = nullptr;

    std::string Name() const { return entry != nullptr ? entry->name : record->name; }
    std::string Kind() const {
        if (record != nullptr) return KindOf(*record);
        return entry->kind == FactKind::Interface ? "interface" : "plain";
    }
};

bool IsOfKinds(const std::string& own, const std::vector<std::string>& kinds) {
    return kinds.empty() || std::any_of(kinds.begin(), kinds.end(), [&](const std::string& kind) {
               return own.find(kind) != std::string::npos;
           });
}

std::string BasesText(const Listed& listed) {
    std::string text;
    if (listed.entry != nullptr)
        for (const ClassBase& base : listed.entry->bases) text += (text.empty() ? "" : ", ") + base.name;
    return text.empty() && listed.record != nullptr ? BaseOf(*listed.record) : text;
}

const char* KeyOf(FactKind kind) {
    switch (kind) {
    case FactKind::Struct: return "struct";
    case FactKind::Union: return "union";
    case FactKind::Interface: return "interface";
    case FactKind::Exception: return "exception";
    default: return "class";
    }
}

// The classes of some files, by name.
class Listing {
public:
    Listing(const Request& theRequest, const Session& asked, const std::vector<std::string>& files)
        : request(theRequest), session(asked), code(theRequest, files, &asked), classes(MakeClasses(files)) {
        NamedFiles wanted(files);
        std::map<std::pair<std::string, std::string_view>, const TAPDefClass*> records; // by file and name
        for (const TAPDefClass* record : ClassesOf(session.Table()))
            if (record->path != nullptr && wanted.Hold(record->path->filePath.View()))
                records.emplace(std::pair(Real(std::string(record->path->filePath.View())),
                                          std::string_view(record->name)),
                                record);
        const std::set<int> named(numbers.begin(), numbers.end());
        for (const ClassEntry& entry : classes.All()) {
            if (!named.contains(entry.ref.file)) continue;
            Listed listed{&entry, nullptr};
            const auto record = records.find({Real(code.Base().PathOf(entry.ref.file)), entry.name});
            if (record != records.end()) {
                listed.record = record->second;
                records.erase(record);
            }
            all.push_back(listed);
        }
        for (const auto& [place, record] : records) all.push_back({nullptr, record});
        std::stable_sort(all.begin(), all.end(),
                         [](const Listed& a, const Listed& b) { return a.Name() < b.Name(); });
    }

    const ClassList& Classes() const { return classes; }
    CodeSession& Code() { return code; }

    std::vector<Listed> Wanted() const {
        std::vector<Listed> found;
        std::set<const ClassEntry*> derived;
        if (!request.derivedFrom.empty())
            for (const int i : classes.DerivedFrom(request.derivedFrom))
                derived.insert(&classes.All()[static_cast<std::size_t>(i)]);
        for (const Listed& listed : all)
            if (IsOfKinds(listed.Kind(), request.kinds) &&
                (request.derivedFrom.empty() || derived.contains(listed.entry) || IsDerived(listed.record)))
                found.push_back(listed);
        return found;
    }

    // A record stands at its statement, a class that only its file tells at its name.
    std::pair<std::string, Place> PlaceOfListed(const Listed& listed) {
        if (listed.record != nullptr)
            return {session.Shown(listed.record->path->filePath.View()),
                    answers::PlaceOf(*listed.record->path)};
        const int file = listed.entry->ref.file;
        return {session.Shown(code.Base().PathOf(file)), code.Base().FactsOf(file).PlaceOf(listed.entry->at)};
    }

    void PrintLine(const Listed& listed, std::string& out) {
        const auto [file, place] = PlaceOfListed(listed);
        fmt::format_to(std::back_inserter(out), "{}: {} {}", PlaceText(request, file, place),
                       Colored(request, colorClass, listed.Kind()), listed.Name());
        if (const std::string bases = BasesText(listed); !bases.empty()) out += " : " + bases;
        out += (listed.record != nullptr ? FrameworkText(*listed.record) : std::string()) + "\n";
    }

    void WriteJson(JsonWriter& json, const Listed& listed) {
        json.BeginObject();
        if (listed.record != nullptr) {
            ClassMembers(json, session, *listed.record);
        } else {
            json.Member("name", listed.entry->name);
            json.Member("kind", listed.Kind());
            json.Member("base",
                        listed.entry->bases.empty() ? OrNull("") : OrNull(listed.entry->bases.front().name));
            json.Member("framework", "");
            const auto [file, place] = PlaceOfListed(listed);
            json.PlaceMembers(file, place);
        }
        json.Member("key", listed.entry != nullptr ? KeyOf(listed.entry->kind) : "class");
        json.Member("template", listed.entry != nullptr && listed.entry->isTemplate);
        BasesJson(json, listed.entry != nullptr ? listed.entry->bases : std::vector<ClassBase>());
        json.EndObject();
    }

private:
    // Bases lie in any file of the code base.
    ClassList MakeClasses(const std::vector<std::string>& files) {
        std::set<int> known;
        for (const std::string& file : files) {
            numbers.push_back(code.Base().FileAt(file));
            known.insert(numbers.back());
        }
        std::vector<int> every = numbers;
        if (!request.derivedFrom.empty())
            for (const int file : code.Base().AllFiles())
                if (known.insert(file).second) every.push_back(file);
        return ClassList(code.Base(), code.AllNames(), code.Ask(), every, true);
    }

    // A file may be reached by two paths, one of them through a link.
    const std::string& Real(const std::string& path) {
        const auto [entry, isNew] = real.try_emplace(path);
        if (isNew) {
            std::error_code error;
            entry->second = std::filesystem::canonical(path, error).string();
            if (error) entry->second = path;
        }
        return entry->second;
    }

    bool IsDerived(const TAPDefClass* record) const {
        return record != nullptr && request.derivedFrom != record->name &&
               session.Table().InheritFrom(record->name, request.derivedFrom.c_str()) != 0;
    }

    const Request& request;
    const Session& session;
    CodeSession code;
    std::vector<int> numbers; // of the named files
    ClassList classes;
    std::map<std::string, std::string> real; // paths by the way that they were reached
    std::vector<Listed> all;
};

void TellNothingFound(const Request& request, const std::vector<std::string>& files, Result& result) {
    ++result.notFound;
    const bool isFiltered = !request.kinds.empty() || !request.derivedFrom.empty();
    result.Note(request, fmt::format("no {}class in {}", isFiltered ? "such " : "",
                                     Counted(static_cast<std::int64_t>(files.size()), "file")));
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    Listing listing(request, session, files);
    if (!request.derivedFrom.empty() && !listing.Classes().IsBase(request.derivedFrom) &&
        listing.Classes().Find(request.derivedFrom).empty())
        FindClass(session, request.derivedFrom, result);
    const std::vector<Listed> found = listing.Wanted();
    listing.Code().TellHeads(files, result);
    if (found.empty()) TellNothingFound(request, files, result);
    if (request.format == Format::Text) {
        for (const Listed& listed : found) listing.PrintLine(listed, result.out);
        return;
    }
    JsonAnswer answer(request, [&](std::string_view piece) { result.out += piece; });
    answer.List("classes", found, false,
                [&](JsonWriter& json, const Listed& listed) { listing.WriteJson(json, listed); });
    answer.Close();
}

void RunClasses(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr const char* kinds[] = {"plain", "interface", "component"};

constexpr Option ownOptions[] = {
    {"--kind", "plain,interface,component", "Only classes of one of these kinds",
     Word{kinds, [](Request& r, std::size_t kind) { r.kinds.emplace_back(kinds[kind]); }, true}},
    {"--derived-from", "NAME", "Only classes with this one among their bases",
     Text{[](Request& r, const std::string& name) { r.derivedFrom = name; }}}};
constexpr std::span<const Option> options[] = {tableFileOptions,    outputOptions,  workspaceOptions,
                                               headerFolderOptions, missingOptions, ownOptions};

} // namespace

const Verb classesVerb = {
    "classes",
    "List classes with kind, base, framework and place",
    {"ostraka classes -w harbour:coast", "ostraka classes -w harbour:coast --kind interface",
     "ostraka classes -w harbour:coast --derived-from CoastObject harbour"},
    listFormats,
    options,
    nullptr,
    RunClasses,
};

} // namespace ostraka::tool
