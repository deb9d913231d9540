#include "verbs/SourceRun.h"

#include <iterator>

#include <fmt/format.h>

#include "cli/Inputs.h"
#include "formats/Text.h"

namespace ostraka::tool {

namespace {

bool IsJson(const Request& request) {
    return request.format == Format::Json || request.format == Format::JsonLines;
}

std::string OpenDocument(const Request& request) {
    return fmt::format("{{\"format\":\"ostraka.{}\",\"version\":1,\"files\":[", request.verb);
}

void PrintFailureJson(const Failure& failure, std::string& out) {
    out += ",\"error\":{";
    if (failure.place)
        fmt::format_to(std::back_inserter(out), "\"line\":{},\"column\":{},", failure.place->line,
                       failure.place->column);
    out += "\"message\":";
    AppendJson(out, failure.cause);
    out += '}';
}

void PrintJson(const Request& request, const FileOfRun& file, bool loaded, const SourcePrinter& printer,
               SourceUnit& unit, Result& result) {
    if (request.format == Format::JsonLines) result.out += OpenDocument(request);
    if (request.format == Format::Json && file.index > 0) result.out += ",\n";
    result.out += "{\"file\":";
    AppendJson(result.out, ShownPath(file.input.path));
    if (unit.GetFailure()) PrintFailureJson(*unit.GetFailure(), result.out);
    if (loaded) printer.json(request, file, unit, result);
    result.out += request.format == Format::JsonLines ? "}]}\n" : "}";
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
    if (IsJson(request)) return PrintJson(request, file, loaded, printer, unit, result);
    if (loaded) printer.text(request, file, unit, result);
}

void RunOnSources(Run& run, AnswerFile answer) {
    const bool isOneDocument = run.request.format == Format::Json;
    if (isOneDocument) run.console.Out(OpenDocument(run.request) + "\n");
    run.ForEach(CollectInputs(run.request), answer);
    if (isOneDocument) run.console.Out("\n]}\n");
}

} // namespace ostraka::tool
