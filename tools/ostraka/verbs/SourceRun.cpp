#include "verbs/SourceRun.h"

#include "cli/Inputs.h"
#include "formats/Text.h"

namespace ostraka::tool {

namespace {

bool IsJson(const Request& request) {
    return request.format == Format::Json || request.format == Format::JsonLines;
}

// The object of a file; one that isn't loaded has no more than its failure.
void FileJson(JsonWriter& json, const Request& request, const FileOfRun& file, const SourcePrinter& printer,
              SourceUnit& unit, bool loaded, Result& result) {
    json.BeginObject();
    json.Member("file", ShownPath(file.input.path));
    if (unit.GetFailure()) json.ErrorMember(*unit.GetFailure());
    if (loaded) printer.json(request, file, unit, json, result);
    json.EndObject();
}

// One of the objects in the list of the document, or a document on a line.
void PrintJson(const Request& request, const FileOfRun& file, const SourcePrinter& printer, SourceUnit& unit,
               bool loaded, Result& result) {
    if (request.format == Format::JsonLines)
        return WriteAnswer(request, result.out, [&](JsonWriter& json) {
            json.Key("files");
            json.BeginList();
            FileJson(json, request, file, printer, unit, loaded, result);
            json.EndList();
        });
    if (file.index > 0) result.out += ",\n";
    JsonWriter json(result.out);
    FileJson(json, request, file, printer, unit, loaded, result);
}

// The one document of all files, which come as texts in their order.
void PrintDocument(Run& run, AnswerFile answer) {
    std::string text;
    JsonWriter json(text);
    json.BeginAnswer(run.request);
    json.Key("files");
    json.BeginList();
    run.console.Out(text + '\n');
    run.ForEach(CollectInputs(run.request), answer);
    text.clear();
    json.BreakLine();
    json.EndList();
    json.EndObject();
    run.console.Out(text + '\n');
}

} // namespace

void AnswerSource(const Request& request, const FileOfRun& file, const SourcePrinter& printer,
                  Result& result) {
    SourceUnit unit(file.input.path, file.input.problem);
    const bool loaded = unit.Load();
    if (loaded && printer.needsTree) unit.Build();
    if (const auto& warning = unit.GetWarning())
        result.Warn(request, file.input.path, warning->place, warning->cause);
    if (const auto& failure = unit.GetFailure()) result.Fail(request, file.input.path, *failure);
    if (request.format == Format::Dump) return PrintDump(file.input, unit, result);
    if (IsJson(request)) return PrintJson(request, file, printer, unit, loaded, result);
    if (loaded) printer.text(request, file, unit, result);
}

void RunOnSources(Run& run, AnswerFile answer) {
    if (run.request.format == Format::Json) return PrintDocument(run, answer);
    run.ForEach(CollectInputs(run.request), answer);
}

} // namespace ostraka::tool
