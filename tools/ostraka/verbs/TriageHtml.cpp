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

// JSON inside of a page, where "<" could end the data.
class InlinedJson {
public:
    explicit InlinedJson(Console& theConsole) : console(theConsole) {}

    JsonWriter& Writer() { return json; }

    // What was written so far goes out.
    void Pass() {
        std::string inlined;
        for (const char c : text) c == '<' ? inlined += "\\u003c" : inlined += c;
        console.Out(inlined);
        text.clear();
    }

private:
    Console& console;
    std::string text;
    JsonWriter json{text};
};

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

void CallJson(JsonWriter& json, const Call& call) {
    const reports::ShownParts parts = reports::PartsOf(call);
    json.BeginList();
    json.Value(parts.function);
    if (!parts.path.empty()) {
        json.Value(parts.path);
        json.Value(parts.line);
    }
    json.EndList();
}

// A member whose entries stand on lines of their own.
template <class Elements, class Write>
void PrintList(InlinedJson& page, std::string_view key, const Elements& elements, Write write) {
    JsonWriter& json = page.Writer();
    json.Key(key);
    json.BeginList();
    for (const auto& element : elements) {
        json.BreakLine();
        write(json, element);
        page.Pass();
    }
    json.EndList();
}

void StackMembers(JsonWriter& json, const Stack& stack, const std::vector<CallCharge>& charges,
                  CallList& calls) {
    json.Key("calls");
    json.BeginList();
    for (int i = 0; i < stack.GetSize(); ++i) json.Value(calls.PlaceOf(*stack.GetCall(i)));
    json.EndList();
    json.List("charges", charges, [&](CallCharge charge) { json.Value(static_cast<int>(charge)); });
}

void StackJson(JsonWriter& json, const Triage& triage, const TriageItem& item, CallList& calls) {
    const reports::StackGroup& group = *item.group;
    const auto chargesOf = [&](const Stack& stack) {
        return reports::ChargesOf(stack, triage.TablesOf(group));
    };
    const std::vector<CallCharge> charges = chargesOf(*group.Calls());
    json.BeginObject();
    FactMembers(json, triage, item);
    json.Member("place", PlaceOf(triage, group, charges));
    StackMembers(json, *group.Calls(), charges, calls);
    if (!group.others.empty())
        json.List("others", group.others, [&](const reports::TitledStack& other) {
            json.BeginObject();
            OtherMembers(json, other);
            StackMembers(json, *other.Calls(), chargesOf(*other.Calls()), calls);
            json.EndObject();
        });
    json.EndObject();
}

// What the page needs besides stacks and calls.
void FrameMembers(JsonWriter& json, const Triage& triage) {
    json.Member("summary", SummaryOf(triage));
    json.Member("leftOut", triage.leftOut);
    ReportsMember(json, triage.reports);
    std::vector<TotalKey> keys = triage.request.report.by;
    if (keys.empty()) keys = {TotalKey::Owner, TotalKey::Framework};
    json.List("by", keys, [&](TotalKey key) { json.Value(NameOf(key)); });
    json.Key("charges");
    json.BeginList();
    for (int charge = 0; charge <= static_cast<int>(CallCharge::Behind); ++charge)
        json.Value(NameOf(static_cast<CallCharge>(charge)));
    json.EndList();
}

} // namespace

void PrintTriageHtml(const Triage& triage, Console& console) {
    const std::size_t data = triagePage.find(mark);
    console.Out(triagePage.substr(0, data));
    InlinedJson page(console);
    CallList calls;
    page.Writer().Object([&] {
        FrameMembers(page.Writer(), triage);
        PrintList(page, "stacks", triage.items,
                  [&](JsonWriter& json, const TriageItem& item) { StackJson(json, triage, item, calls); });
        PrintList(page, "calls", calls.Calls(),
                  [](JsonWriter& json, const Call* call) { CallJson(json, *call); });
    });
    page.Pass();
    console.Out(triagePage.substr(data + mark.size()));
}

} // namespace ostraka::tool
