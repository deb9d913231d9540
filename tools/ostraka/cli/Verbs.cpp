#include "cli/Verbs.h"

#include <iterator>

#include <fmt/format.h>

#include "formats/Text.h"
#include <answers/facts/SourceUnit.h>

namespace ostraka::tool {

namespace {

bool IsJson(const Request& request) {
    return request.format == Format::Json || request.format == Format::JsonLines;
}

std::string OpenDocument(const Request& request) {
    return fmt::format("{{\"format\":\"ostraka.{}\",\"version\":1,\"files\":[",
                       request.verb == Verb::Stream ? "stream" : "tree");
}

void PrintText(const Request& request, const Input& input, SourceUnit& unit, Result& result) {
    if (request.verb == Verb::Stream) return PrintStreamText(request, input, unit, result);
    PrintTreeText(request, input, unit, result);
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

void PrintJson(const Request& request, const Input& input, std::size_t index, bool loaded, SourceUnit& unit,
               Result& result) {
    if (request.format == Format::JsonLines) result.out += OpenDocument(request);
    if (request.format == Format::Json && index > 0) result.out += ",\n";
    result.out += "{\"file\":";
    AppendJson(result.out, ShownPath(input.path));
    if (unit.GetFailure()) PrintFailureJson(*unit.GetFailure(), result.out);
    if (loaded && request.verb == Verb::Stream) PrintStreamJson(unit, result);
    if (loaded && request.verb == Verb::Tree) PrintTreeJson(request, input, unit, result);
    result.out += request.format == Format::JsonLines ? "}]}\n" : "}";
}

bool HasOneDocument(const Request& request) {
    return request.format == Format::Json && !IsQuestion(request);
}

void RunOnFile(const Request& request, const Input& input, std::size_t index, Result& result) {
    SourceUnit unit(input.path, input.problem);
    const bool loaded = unit.Load();
    if (loaded && request.verb == Verb::Tree) unit.Build();
    if (const auto& warning = unit.GetWarning(); warning && !request.quiet)
        AppendMessage(result.err, input.path, warning->place, "warning", warning->cause, request.colorErrors);
    if (const auto& failure = unit.GetFailure()) {
        ++result.failed;
        AppendMessage(result.err, input.path, failure->place, "error", failure->cause, request.colorErrors);
    }
    if (request.format == Format::Dump) return PrintDump(input, unit, result);
    if (IsJson(request)) return PrintJson(request, input, index, loaded, unit, result);
    if (loaded) PrintText(request, input, unit, result);
}

} // namespace

bool IsQuestion(const Request& request) {
    return request.verb != Verb::Stream && request.verb != Verb::Tree;
}

std::string Prologue(const Request& request) {
    return HasOneDocument(request) ? OpenDocument(request) + "\n" : std::string();
}

std::string Epilogue(const Request& request) {
    return HasOneDocument(request) ? "\n]}\n" : std::string();
}

void RunVerb(const Request& request, const Input& input, std::size_t index, Result& result) {
    switch (request.verb) {
    case Verb::Stream:
    case Verb::Tree: return RunOnFile(request, input, index, result);
    case Verb::At: return AnswerAt(request, input.path, result);
    case Verb::Header: return AnswerHeader(request, input.path, result);
    case Verb::Includes: return AnswerIncludes(request, input.path, result);
    default: break; // they have one answer for all files
    }
}

} // namespace ostraka::tool
