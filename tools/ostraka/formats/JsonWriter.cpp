#include "formats/JsonWriter.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace ostraka::tool {

namespace {

constexpr std::string_view schemaPrefix = "ostraka.";

void AppendString(std::string& out, std::string_view text) {
    const auto isPlain = [](char c) { return c >= 0x20 && c <= 0x7e && c != '"' && c != '\\'; };
    if (!std::all_of(text.begin(), text.end(), isPlain)) {
        out += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        return;
    }
    out += '"';
    out += text;
    out += '"';
}

} // namespace

void JsonWriter::Separate() {
    if (!isFirst && !behindKey) text += ',';
    if (breaks) text += '\n';
    isFirst = behindKey = breaks = false;
}

void JsonWriter::Begin(char bracket) {
    Separate();
    text += bracket;
    isFirst = true;
}

void JsonWriter::End(char bracket) {
    if (breaks) text += '\n';
    text += bracket;
    isFirst = breaks = false;
}

void JsonWriter::Raw(std::string_view value) {
    Separate();
    text += value;
}

void JsonWriter::Key(std::string_view key) {
    Separate();
    AppendString(text, key);
    text += ':';
    behindKey = true;
}

void JsonWriter::Value(std::string_view value) {
    Separate();
    AppendString(text, value);
}

void JsonWriter::PlaceMembers(std::string_view file, const Place& place) {
    Member("file", file);
    Member("line", place.line);
    Member("column", place.column);
}

void JsonWriter::ErrorMember(const Failure& failure) {
    Key("error");
    BeginObject();
    if (failure.place) {
        Member("line", failure.place->line);
        Member("column", failure.place->column);
    }
    Member("message", failure.cause);
    EndObject();
}

void JsonWriter::BeginAnswer(const Request& request) {
    BeginObject();
    Member("format", std::string(schemaPrefix) + request.verb);
    Member("version", 1);
}

std::optional<std::string_view> OrNull(const char* text) {
    return text == nullptr || *text == 0 ? std::nullopt : std::optional<std::string_view>(text);
}

std::optional<std::string_view> OrNull(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string_view>(text);
}

void WriteAnswer(const Request& request, std::string& text,
                 const std::function<void(JsonWriter& json)>& write) {
    JsonWriter json(text);
    json.BeginAnswer(request);
    write(json);
    json.EndObject();
    text += '\n';
}

void JsonAnswer::Open(std::string_view member) {
    if (OnLinesOnly()) return;
    json.BeginAnswer(request);
    json.Key(member);
    json.BeginList();
}

void JsonAnswer::Entry(std::string_view member, bool onLines, const WriteMembers& write) {
    if (OnLinesOnly()) {
        WriteAnswer(request, text, [&](JsonWriter& line) {
            line.Key(member);
            line.BeginList();
            write(line);
            line.EndList();
        });
    } else {
        if (onLines) json.BreakLine();
        write(json);
    }
    Pass();
}

void JsonAnswer::CloseList(bool onLines) {
    if (OnLinesOnly()) return;
    if (onLines) json.BreakLine();
    json.EndList();
}

void JsonAnswer::Close(const WriteMembers& writeRest) {
    if (OnLinesOnly() && !writeRest) return;
    if (OnLinesOnly()) json.BeginAnswer(request);
    if (writeRest && !OnLinesOnly()) json.BreakLine();
    if (writeRest) writeRest(json);
    json.EndObject();
    text += '\n';
    Pass();
}

void JsonAnswer::Pass() {
    sink(text);
    text.clear();
}

} // namespace ostraka::tool
