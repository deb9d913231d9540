#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>

#include <fmt/format.h>

#include <answers/resolve/NodeText.h>

#include "cli/Options.h"
#include "formats/Text.h"
#include "formats/TreeWalk.h"
#include "verbs/SourceRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

constexpr std::size_t shownText = 60;
constexpr int columnDigits = 3;

std::size_t TextLimit(const Request& request) {
    return request.fullText ? std::string::npos : shownText;
}

std::string PathText(const std::vector<int>& path) {
    return path.empty() ? "0" : fmt::format("{}", fmt::join(path, "."));
}

// The node to show; null, and a message, when the tree hasn't got it.
TAPSyntaxe* FindTop(const Request& request, const Input& input, SourceUnit& unit, Result& result) {
    TAPSyntaxe* node = &unit.Root();
    for (std::size_t i = 0; i < request.node.size(); ++i) {
        if (request.node[i] >= 1 && request.node[i] <= node->ChildCount()) {
            node = node->Child(request.node[i]);
            continue;
        }
        const std::vector<int> reached(request.node.begin(),
                                       request.node.begin() + static_cast<std::ptrdiff_t>(i));
        AppendMessage(result.err, input.path, PlaceOf(*node), "error",
                      fmt::format("no node {} (children of node {}: {})", PathText(request.node),
                                  PathText(reached), node->ChildCount()),
                      request.colorErrors);
        ++result.notFound;
        return nullptr;
    }
    return node;
}

int DigitsOf(int number) {
    return static_cast<int>(fmt::formatted_size("{}", number));
}

// Writes the lines of one tree. Places are filled up with blanks so that the steps of the tree show.
class TreeLines {
public:
    TreeLines(const Request& asked, const Input& input, const TAPSourceFile& source, std::string& text)
        : request(asked), path(ShownPath(input.path)), out(text),
          placeWidth(path.size() +
                     static_cast<std::size_t>(DigitsOf(source.GetNbLine()) + columnDigits + 3)) {}

    void Print(const TreeWalk& walk) {
        const TAPSyntaxe& node = *walk.Node();
        PrintPlace(PlaceOf(node));
        out.append(2 * static_cast<std::size_t>(walk.Level()), ' ');
        fmt::format_to(std::back_inserter(out), "{} {}{}", walk.Path(),
                       Color(request.colorOutput, colorClass), DescriptionOf(node));
        out += Color(request.colorOutput, colorOff);
        const std::string_view shown = TrimmedTextOf(node);
        if (!shown.empty()) out += "  ";
        AppendOneLine(out, Shortened(shown, TextLimit(request)));
        out += '\n';
    }

private:
    void PrintPlace(const Place& place) {
        out += Color(request.colorOutput, colorPlace);
        const std::size_t begin = out.size();
        fmt::format_to(std::back_inserter(out), "{}:{}:{}:", path, place.line, place.column);
        const std::size_t width = out.size() - begin;
        out += Color(request.colorOutput, colorOff);
        out.append(width < placeWidth ? placeWidth - width + 1 : 1, ' ');
    }

    const Request& request;
    std::string_view path;
    std::string& out;
    std::size_t placeWidth;
};

void NodeJson(JsonWriter& json, const Request& request, const TreeWalk& walk) {
    const TAPSyntaxe& node = *walk.Node();
    const Place place = PlaceOf(node);
    json.BeginObject();
    json.Member("node", walk.Path());
    json.Member("class", ClassNameOf(node));
    json.Member("kind", KindOf(node));
    json.Member("line", place.line);
    json.Member("column", place.column);
    json.Member("begin", node.GetBegin());
    json.Member("size", node.GetSize());
    json.Member("children", node.ChildCount());
    json.Member("text", Shortened(TextOf(node), TextLimit(request)));
    json.EndObject();
}

void PrintText(const Request& request, const FileOfRun& file, SourceUnit& unit, Result& result) {
    TAPSyntaxe* top = FindTop(request, file.input, unit, result);
    if (top == nullptr) return;
    TreeLines lines(request, file.input, unit.File(), result.out);
    for (TreeWalk walk(*top, PathText(request.node), request.depth); walk.Node() != nullptr; walk.Next())
        lines.Print(walk);
}

void PrintJson(const Request& request, const FileOfRun& file, SourceUnit& unit, JsonWriter& json,
               Result& result) {
    json.Member("complete", !unit.GetFailure());
    json.Key("nodes");
    json.BeginList();
    if (TAPSyntaxe* top = FindTop(request, file.input, unit, result); top != nullptr) {
        for (TreeWalk walk(*top, PathText(request.node), request.depth); walk.Node() != nullptr;
             walk.Next()) {
            if (request.format == Format::Json) json.BreakLine();
            NodeJson(json, request, walk);
        }
    }
    json.EndList();
}

constexpr SourcePrinter printer = {true, PrintText, PrintJson};

void RunTree(Run& run) {
    RunOnSources(run, [](const Request& request, const FileOfRun& file, Result& result) {
        AnswerSource(request, file, printer, result);
    });
}

// "1.4.2"; the root is "0".
bool IsNodePath(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos &&
           text.find("..") == std::string::npos && text.front() != '.' && text.back() != '.';
}

void TakeNode(Request& request, const std::string& text) {
    if (!IsNodePath(text)) throw WrongUsage("a node is a path of positions such as 1.4.2, not " + text);
    request.node.clear();
    if (text == "0") return;
    for (std::size_t at = 0; at < text.size(); at = std::min(text.find('.', at), text.size() - 1) + 1)
        request.node.push_back(
            static_cast<int>(std::min(std::strtol(text.c_str() + at, nullptr, 10), 1L << 30)));
}

constexpr Option ownOptions[] = {
    {"--depth", "N", "Print N levels below the first node",
     Number{0, 1000, [](Request& r, int levels) { r.depth = levels; }}},
    {"--node", "PATH", "Print this node and what is below, as in 1.4.2", Text{TakeNode}},
    {"--full", nullptr, "Print the texts of the nodes whole", Flag{[](Request& r) { r.fullText = true; }}}};
constexpr std::span<const Option> options[] = {fileOptions, outputOptions, ownOptions};
constexpr Format formats[] = {Format::Text, Format::Json, Format::JsonLines, Format::Dump};

} // namespace

const Verb treeVerb = {
    "tree",
    "Print the syntax tree of files, one node a line",
    {"ostraka tree --depth 1 harbour/Berths/Berths.m/src/Berth.cpp",
     "ostraka tree --node 12.3 harbour/Berths/Berths.m/src/Berth.cpp",
     "ostraka tree --format jsonl --jobs 2 harbour"},
    formats,
    options,
    CheckFiles,
    RunTree,
};

} // namespace ostraka::tool
