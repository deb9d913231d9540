#include <ostraka/syntax/TAPListOfArgs.h>

#include <cstring>

#include <ostraka/syntax/TreeBuilder.h>

TAPListOfArgs::~TAPListOfArgs() = default;

int TAPListOfArgs::Build() {
    using ostraka::detail::TreeBuilder;
    return TreeBuilder::Build(*this, &TreeBuilder::BuildArguments);
}

namespace ostraka::detail {

namespace {

struct MissingEnd {
    TAPFailureCode code;
    const char* text;
};

MissingEnd MissingEndOf(char opening) {
    switch (opening) {
    case '(': return {SFAIL_Parenthesis, "Missing )"};
    case '"': return {SFAIL_String, "Missing \""};
    default: return {SFAIL_Character, "Missing '"};
    }
}

} // namespace

int TreeBuilder::FailOpen(TAPListOfArgs& node, char opening) {
    const MissingEnd missing = MissingEndOf(opening);
    return FailBelow(node, missing.code, missing.text);
}

// Only parentheses and literals protect a comma.
int TreeBuilder::BuildArguments(TAPListOfArgs& node) {
    if (node.depth > deepest) return FailTooDeep(node, "TAPListOfArgs");
    const bool headOfLoop =
        std::memchr(stream + node.begin, ';', static_cast<std::size_t>(node.size)) != nullptr;
    if (headOfLoop) return 0;
    const RangeView range = View(node);
    const int past = node.begin + node.size;
    for (int first = node.begin; first < past;) {
        int pos = range.NextMark(first);
        while (pos < past && stream[pos] != ',') {
            if (stream[pos] != '[' && OpensNested(stream[pos])) {
                const char opening = stream[pos];
                pos = range.EndOfNested(pos);
                if (pos == 0) return FailOpen(node, opening);
            }
            pos = range.NextMark(pos + 1);
        }
        if (pos > first && AddExpression(node, first, pos - first) != 0) return 1;
        first = pos + 1;
    }
    return 0;
}

} // namespace ostraka::detail
