#pragma once

// JSON from the front to the back: what is written stands in the text at once, and members stand in the order
// in which they are written. Whoever calls owes sound nesting.
//
//     json.BeginObject();
//     json.Member("name", "Ship");
//     json.Key("lines");
//     json.BeginList();
//     json.Value(12);
//     json.EndList();
//     json.EndObject();          {"name":"Ship","lines":[12]}

#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include <answers/facts/Place.h>

#include "cli/Request.h"

namespace ostraka::tool {

class JsonWriter {
public:
    // Adds to the text, which has to outlive the writer.
    explicit JsonWriter(std::string& target) : text(target) {}

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void BeginList() { Begin('['); }
    void EndList() { End(']'); }

    // The next value or member begins on a line of its own.
    void BreakLine() { breaks = true; }

    void Key(std::string_view key);

    // Bytes that aren't UTF-8 become the replacement character.
    void Value(std::string_view value);
    void Value(const std::string& value) { Value(std::string_view(value)); }
    void Value(const char* value) { Value(std::string_view(value)); }
    void Value(bool value) { Raw(value ? "true" : "false"); }
    void Value(std::nullptr_t) { Raw("null"); }
    void Value(std::integral auto value) { Raw(fmt::format_int(value).c_str()); }
    template <class Inner>
    void Value(const std::optional<Inner>& value) {
        if (value)
            Value(*value);
        else
            Value(nullptr);
    }

    template <class Any>
    void Member(std::string_view key, const Any& value) {
        Key(key);
        Value(value);
    }

    // A value, or a member, that is an object with the members that `write` writes.
    template <class Write>
    void Object(Write write) {
        BeginObject();
        write();
        EndObject();
    }
    template <class Write>
    void Object(std::string_view key, Write write) {
        Key(key);
        Object(write);
    }

    // A member that is a list of the values that `each` makes of the elements.
    template <class Elements, class Each>
    void List(std::string_view key, const Elements& elements, Each each) {
        Key(key);
        BeginList();
        for (const auto& element : elements) each(element);
        EndList();
    }
    template <class Elements>
    void List(std::string_view key, const Elements& elements) {
        List(key, elements, [this](const auto& element) { this->Value(element); });
    }

    // "file", "line" and "column".
    void PlaceMembers(std::string_view file, const Place& place);

    // "error": what went wrong with a file, and where if that is known.
    void ErrorMember(const Failure& failure);

    // The members that every answer begins with: its format and version.
    void BeginAnswer(const Request& request);

private:
    void Begin(char bracket);
    void End(char bracket);
    void Raw(std::string_view value);
    void Separate();

    std::string& text;
    bool isFirst = true; // nothing stands before it in the object or list
    bool behindKey = false;
    bool breaks = false;
};

// A text, or null for a null pointer or an empty text.
std::optional<std::string_view> OrNull(const char* text);
std::optional<std::string_view> OrNull(const std::string& text);

// Adds an answer as one object on a line; `write` writes the members behind format and version.
void WriteAnswer(const Request& request, std::string& text,
                 const std::function<void(JsonWriter& json)>& write);

// An answer that consists of a list and perhaps of further members: one object, or with `jsonl` an object on
// a line for each entry, and one for the rest. The text goes on to the sink entry by entry.
class JsonAnswer {
public:
    using Sink = std::function<void(std::string_view piece)>;
    using WriteMembers = std::function<void(JsonWriter& json)>;

    JsonAnswer(const Request& asked, Sink output) : request(asked), sink(std::move(output)) {}

    // `write` writes one element as one value. The entries of one object stand on lines of their own if
    // wanted.
    template <class Elements, class Write>
    void List(std::string_view member, const Elements& elements, bool onLines, Write write) {
        Open(member);
        for (const auto& element : elements)
            Entry(member, onLines, [&](JsonWriter& entry) { write(entry, element); });
        CloseList(onLines);
    }

    // Ends the answer, with the members behind the list on a line of their own; null if there are none.
    void Close(const WriteMembers& writeRest = nullptr);

private:
    bool OnLinesOnly() const { return request.format == Format::JsonLines; }
    void Open(std::string_view member);
    void Entry(std::string_view member, bool onLines, const WriteMembers& write);
    void CloseList(bool onLines);
    void Pass();

    const Request& request;
    Sink sink;
    std::string text;
    JsonWriter json{text};
};

} // namespace ostraka::tool
