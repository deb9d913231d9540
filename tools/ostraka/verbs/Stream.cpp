#include <iterator>

#include <fmt/format.h>

#include "cli/Options.h"
#include "formats/PlaceRuns.h"
#include "formats/Text.h"
#include "verbs/SourceRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

std::string_view StreamOf(const TAPSourceFile& file) {
    return {file.GetSize() > 0 ? file.GetStream() : "", static_cast<std::size_t>(file.GetSize())};
}

void PrintHead(const FileOfRun& file, std::string& out) {
    if (file.count > 1) fmt::format_to(std::back_inserter(out), "==> {} <==\n", ShownPath(file.input.path));
}

void PrintWhole(const TAPSourceFile& file, std::string& out) {
    const std::string_view stream = StreamOf(file);
    out += stream;
    if (!stream.empty() && stream.back() != '\n') out += '\n';
}

// A piece of the stream that comes from one line, without the blanks around it.
void PrintPiece(const Request& request, const Input& input, const TAPSourceFile& file, int begin, int past,
                std::string& out) {
    const std::string_view stream = StreamOf(file);
    while (begin < past && stream[static_cast<std::size_t>(begin)] == ' ') ++begin;
    while (begin < past && stream[static_cast<std::size_t>(past) - 1] == ' ') --past;
    if (begin == past) return;
    const Place place = PlaceAt(file, begin);
    fmt::format_to(std::back_inserter(out), "{}{}:{}:{}:{} ", Color(request.colorOutput, colorPlace),
                   ShownPath(input.path), place.line, place.column, Color(request.colorOutput, colorOff));
    AppendOneLine(out,
                  stream.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(past - begin)));
    out += '\n';
}

void PrintMap(const Request& request, const Input& input, const TAPSourceFile& file, std::string& out) {
    int begin = 0;
    for (int pos = 1; pos <= file.GetSize(); ++pos) {
        if (pos < file.GetSize() && file.GetPoint(pos).GetLine() == file.GetPoint(begin).GetLine()) continue;
        PrintPiece(request, input, file, begin, pos, out);
        begin = pos;
    }
}

void PrintIncludes(const TAPSourceFile& file, std::string& out) {
    for (int i = 0; i < file.includes.size; ++i) {
        out += "include ";
        AppendOneLine(out, file.includes.keys[i]);
        out += '\n';
    }
}

void PrintMacros(const TAIndex& macros, std::string& out) {
    for (int i = 0; i < macros.size; ++i) {
        out += "macro ";
        AppendOneLine(out, macros.keys[i]);
        out += ' ';
        AppendOneLine(out, static_cast<const char*>(macros.values[i]));
        out += '\n';
    }
}

void PlacesJson(JsonWriter& json, const TAPSourceFile& file) {
    json.Key("places");
    json.BeginList();
    ForEachRun(
        file, [](const TAPSyntaxePoint& point) { return std::max(1, point.GetCol() - 1); },
        [&](int pos, int line, int column) {
            json.BeginList();
            for (const int number : {pos, line, column}) json.Value(number);
            json.EndList();
        });
    json.EndList();
}

void IncludesJson(JsonWriter& json, const TAPSourceFile& file) {
    json.Key("includes");
    json.BeginList();
    for (int i = 0; i < file.includes.size; ++i) json.Value(file.includes.keys[i]);
    json.EndList();
}

void MacrosJson(JsonWriter& json, const TAIndex& macros) {
    json.Key("macros");
    json.BeginList();
    for (int i = 0; i < macros.size; ++i) {
        json.BeginObject();
        json.Member("name", macros.keys[i]);
        json.Member("value", static_cast<const char*>(macros.values[i]));
        json.EndObject();
    }
    json.EndList();
}

void PrintText(const Request& request, const FileOfRun& file, SourceUnit& unit, Result& result) {
    const bool lists = request.includes || request.macros;
    if (lists || !request.map) PrintHead(file, result.out);
    if (request.map) PrintMap(request, file.input, unit.File(), result.out);
    if (request.includes) PrintIncludes(unit.File(), result.out);
    if (request.macros) PrintMacros(unit.Macros(), result.out);
    if (!lists && !request.map) PrintWhole(unit.File(), result.out);
}

void PrintJson(const Request&, const FileOfRun&, SourceUnit& unit, JsonWriter& json, Result&) {
    const TAPSourceFile& file = unit.File();
    json.Member("size", file.GetSize());
    json.Member("lines", file.GetNbLine());
    json.Member("codeLines", file.GetNbCodeLine());
    json.Member("text", StreamOf(file));
    PlacesJson(json, file);
    IncludesJson(json, file);
    MacrosJson(json, unit.Macros());
}

constexpr SourcePrinter printer = {false, PrintText, PrintJson};

void RunStream(Run& run) {
    RunOnSources(run, [](const Request& request, const FileOfRun& file, Result& result) {
        AnswerSource(request, file, printer, result);
    });
}

constexpr Option ownOptions[] = {{"--map", nullptr,
                                  "Print the text in pieces, each with the place it comes from",
                                  Flag{[](Request& r) { r.map = true; }}},
                                 {"--includes", nullptr, "Print the names of the included files",
                                  Flag{[](Request& r) { r.includes = true; }}},
                                 {"--macros", nullptr, "Print the macros with the first word of their text",
                                  Flag{[](Request& r) { r.macros = true; }}}};
constexpr std::span<const Option> options[] = {fileOptions, outputOptions, ownOptions};

} // namespace

const Verb streamVerb = {
    "stream",
    "Print the normalised text of files: without comments, directives and needless blanks",
    {"ostraka stream harbour/Berths/PublicInterfaces/Berth.h",
     "ostraka stream --map --quiet harbour/Berths harbour/Ships",
     "ostraka stream --includes --macros harbour/Berths/PublicInterfaces/Berth.h"},
    listFormats,
    options,
    CheckFiles,
    RunStream,
};

} // namespace ostraka::tool
