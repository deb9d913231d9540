#pragma once

// What the JSON of the verbs over reports shares. An answer is one object, or with `jsonl` a line for each
// entry of its list and a last one for the rest; each line is such an object too.

#include <string>
#include <vector>

#include <answers/facts/Place.h>
#include <answers/reports/ReportModel.h>
#include <nlohmann/json.hpp>

#include "cli/Console.h"
#include "cli/Request.h"

namespace ostraka::tool {

using Json = nlohmann::ordered_json;

// Bytes that aren't UTF-8 become the replacement character.
std::string Printed(const Json& json);

// The calls of a stack: function, and source where there is one.
Json CallsJson(Stack& stack);

// A mask with its type, and which calls of a stack each of its elements took, counted from 1 to the last.
Json MaskJson(const StackMask& mask, Stack& stack);

// How one report was read.
struct ReportState {
    std::string path;
    std::int64_t records = 0;
    std::optional<Failure> failure;
};

Json ReportsJson(const std::vector<ReportState>& reports);

class JsonPrinter {
public:
    JsonPrinter(const Request& request, Console& console);

    // The member that has an entry for each of the elements.
    template <class Elements, class MakeEntry>
    void List(std::string_view member, const Elements& elements, MakeEntry makeEntry) {
        Open(member);
        for (const auto& element : elements) Entry(makeEntry(element));
        if (!lines) console.Out("\n]");
    }
    // The remaining members.
    void Close(const Json& members);

private:
    void Open(std::string_view member);
    void Entry(const Json& entry);

    Console& console;
    bool lines;
    std::string head; // of an object, up to its data
    std::string name; // of the list
    bool first = true;
};

} // namespace ostraka::tool
