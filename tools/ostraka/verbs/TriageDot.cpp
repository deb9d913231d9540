// Who calls whom on the way to the errors and leaks: all stacks laid over each other. A node is a function,
// or with `--by` an owner, a framework and so on; it counts each stack that goes through it once, and besides
// what is charged to it. Calls that `--by` has no name for are passed over.

#include <algorithm>
#include <iterator>
#include <map>
#include <numeric>
#include <set>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "formats/Dot.h"
#include "formats/Text.h"
#include "verbs/Triage.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;

struct Weight {
    std::int64_t bytes = 0;
    std::int64_t stacks = 0;

    void Add(const StackGroup& group) {
        bytes = reports::Sum(bytes, group.bytes);
        ++stacks;
    }
};

struct Node {
    std::string name;
    Weight all;
    Weight charged;
};

struct Picture {
    std::vector<Node> nodes;
    std::map<std::string, std::size_t> byName;
    std::map<std::pair<std::size_t, std::size_t>, Weight> edges; // from the caller to the called
    Weight all;

    std::size_t NodeOf(const std::string& name) {
        const auto [known, isNew] = byName.try_emplace(name, nodes.size());
        if (isNew) nodes.push_back({name, {}, {}});
        return known->second;
    }
};

std::string TextOf(const Weight& weight) {
    const std::string stacks = Counted(weight.stacks, "stack");
    return weight.bytes > 0 ? Counted(weight.bytes, "byte") + ", " + stacks : stacks;
}

// The lines of a node; empty for a call that is passed over.
std::string NameOf(const StackGroup& group, Call& call, const std::vector<TotalKey>& by) {
    const char* framework = call.GetFwResponsible();
    if (by.empty())
        return reports::PartsOf(call).function + (framework ? fmt::format("\n{}", framework) : "");
    std::string name;
    for (const TotalKey key : by) {
        if (framework == nullptr) break;
        const char* text = KeyOf(group, call, key);
        if (!name.empty()) name += '\n';
        name += text ? text : nobody[static_cast<int>(key)];
    }
    return name;
}

void AddStack(Picture& picture, const StackGroup& group, Stack& stack, const std::vector<CallCharge>& charges,
              const std::vector<TotalKey>& by) {
    picture.all.Add(group);
    std::vector<std::size_t> road; // from the innermost call on
    bool charged = false;
    for (std::size_t i = 0; i < charges.size(); ++i) {
        Call& call = *stack.GetCall(static_cast<int>(i));
        const std::string name = NameOf(group, call, by);
        if (name.empty()) continue;
        road.push_back(picture.NodeOf(name));
        if (charges[i] != CallCharge::Charged) continue;
        picture.nodes[road.back()].charged.Add(group);
        charged = true;
    }
    std::set<std::pair<std::size_t, std::size_t>> steps;
    for (std::size_t i = 1; i < road.size(); ++i)
        if (road[i] != road[i - 1]) steps.emplace(road[i], road[i - 1]);
    for (const auto& step : steps) picture.edges[step].Add(group);
    // So that all that is charged adds up to all that there is.
    if (!charged && !by.empty()) {
        road.push_back(picture.NodeOf("nobody"));
        picture.nodes[road.back()].charged.Add(group);
    }
    for (const std::size_t node : std::set(road.begin(), road.end())) picture.nodes[node].all.Add(group);
}

// The places of the heaviest nodes, these first.
std::vector<std::size_t> Heaviest(const std::vector<Node>& nodes, std::size_t limit) {
    std::vector<std::size_t> order(nodes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        const Weight& a = nodes[left].all;
        const Weight& b = nodes[right].all;
        return std::tie(b.bytes, b.stacks, nodes[left].name) < std::tie(a.bytes, a.stacks, nodes[right].name);
    });
    order.resize(std::min(order.size(), limit));
    return order;
}

std::string DotOf(const Picture& picture, const Triage& triage) {
    const std::vector<std::size_t> drawn =
        Heaviest(picture.nodes, static_cast<std::size_t>(triage.request.limit));
    std::vector<std::size_t> numbers(picture.nodes.size());
    std::string out =
        fmt::format("digraph triage {{\n  label={};\n  node [shape=box, fontname=\"sans-serif\"];\n",
                    Quoted(SummaryOf(triage)));
    std::size_t number = 0;
    for (const std::size_t place : drawn) {
        const Node& node = picture.nodes[place];
        numbers[place] = ++number;
        std::string label = node.name + '\n' + TextOf(node.all);
        const bool charged = node.charged.stacks > 0;
        if (charged) label += "\ncharged: " + TextOf(node.charged);
        fmt::format_to(std::back_inserter(out), "  n{} [label={}{}];\n", numbers[place], Quoted(label),
                       charged ? ", style=filled, fillcolor=\"#fde68a\"" : "");
    }
    // As wide as their share of the bytes, or of the stacks where nothing leaks.
    const auto widthOf = [&all = picture.all](const Weight& weight) {
        const auto share =
            all.bytes > 0 ? std::pair(weight.bytes, all.bytes) : std::pair(weight.stacks, all.stacks);
        return 1 + 5 * static_cast<double>(share.first) / static_cast<double>(share.second);
    };
    for (const auto& [edge, weight] : picture.edges)
        if (numbers[edge.first] > 0 && numbers[edge.second] > 0)
            fmt::format_to(std::back_inserter(out), "  n{} -> n{} [penwidth={:.1f}];\n", numbers[edge.first],
                           numbers[edge.second], widthOf(weight));
    return out + LeftOut(picture.nodes.size() - drawn.size(), "nodes") + "}\n";
}

} // namespace

void PrintTriageDot(const Triage& triage, Console& console) {
    Picture picture;
    for (const TriageItem& item : triage.items)
        for (Stack* stack : item.group->AllCalls())
            AddStack(picture, *item.group, *stack, reports::ChargesOf(*stack, triage.TablesOf(*item.group)),
                     triage.request.report.by);
    console.Out(DotOf(picture, triage));
}

} // namespace ostraka::tool
