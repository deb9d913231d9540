#include "cli/ReportOptions.h"

#include "cli/OptionChoice.h"

namespace ostraka::tool {

namespace {

constexpr Choice<Format> triageFormats[] = {{"text", Format::Text},       {"json", Format::Json},
                                            {"jsonl", Format::JsonLines}, {"sarif", Format::Sarif},
                                            {"html", Format::Html},       {"dot", Format::Dot}};
constexpr Choice<FailOn> failures[] = {{"new", FailOn::New}, {"any", FailOn::Any}};
constexpr Choice<TotalKey> totalKeys[] = {
    {"owner", TotalKey::Owner}, {"framework", TotalKey::Framework}, {"type", TotalKey::Type}};

struct Scope {
    std::string_view prefix;
    bool forErrors;
    bool forLeaks;
};

constexpr Scope scopes[] = {{"errors:", true, false}, {"leaks:", false, true}};

TableFile ParseTableFile(const std::string& word) {
    for (const Scope& scope : scopes)
        if (word.starts_with(scope.prefix))
            return {word.substr(scope.prefix.size()), scope.forErrors, scope.forLeaks};
    return {word};
}

void AddTable(CLI::App& app, const char* option, std::vector<TableFile>& tables, const char* description) {
    const auto take = [&tables](const std::vector<std::string>& words) {
        for (const std::string& word : words) tables.push_back(ParseTableFile(word));
    };
    app.add_option_function<std::vector<std::string>>(option, take, description)
        ->allow_extra_args(false)
        ->type_name("[errors:|leaks:]FILE");
}

void AddTotalKeys(CLI::App& app, std::vector<TotalKey>& keys) {
    const auto take = [&keys](const std::vector<std::string>& words) {
        for (const std::string& word : words) keys.push_back(ParseChoice<TotalKey>("--by", word, totalKeys));
    };
    app.add_option_function<std::vector<std::string>>(
           "--by", take, "Print totals for each owner, framework or type, or each combination; draw those")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("KEY[,KEY...]");
}

void AddOwnerOptions(CLI::App& app, ReportRequest& report) {
    app.add_option("--owners", report.owners,
                   "Take owners of frameworks from lines such as 'FW: Alpha RESP: xyz'")
        ->allow_extra_args(false)
        ->type_name("FILE");
    app.add_option("--people", report.people, "Take the people's names, such as Some.One.XYZ.")
        ->allow_extra_args(false)
        ->type_name("FILE");
}

void AddInputOptions(CLI::App& app, Request& request, const char* words, const char* description) {
    app.add_option(words, request.paths, description)->type_name("");
    app.add_option("--files-from", request.filesFrom, "Take the reports that LIST names, one a line")
        ->type_name("LIST");
}

} // namespace

void AddTriageOptions(CLI::App& app, Request& request) {
    ReportRequest& report = request.report;
    AddInputOptions(app, request, "REPORT", "Reports, folders of them, or - for standard input");
    AddOwnerOptions(app, report);
    AddTable(app, "--ignore-calls", report.ignoredCalls, "Charge no call whose function is in FILE");
    AddTable(app, "--ignore-owners", report.ignoredOwners, "Charge no call of an owner in FILE");
    AddTable(app, "--filter", report.filters,
             "Put aside the stacks that a mask in FILE matches, one TYPE@@@MASK a line");
    AddTable(app, "--cut", report.cuts,
             "Of a stack that a mask in FILE matches, keep the calls that it takes");
    app.add_option("--depth", report.depth, "Keep the first N calls of each stack")
        ->check(CLI::Range(1, 20).description(""))
        ->type_name("N");
    AddTotalKeys(app, report.by);
    app.add_option("--baseline", report.baseline, "Tell what is new since FILE was written")
        ->type_name("FILE");
    app.add_option("--write-baseline", report.writeBaseline, "Write what is known from now on to FILE")
        ->type_name("FILE");
    app.add_flag("--new", report.onlyNew, "Print only what is new");
    app.add_flag("--all", report.all, "Print also what a filter puts aside");
    app.add_flag("--explain", report.explain, "Print also which call, table and mask decided");
    app.add_option("--top", report.top, "Print the first N stacks or totals")
        ->check(CLI::PositiveNumber.description(""))
        ->type_name("N");
    AddChoice<FailOn>(app, "--fail-on", report.failOn, failures,
                      "Exit with 1 when there are such stacks, filtered ones aside");
    AddLimitOption(app, request);
    AddOutputOptions(app, request, triageFormats);
}

void AddMaskOptions(CLI::App& app, Request& request) {
    AddInputOptions(app, request, "MASK REPORT", "A mask, such as @!Foo::Bar(@!@@!main@, and reports");
    app.add_option("--masks", request.report.masks,
                   "Count how often each mask of FILE is used, and take no MASK")
        ->type_name("FILE");
    AddOutputOptions(app, request, listFormats);
}

void AddFrameworksOptions(CLI::App& app, Request& request) {
    app.add_option("ROOT", request.paths, "Workspaces, one or several with ':' between; else this folder")
        ->type_name("");
    app.add_option("-w,--workspaces", request.workspaces, "The same, as other verbs take them")
        ->type_name("ROOT[:ROOT...]");
    AddOwnerOptions(app, request.report);
    app.add_flag("--ask", request.report.ask, "Ask the command ls_test_fw for the tests of each framework");
    AddOutputOptions(app, request, listFormats);
}

bool TakeMask(Request& request) {
    if (!request.report.masks.empty()) return true;
    if (request.paths.empty()) return false;
    request.report.mask = request.paths.front();
    request.paths.erase(request.paths.begin());
    return true;
}

} // namespace ostraka::tool
