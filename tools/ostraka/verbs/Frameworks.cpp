// Frameworks of all roots by name, with who is charged for them, and what doesn't fit together: frameworks
// without an owner, owners without a framework, lines about frameworks that aren't there.

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include <fmt/format.h>

#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/workspace/FrameworkListing.h>
#include <ostraka/workspace/FrameworkResponsibility.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "formats/Text.h"
#include "verbs/ReportInputs.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

struct Framework {
    std::string root;
    std::string name;
    bool isTest = false;
    std::string tested; // the code framework of a test framework
    std::vector<std::string> tests;
    std::string owner; // empty when nobody is known
};

struct Survey {
    std::vector<Framework> frameworks;
    std::vector<std::pair<std::string, std::string>>
        missing;                   // frameworks that only a line knows, with their owners
    std::vector<std::string> idle; // owners of nothing
    bool ownersKnown = false;
};

using Names = std::vector<std::string>;

Names Sorted(const NUBListValNUBString& list) {
    Names names;
    for (const NUBString& name : list) names.emplace_back(name.View());
    std::sort(names.begin(), names.end());
    return names;
}

bool Holds(const Names& names, const std::string& name) {
    return std::binary_search(names.begin(), names.end(), name);
}

// What triage would charge.
std::string OwnerOf(const std::string& framework) {
    const auto* owner = static_cast<const char*>(TAPIndexContainer::respForFwIndex[framework.c_str()]);
    return owner == nullptr || std::string_view(owner) == "." ? "" : owner;
}

Names TestsOf(const NUBString& root, const std::string& framework, const Names& tests, bool ask) {
    NUBListValNUBString found;
    if (ask) GetTestFW(root, framework.c_str(), found, 1);
    Names names = Sorted(found);
    // The command names what it expects, whether it is there or not.
    names.erase(
        std::remove_if(names.begin(), names.end(), [&](const auto& name) { return !Holds(tests, name); }),
        names.end());
    return names;
}

void SurveyRoot(const std::string& path, bool ask, std::vector<Framework>& frameworks) {
    const NUBString root(path.c_str());
    NUBListValNUBString allFound;
    NUBListValNUBString testsFound;
    GetFWCodeList(root, allFound, 0);
    GetFWTestList(root, testsFound, 1);
    const Names tests = Sorted(testsFound);
    std::map<std::string, Names> testsOfCode;
    for (const std::string& name : Sorted(allFound)) {
        Framework& framework = frameworks.emplace_back();
        framework.root = path;
        framework.name = name;
        framework.owner = OwnerOf(name);
        framework.isTest = Holds(tests, name);
        NUBListValNUBString code;
        if (framework.isTest) GetCodeFW(root, name.c_str(), code, 1);
        if (code.Size() > 0) framework.tested = code[1].View();
        if (!framework.isTest) framework.tests = TestsOf(root, name, tests, ask);
        if (!framework.tested.empty()) testsOfCode[framework.tested].push_back(name);
    }
    for (Framework& framework : frameworks) {
        if (framework.root != path || framework.isTest) continue;
        Names& all = framework.tests;
        for (const std::string& name : testsOfCode[framework.name])
            if (std::find(all.begin(), all.end(), name) == all.end()) all.push_back(name);
        std::sort(all.begin(), all.end());
    }
}

// What the lists of owners say about frameworks that aren't in the roots, and who is left without one.
void CompareOwners(const OwnerLists& given, Survey& survey) {
    OwnerLists lists = given;
    NUBListValNUBString table;
    MakeFrameworkOwnerDico(lists.people, lists.lines, table);
    Names present;
    for (const Framework& framework : survey.frameworks) present.push_back(framework.name);
    std::sort(present.begin(), present.end());
    std::set<std::string> owners;
    std::set<std::string> busy;
    for (const NUBString& person : lists.people) owners.emplace(person.View());
    for (const NUBString& entry : table) {
        NUBListValNUBString fields;
        if (Split(entry, fields) != 2) continue;
        const std::string framework(fields[1].View());
        const std::string owner(fields[2].View());
        owners.insert(owner);
        if (OwnerOf(framework) != owner) continue;
        if (Holds(present, framework)) busy.insert(owner);
        if (!Holds(present, framework)) survey.missing.emplace_back(framework, owner);
    }
    std::set_difference(owners.begin(), owners.end(), busy.begin(), busy.end(),
                        std::back_inserter(survey.idle));
    survey.ownersKnown = lists.lines.Size() > 0;
}

std::string KindOf(const Framework& framework) {
    if (framework.isTest) return framework.tested.empty() ? "test of nothing" : "test of " + framework.tested;
    if (framework.tests.empty()) return "code, untested";
    return fmt::format("code, tested by {}", fmt::join(framework.tests, " "));
}

void PrintText(const Request& request, const Survey& survey, Console& console) {
    const auto lacking = [&](std::string_view text) { return Colored(request, colorError, text); };
    for (const Framework& framework : survey.frameworks) {
        std::string line;
        AppendOneLine(line, framework.root + "/" + framework.name);
        line = fmt::format("{:<32}", line);
        if (survey.ownersKnown)
            line += framework.owner.empty() ? lacking(fmt::format("  {:<20}", "no owner"))
                                            : fmt::format("  {:<20}", framework.owner);
        console.Out(fmt::format("{}  {}\n", line, Colored(request, colorClass, KindOf(framework))));
    }
    for (const std::string& owner : survey.idle)
        console.Out(fmt::format("{}: {}\n", lacking("owner of nothing"), owner));
    for (const auto& [framework, owner] : survey.missing)
        console.Out(fmt::format("{}: {}, of {}\n", lacking("no such framework"), framework, owner));
    if (!survey.ownersKnown) return;
    const auto unowned = std::count_if(survey.frameworks.begin(), survey.frameworks.end(),
                                       [](const Framework& f) { return f.owner.empty(); });
    console.Out(fmt::format("{}, {} without an owner\n",
                            Counted(static_cast<std::int64_t>(survey.frameworks.size()), "framework"),
                            unowned));
}

void FrameworkJson(JsonWriter& json, const Survey& survey, const Framework& framework) {
    json.BeginObject();
    json.Member("name", framework.name);
    json.Member("root", framework.root);
    json.Member("kind", framework.isTest ? "test" : "code");
    if (framework.isTest)
        json.Member("codeFramework", OrNull(framework.tested));
    else
        json.List("tests", framework.tests);
    if (survey.ownersKnown) json.Member("owner", OrNull(framework.owner));
    json.EndObject();
}

void PrintJson(const Request& request, const Survey& survey, Console& console) {
    JsonAnswer answer(request, [&](std::string_view piece) { console.Out(piece); });
    answer.List("frameworks", survey.frameworks, true, [&](JsonWriter& json, const Framework& framework) {
        FrameworkJson(json, survey, framework);
    });
    answer.Close([&](JsonWriter& json) {
        json.List("ownersOfNothing", survey.idle);
        json.List("unknownFrameworks", survey.missing, [&](const auto& missing) {
            json.BeginObject();
            json.Member("framework", missing.first);
            json.Member("owner", missing.second);
            json.EndObject();
        });
    });
}

// The roots of all words, each of which may be a list; none twice.
Names Roots(const Request& request) {
    Names roots;
    Names words = request.paths;
    if (!request.workspaces.empty()) words.push_back(request.workspaces);
    for (const std::string& word : words) {
        NUBListValNUBString parts;
        Split(word.c_str(), parts, ":");
        for (const NUBString& part : parts)
            if (std::find(roots.begin(), roots.end(), part.View()) == roots.end())
                roots.emplace_back(part.View());
    }
    if (roots.empty()) roots.emplace_back(".");
    return roots;
}

constexpr std::string_view folderSort = "folder";

void RunFrameworks(Run& run) {
    const Request& request = run.request;
    const OwnerLists owners = LoadOwners(run);
    Survey survey;
    for (const std::string& root : Roots(request)) {
        run.Count(folderSort);
        std::error_code ignored;
        if (std::filesystem::is_directory(root, ignored))
            SurveyRoot(root, request.report.ask, survey.frameworks);
        else
            run.Fail(folderSort, root, {std::nullopt, "is no folder"});
    }
    CompareOwners(owners, survey);
    if (request.format == Format::Text)
        PrintText(request, survey, run.console);
    else
        PrintJson(request, survey, run.console);
    if (survey.frameworks.empty()) run.NotFound();
}

constexpr Option operands[] = {
    {"ROOT", nullptr, "Workspaces, one or several with ':' between; else this folder",
     Operand{TakePath, false, true}},
    {"-w,--workspaces", "ROOT[:ROOT...]", "The same, as other verbs take them", Text{TakeWorkspaces, true}}};
constexpr Option ownOptions[] = {{"--ask", nullptr,
                                  "Ask the command ls_test_fw for the tests of each framework",
                                  Flag{[](Request& r) { r.report.ask = true; }}}};
constexpr std::span<const Option> options[] = {operands, ownerOptions, ownOptions, outputOptions};

} // namespace

const Verb frameworksVerb = {
    "frameworks",
    "List code and test frameworks, with their owners; tell those without, and owners of nothing",
    {"ostraka frameworks harbour:coast",
     "ostraka frameworks --owners ownership/frameworks.txt --people ownership/people.txt harbour:coast",
     "ostraka frameworks --format jsonl harbour"},
    listFormats,
    options,
    nullptr,
    RunFrameworks,
};

} // namespace ostraka::tool
