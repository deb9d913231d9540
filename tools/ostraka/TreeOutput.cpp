#include <algorithm>
#include <iterator>
#include <optional>

#include <fmt/format.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>

#include "SourceUnit.h"
#include "Text.h"
#include "TreeWalk.h"
#include "Verbs.h"

namespace ostraka::tool {

namespace {

constexpr std::size_t shownText = 60;
constexpr int columnDigits = 3;

constexpr const char* classNames[] = {"",
                                      "TAPSyntaxe",
                                      "TAPBloc",
                                      "TAPInstruction",
                                      "TAPExpression",
                                      "TAPIdentifiant",
                                      "TAPListOfArgs",
                                      "TAPSyntaxe",
                                      "TAPInstruction",
                                      "TAPSyntaxeNULL"};

struct PreciseName {
    int preciseType;
    const char* name;
};

constexpr PreciseName preciseNames[] = {
    {SINST_Plain, "plain"},     {SINST_Delete, "delete"}, {SINST_DeleteArray, "delete[]"},
    {SINST_Virtual, "virtual"}, {SINST_Static, "static"}, {SINST_Inline, "inline"},
};

// What a node is within its class; "" for the classes that have one sort of node only.
std::string KindOf(const TAPSyntaxe& node) {
    if (node.GetType() == STYPE_Expression) {
        const auto& kind = static_cast<const TAPExpression&>(node).kind;
        return std::string(kind, strnlen(kind, sizeof kind));
    }
    if (node.GetType() == STYPE_Declaration) return "declaration";
    if (node.GetType() != STYPE_Instruction) return node.GetType() == STYPE_File ? "file" : "";
    const int precise = static_cast<const TAPInstruction&>(node).GetPreciseType();
    const auto* row = std::find_if(std::begin(preciseNames), std::end(preciseNames),
                                   [=](const PreciseName& name) { return name.preciseType == precise; });
    return row == std::end(preciseNames) ? "" : row->name;
}

// The node's range of the stream. A name can lie behind the stream's end, in a text that breaks off.
std::string_view TextOf(const TAPSourceFile& file, const TAPSyntaxe& node) {
    const int begin = std::clamp(node.GetBegin(), 0, file.GetSize());
    const int length = std::min(node.GetSize(), file.GetSize() - begin);
    if (length == 0) return {};
    return {file.GetStream() + begin, static_cast<std::size_t>(length)};
}

// The place of the first character that shows.
Place PlaceOf(const TAPSourceFile& file, const TAPSyntaxe& node) {
    const std::size_t blanks = TextOf(file, node).find_first_not_of(' ');
    return PlaceAt(file, node.GetBegin() + (blanks == std::string_view::npos ? 0 : static_cast<int>(blanks)));
}

// Text of a node that spans blanks only at its ends looks odd in a list.
std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

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
        AppendMessage(result.err, input.path, PlaceOf(unit.File(), *node), "error",
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
        : request(asked), file(source), path(ShownPath(input.path)), out(text),
          placeWidth(path.size() +
                     static_cast<std::size_t>(DigitsOf(source.GetNbLine()) + columnDigits + 3)) {}

    void Print(const TreeWalk& walk) {
        const TAPSyntaxe& node = *walk.Node();
        PrintPlace(PlaceOf(file, node));
        out.append(2 * static_cast<std::size_t>(walk.Level()), ' ');
        fmt::format_to(std::back_inserter(out), "{} {}{}", walk.Path(),
                       Color(request.colorOutput, colorClass), classNames[node.GetType()]);
        PrintKind(node);
        out += Color(request.colorOutput, colorOff);
        const std::string_view shown = Trimmed(TextOf(file, node));
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

    void PrintKind(const TAPSyntaxe& node) {
        const char* format = node.GetType() == STYPE_Expression ? " \"{}\"" : " {}";
        const std::string kind = KindOf(node);
        if (!kind.empty() || node.GetType() == STYPE_Expression)
            fmt::format_to(std::back_inserter(out), fmt::runtime(format), kind);
    }

    const Request& request;
    const TAPSourceFile& file;
    std::string_view path;
    std::string& out;
    std::size_t placeWidth;
};

void PrintNodeJson(const Request& request, const TAPSourceFile& file, const TreeWalk& walk,
                   std::string& out) {
    const TAPSyntaxe& node = *walk.Node();
    const Place place = PlaceOf(file, node);
    fmt::format_to(std::back_inserter(out), "{{\"node\":\"{}\",\"class\":\"{}\",\"kind\":", walk.Path(),
                   classNames[node.GetType()]);
    AppendJson(out, KindOf(node));
    fmt::format_to(std::back_inserter(out),
                   ",\"line\":{},\"column\":{},\"begin\":{},\"size\":{},\"children\":{},\"text\":",
                   place.line, place.column, node.GetBegin(), node.GetSize(), node.ChildCount());
    AppendJson(out, Shortened(TextOf(file, node), TextLimit(request)));
    out += '}';
}

} // namespace

void PrintTreeText(const Request& request, const Input& input, SourceUnit& unit, Result& result) {
    TAPSyntaxe* top = FindTop(request, input, unit, result);
    if (top == nullptr) return;
    TreeLines lines(request, input, unit.File(), result.out);
    for (TreeWalk walk(*top, PathText(request.node), request.depth); walk.Node() != nullptr; walk.Next())
        lines.Print(walk);
}

void PrintTreeJson(const Request& request, const Input& input, SourceUnit& unit, Result& result) {
    fmt::format_to(std::back_inserter(result.out), ",\"complete\":{},\"nodes\":[", !unit.GetFailure());
    TAPSyntaxe* top = FindTop(request, input, unit, result);
    const bool lines = request.format == Format::Json;
    const char* separator = lines ? "\n" : "";
    if (top != nullptr) {
        for (TreeWalk walk(*top, PathText(request.node), request.depth); walk.Node() != nullptr;
             walk.Next()) {
            result.out += separator;
            PrintNodeJson(request, unit.File(), walk, result.out);
            separator = lines ? ",\n" : ",";
        }
    }
    result.out += ']';
}

} // namespace ostraka::tool
