#include <algorithm>
#include <charconv>
#include <iterator>

#include <fmt/format.h>

#include <answers/facts/RawFile.h>
#include <answers/resolve/NodeAnswers.h>
#include <answers/resolve/NodeSearch.h>
#include <answers/resolve/NodeText.h>
#include <ostraka/foundation/TAFileBuffer.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"
#include "verbs/Declared.h"
#include "verbs/Session.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

constexpr std::size_t shownText = 60;

std::string FileOf(const Session& session, const TAPSyntaxe& node) {
    return session.Shown(node.GetSource().View());
}

std::string PathOf(const TAPSyntaxe& node) {
    NUBRawCollint positions;
    node.GetTAPSyntaxePath(positions);
    std::string path;
    for (int i = 1; i <= positions.Size(); ++i) path += fmt::format("{}{}", i > 1 ? "." : "", positions[i]);
    return path.empty() ? "0" : path;
}

std::string ShownText(const TAPSyntaxe& node) {
    std::string text;
    AppendOneLine(text, Shortened(TrimmedTextOf(node), shownText));
    return text;
}

std::string OrUnknown(const std::optional<std::string>& text) {
    return text.value_or("unknown");
}

// What the name at the place is declared as: found by the rules of the language in all files of the code
// base, or else what the symbol table knows by its records.
struct Declarations {
    CodeSession* code;
    std::vector<PlaceAnswer> found;
    const std::vector<Declaration>* known; // null where there is no tree
};

// "member of Ship", "class", "variable"
std::string RoleOf(const PlaceAnswer& answer) {
    const std::string word = WordFor(answer);
    return answer.isMember && !answer.scope.empty() ? word + " of " + answer.scope : word;
}

// Writes one answer, a question on each line.
class AtText {
public:
    AtText(const Request& theRequest, const Session& asked, const Declarations& names, std::string& text)
        : request(theRequest), session(asked), declarations(names), out(text) {}

    // For a file without a tree.
    void PrintDeclared(const FilePlace& asked) {
        fmt::format_to(std::back_inserter(out), "{}:\n", PlaceText(request, asked.file, asked.place));
        PrintFound();
    }

    void Print(const NodeAt& at, const NodeAnswers& answers) {
        const TAPSyntaxe& node = *at.node;
        fmt::format_to(std::back_inserter(out), "{}: {}  {}\n", PlaceOfNode(node),
                       Colored(request, colorClass, DescriptionOf(node)), ShownText(node));
        if (at.isNearest) Line("nearest", fmt::format("at {}:{}", at.place.line, at.place.column));
        Line("path", PathOf(node));
        Line("type", OrUnknown(answers.type));
        if (node.GetType() == STYPE_Identifiant) PrintName(answers);
        Line("class", OrUnknown(answers.className));
        Line("method", OrUnknown(answers.method));
    }

private:
    void Line(const char* question, std::string_view answer) {
        fmt::format_to(std::back_inserter(out), "  {:<9}{}\n", question, answer);
    }

    void PrintFound() {
        for (const PlaceAnswer& each : declarations.found) {
            const FileFacts& facts = declarations.code->Base().FactsOf(each.file);
            std::string text =
                PlaceText(request, declarations.code->Shown(each.file), facts.PlaceOf(each.at));
            text += ": " + RoleOf(each);
            if (!each.type.empty()) text += ", " + each.type;
            if (!each.isCertain) text += " (possible)";
            std::string line;
            AppendOneLine(line, text);
            Line("declared", line);
        }
    }

    void PrintName(const NodeAnswers& answers) {
        if (declarations.found.empty() && answers.declared.empty()) Line("declared", "unknown");
        PrintFound();
        if (declarations.found.empty())
            for (const Declaration& each : answers.declared) Line("declared", Declared(each));
        if (answers.object) {
            Line("object", fmt::format("{}: {}, {}", PlaceOfNode(*answers.object->node),
                                       ShownText(*answers.object->node), OrUnknown(answers.object->type)));
        } else if (answers.isAccess) {
            Line("object", "unknown");
        }
        if (answers.goesBack) Line("returned", Returned(*answers.goesBack));
    }

    std::string Declared(const Declaration& each) const {
        std::string text = each.node != nullptr ? PlaceOfNode(*each.node) + ": " : "";
        text += each.as;
        return each.type.empty() ? text : text + ", " + each.type;
    }

    static std::string Returned(const GoesBack& answer) {
        if (answer.isReturned) return "yes";
        if (answer.argument == 0) return "no";
        return fmt::format("argument {} of {}", answer.argument, answer.arguments);
    }

    std::string PlaceOfNode(const TAPSyntaxe& node) const {
        return PlaceText(request, FileOf(session, node), PlaceOf(node));
    }

    const Request& request;
    const Session& session;
    const Declarations& declarations;
    std::string& out;
};

void NodeJson(JsonWriter& json, const TAPSyntaxe& node) {
    const Place place = PlaceOf(node);
    json.BeginObject();
    json.Member("node", PathOf(node));
    json.Member("class", ClassNameOf(node));
    json.Member("kind", KindOf(node));
    json.Member("line", place.line);
    json.Member("column", place.column);
    json.Member("text", Shortened(TrimmedTextOf(node), shownText));
    json.EndObject();
}

// What a record knows, which has the place of its statement or none.
void KnownJson(JsonWriter& json, const Session& session, const Declaration& declared) {
    json.BeginObject();
    json.Member("as", declared.as);
    json.Member("kind", declared.as.substr(0, declared.as.find(' ')));
    json.Member("type", OrNull(declared.type));
    if (declared.node != nullptr) json.PlaceMembers(FileOf(session, *declared.node), PlaceOf(*declared.node));
    json.Member("certainty", "certain");
    json.EndObject();
}

void DeclaredJson(JsonWriter& json, const Session& session, const Declarations& declarations) {
    json.Key("declared");
    json.BeginList();
    for (const PlaceAnswer& each : declarations.found)
        json.Object([&] {
            json.Member("as", RoleOf(each));
            DeclaredMembers(json, *declarations.code, each);
        });
    if (declarations.found.empty() && declarations.known != nullptr)
        for (const Declaration& each : *declarations.known) KnownJson(json, session, each);
    json.EndList();
}

void ObjectJson(JsonWriter& json, const Session& session, const Object& object) {
    json.BeginObject();
    json.Member("text", ShownText(*object.node));
    json.Member("type", object.type);
    json.PlaceMembers(FileOf(session, *object.node), PlaceOf(*object.node));
    json.EndObject();
}

void ReturnedJson(JsonWriter& json, const GoesBack& answer) {
    json.BeginObject();
    json.Member("byReturn", answer.isReturned);
    json.Member("argument", answer.argument);
    json.Member("arguments", answer.arguments);
    json.EndObject();
}

void AnswerMembers(JsonWriter& json, const Session& session, const NodeAt& at, const NodeAnswers& answers,
                   const Declarations& declarations) {
    json.Member("file", FileOf(session, *at.node));
    json.Member("nearest", at.isNearest);
    json.Key("node");
    NodeJson(json, *at.node);
    json.Member("type", answers.type);
    DeclaredJson(json, session, declarations);
    json.Member("class", answers.className);
    json.Member("method", answers.method);
    json.Key("object");
    answers.object ? ObjectJson(json, session, *answers.object) : json.Value(nullptr);
    json.Key("returned");
    answers.goesBack ? ReturnedJson(json, *answers.goesBack) : json.Value(nullptr);
}

std::vector<PlaceAnswer> FindDeclared(CodeSession& code, const FilePlace& asked) {
    Resolver& resolver = code.Ask();
    if (!resolver.Open(code.FileAt(asked.file))) return {};
    return resolver.Ask(resolver.Opened().OffsetOf(asked.place));
}

// For a file that has no tree, or nothing in it at the place.
void AnswerWithoutNode(const Request& request, const FilePlace& place, const Session& session,
                       const Declarations& declarations, Result& result) {
    if (request.format != Format::Json)
        return AtText(request, session, declarations, result.out).PrintDeclared(place);
    WriteAnswer(request, result.out, [&](JsonWriter& json) {
        json.Member("file", place.file);
        json.Member("nearest", false);
        json.Member("node", nullptr);
        json.Member("type", nullptr);
        DeclaredJson(json, session, declarations);
        for (const char* key : {"class", "method", "object", "returned"}) json.Member(key, nullptr);
    });
}

void Answer(const Request& request, const std::string& asked, Result& result) {
    const FilePlace place = *ParseFilePlace(asked);
    Session session(request, {place.file});
    CodeSession code(request, {place.file}, &session);
    code.TellFailures(result);
    TAPSyntaxe* root = session.Load(place.file, result);
    const std::optional<NodeAt> at = root != nullptr ? FindNodeAt(*root, place.place) : std::nullopt;
    Declarations declarations{&code, FindDeclared(code, place), nullptr};
    if (!at) {
        if (!declarations.found.empty())
            return AnswerWithoutNode(request, place, session, declarations, result);
        ++result.notFound;
        if (root != nullptr)
            AppendMessage(result.err, place.file, std::nullopt, "error",
                          root->GetSize() == 0
                              ? "holds no code"
                              : fmt::format("no code on line {} or behind", place.place.line),
                          request.colorErrors);
        return;
    }
    const NodeAnswers answers = AskAbout(session.Table(), *at->node);
    if (at->isNearest) declarations.found = FindDeclared(code, {place.file, at->place});
    declarations.known = &answers.declared;
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out,
                    [&](JsonWriter& json) { AnswerMembers(json, session, *at, answers, declarations); });
    } else {
        AtText(request, session, declarations, result.out).Print(*at, answers);
    }
}

// ---- Many places

// A question of a list, by its line there.
struct AskedPlace {
    FilePlace place;
    std::size_t line;
};

// `isRead` becomes false for a file that can't be read.
std::string AnswerLine(CodeSession& session, const FilePlace& asked, bool& isRead) {
    std::string line;
    JsonWriter json(line);
    json.BeginObject();
    json.PlaceMembers(asked.file, asked.place);
    Resolver& resolver = session.Ask();
    std::vector<PlaceAnswer> declared;
    if (resolver.Open(session.FileAt(asked.file))) {
        declared = resolver.Ask(resolver.Opened().OffsetOf(asked.place));
    } else {
        json.Member("error", "can't be read");
        isRead = false;
    }
    json.List("declared", declared,
              [&](const PlaceAnswer& each) { json.Object([&] { DeclaredMembers(json, session, each); }); });
    json.EndObject();
    return line + "\n";
}

// Answers file by file, since a file is read whole for the first place in it, and prints in the order asked.
void RunPlaces(Run& run) {
    std::string problem;
    const auto list = ReadFile(run.request.places, problem);
    if (!list) {
        run.Count("list");
        run.Fail("list", run.request.places, {std::nullopt, problem});
        return;
    }
    std::vector<AskedPlace> asked;
    std::vector<std::string> paths;
    std::string_view rest(list->buffer, static_cast<std::size_t>(list->size));
    for (std::size_t line = 0; !rest.empty();) {
        const std::size_t newline = std::min(rest.find('\n'), rest.size());
        const std::string text(rest.substr(0, newline));
        rest.remove_prefix(std::min(newline + 1, rest.size()));
        if (text.empty()) continue;
        run.Count("place");
        const auto place = ParseFilePlace(text);
        if (!place) {
            run.Fail(
                "place", run.request.places,
                {Place{static_cast<int>(line) + 1, 1}, fmt::format("'{}' is no FILE:LINE:COLUMN", text)});
            continue;
        }
        asked.push_back({*place, line++});
        paths.push_back(place->file);
    }
    CodeSession session(run.request, paths);
    std::vector<std::string> answers(asked.size());
    std::vector<AskedPlace> order = asked;
    std::stable_sort(order.begin(), order.end(),
                     [](const AskedPlace& a, const AskedPlace& b) { return a.place.file < b.place.file; });
    std::string lastUnread;
    for (const AskedPlace& each : order) {
        bool isRead = true;
        answers[each.line] = AnswerLine(session, each.place, isRead);
        if (isRead || each.place.file == lastUnread) continue;
        lastUnread = each.place.file;
        run.Fail("place", lastUnread, {std::nullopt, "can't be read"});
    }
    Result result;
    session.TellFailures(result);
    for (const std::string& answer : answers) result.out += answer;
    run.Show(result);
}

void RunAt(Run& run) {
    if (!run.request.places.empty()) return RunPlaces(run);
    run.Ask(run.request.paths.front(), Answer);
}

void CheckPlace(Request& request) {
    if (request.paths.empty() == request.places.empty()) throw WrongUsage("at takes one place, or --places");
    if (request.paths.empty()) return;
    const std::string& place = request.paths.front();
    if (!ParseFilePlace(place))
        throw WrongUsage(fmt::format("a place is FILE:LINE or FILE:LINE:COLUMN, not {}", place));
}

constexpr Option operands[] = {
    {"PLACE", nullptr, "FILE:LINE or FILE:LINE:COLUMN", Operand{TakePath}},
    {"--places", "LIST",
     "Answer with a JSON line for each place of LIST, one a line, or - for standard input",
     Text{[](Request& r, const std::string& list) { r.places = list; }}}};
constexpr std::span<const Option> options[] = {operands, workspaceOptions, searchOptions, outputOptions};

} // namespace

const Verb atVerb = {
    "at",
    "Tell what stands at a place, as an editor gives it: node, type, declaration, class, method, object",
    {"ostraka at -w harbour:coast harbour/Ships/Ships.m/src/Ship.cpp:66:12",
     "ostraka at -w harbour:coast harbour/Berths/Berths.m/src/Berth.cpp:40:23",
     "ostraka at -w harbour:coast --format json harbour/Berths/PublicInterfaces/IBerth.idl:16"},
    answerFormats,
    options,
    CheckPlace,
    RunAt,
};

} // namespace ostraka::tool
