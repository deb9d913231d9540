// The page is a file of its own, which is compiled in; its data goes where it has a mark. Stacks name their
// calls by places in one list, since most calls stand in many stacks.

#include <unordered_map>
#include <vector>

#include "formats/ReportJson.h"
#include "formats/Text.h"
#include "formats/TriagePage.h"
#include "verbs/Triage.h"

namespace ostraka::tool {

namespace {

constexpr std::string_view mark = "@DATA@";

// Inside of a page, where "<" could end the data.
std::string Inlined(const Json& json) {
    std::string text;
    for (const char c : Printed(json)) c == '<' ? text += "\\u003c" : text += c;
    return text;
}

class CallList {
public:
    std::size_t PlaceOf(Call& call) {
        const auto [known, isNew] = places.try_emplace(call.GetCall(), calls.size());
        if (isNew) calls.push_back(&call);
        return known->second;
    }

    const std::vector<Call*>& Calls() const { return calls; }

private:
    std::unordered_map<const char*, std::size_t> places; // equal calls have one text
    std::vector<Call*> calls;
};

Json CallJson(Call& call) {
    const reports::ShownParts parts = reports::PartsOf(call);
    return parts.path.empty() ? Json::array({parts.function})
                              : Json::array({parts.function, parts.path, parts.line});
}

template <class Elements, class MakeJson>
void PrintList(Console& console, const Elements& elements, MakeJson makeJson) {
    std::string_view separator = "[\n";
    for (const auto& element : elements) {
        console.Out(separator);
        console.Out(Inlined(makeJson(element)));
        separator = ",\n";
    }
    console.Out(elements.empty() ? "[]" : "]");
}

Json StackJson(const Triage& triage, const TriageItem& item, CallList& calls) {
    Stack& stack = *item.group->Calls();
    const std::vector<CallCharge> charges = reports::ChargesOf(stack, triage.TablesOf(*item.group));
    Json json = FactsOf(triage, item);
    json["place"] = PlaceOf(triage, *item.group, charges);
    json["calls"] = Json::array();
    for (int i = 0; i < stack.GetSize(); ++i) json["calls"].push_back(calls.PlaceOf(*stack.GetCall(i)));
    json["charges"] = charges;
    return json;
}

// What the page needs besides stacks and calls.
Json FrameJson(const Triage& triage) {
    Json json{{"summary", SummaryOf(triage)},
              {"leftOut", triage.leftOut},
              {"reports", ReportsJson(triage.reports)},
              {"by", Json::array()},
              {"charges", Json::array()}};
    std::vector<TotalKey> keys = triage.request.report.by;
    if (keys.empty()) keys = {TotalKey::Owner, TotalKey::Framework};
    for (const TotalKey key : keys) json["by"].push_back(NameOf(key));
    for (int charge = 0; charge <= static_cast<int>(CallCharge::Behind); ++charge)
        json["charges"].push_back(NameOf(static_cast<CallCharge>(charge)));
    return json;
}

} // namespace

void PrintTriageHtml(const Triage& triage, Console& console) {
    const std::size_t data = triagePage.find(mark);
    std::string frame = Inlined(FrameJson(triage));
    frame.back() = ',';
    console.Out(triagePage.substr(0, data));
    console.Out(frame);
    CallList calls;
    console.Out("\"stacks\":");
    PrintList(console, triage.items, [&](const TriageItem& item) { return StackJson(triage, item, calls); });
    console.Out(",\"calls\":");
    PrintList(console, calls.Calls(), [](Call* call) { return CallJson(*call); });
    console.Out("}");
    console.Out(triagePage.substr(data + mark.size()));
}

} // namespace ostraka::tool
