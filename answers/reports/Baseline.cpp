#include "Baseline.h"

#include <algorithm>

namespace ostraka::reports {

namespace {

constexpr std::string_view head = "# ostraka baseline 1";
constexpr std::string_view explanation = ": the type and the calls of each known stack\n";

// With a tab in front, and nothing for a stack without calls.
std::string FunctionsOf(const Stack& stack) {
    std::string functions;
    for (int i = 0; i < stack.GetSize(); ++i) {
        functions += i == 0 ? '\t' : '!';
        functions += PartsOf(*stack.GetCall(i)).function;
    }
    return functions;
}

} // namespace

std::optional<ReportFault> Baseline::Read(std::string_view text) {
    if (!text.starts_with(head))
        return ReportFault{1, 1,
                           "is no baseline: its first line has to begin with '" + std::string(head) + "'"};
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!line.empty() && line.front() != '#') lines.emplace(line);
    }
    return std::nullopt;
}

std::string Baseline::Text() const {
    std::string text(head);
    text += explanation;
    for (const std::string& line : lines) (text += line) += '\n';
    return text;
}

std::string BaselineLine(const StackGroup& group) {
    std::vector<std::string> stacks;
    for (const Stack* stack : group.AllCalls()) stacks.push_back(FunctionsOf(*stack));
    std::sort(stacks.begin(), stacks.end());
    std::string line = group.error->GetType();
    for (const std::string& stack : stacks) line += stack;
    // One line, whatever bytes a name holds; and no comment.
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
    if (line.starts_with('#')) line.front() = '?';
    return line;
}

} // namespace ostraka::reports
