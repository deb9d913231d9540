// What an expression is follows from rules that are tried in a fixed order: operators go before calls and
// casts, and a declaration is what is left. A rule that applies gives the node its kind and its children.

#include <ostraka/syntax/TAPExpression.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <ostraka/syntax/TreeBuilder.h>

TAPExpression::~TAPExpression() = default;

int TAPExpression::Build() {
    using ostraka::detail::TreeBuilder;
    return TreeBuilder::Build(*this, &TreeBuilder::BuildExpression);
}

namespace ostraka::detail {

namespace {

// Letters, digits and the underscore: a text of these alone is a word, or a number.
constexpr auto wordCharacters = [] {
    std::array<bool, 256> table{};
    for (unsigned char c = '0'; c <= '9'; ++c) table[c] = true;
    for (unsigned char c = 'a'; c <= 'z'; ++c) table[c] = table[c - 'a' + 'A'] = true;
    table['_'] = true;
    return table;
}();

void SetKind(TAPExpression& node, std::string_view kind) {
    std::copy(kind.begin(), kind.end(), node.kind);
}

} // namespace

int TreeBuilder::BuildExpression(TAPExpression& node) {
    if (node.depth > deepest) return FailTooDeep(node, "TAPExpression");
    Trim(node);
    if (node.size == 0) return 0;
    if (IsWord(node)) return MakeIdentifier(node); // as the last rule would, once no other applies
    if (const auto result = New(node)) return *result;
    StripParentheses(node);
    const RangeView range = View(node);
    return *FirstRule<&TreeBuilder::Literal, &TreeBuilder::Operation, &TreeBuilder::Cast, &TreeBuilder::Not,
                      &TreeBuilder::Sequence, &TreeBuilder::Call, &TreeBuilder::Index,
                      &TreeBuilder::DeclarationOrIdentifier>(node, range);
}

// The result of the first rule that applies.
template <auto... rules>
std::optional<int> TreeBuilder::FirstRule(TAPExpression& node, const RangeView& range) {
    std::optional<int> result;
    static_cast<void>(((result = (this->*rules)(node, range)).has_value() || ...));
    return result;
}

void TreeBuilder::Trim(TAPExpression& node) const {
    const int past = node.begin + node.size;
    node.begin = SkipBlanks(node.begin, past);
    node.size = past - node.begin;
    while (node.size > 0 && stream[node.begin + node.size - 1] == ' ') --node.size;
}

bool TreeBuilder::IsWord(const TAPExpression& node) const {
    const char* text = stream + node.begin;
    return std::all_of(text, text + node.size,
                       [](char c) { return wordCharacters[static_cast<unsigned char>(c)]; });
}

int TreeBuilder::MakeIdentifier(TAPExpression& node) {
    SetKind(node, "id");
    Add<TAPIdentifiant>(node, node.begin, node.size);
    return 0;
}

std::optional<int> TreeBuilder::New(TAPExpression& node) {
    if (node.size < 5 || !TextAt(node.begin, "new ")) return std::nullopt;
    SetKind(node, "nw");
    return AddExpression(node, node.begin + 4, node.size - 4);
}

void TreeBuilder::StripParentheses(TAPExpression& node) const {
    if (stream[node.begin] != '(') return;
    const int close = View(node).EndOfParenthesis(node.begin);
    if (close == 0 || close != node.begin + node.size - 1) return;
    node.begin += 1;
    node.size -= 2;
}

std::optional<int> TreeBuilder::Literal(TAPExpression& node, const RangeView& range) {
    if (stream[node.begin] != '"') return std::nullopt;
    const int close = range.EndOfString(node.begin);
    if (close == 0 || close != node.begin + node.size - 1) return std::nullopt;
    SetKind(node, "st");
    return 0;
}

std::optional<int> TreeBuilder::Operation(TAPExpression& node, const RangeView& range) {
    const int past = node.begin + node.size;
    int length = 0;
    const int pos = range.SearchOperator(node.begin, length);
    if (pos == 0) return std::nullopt;
    SetKind(node, std::string_view(stream + pos, static_cast<std::size_t>(length)));
    if (pos > node.begin && AddExpression(node, node.begin, pos - node.begin) != 0) return 1;
    // Keeps the operand of a unary star in second place, where that of a binary one stands.
    if (pos == node.begin && length == 1 && stream[pos] == '*') Add<TAPSyntaxeNULL>(node, pos, 1);
    return AddExpression(node, pos + length, past - pos - length);
}

std::optional<int> TreeBuilder::Cast(TAPExpression& node, const RangeView& range) {
    if (stream[node.begin] != '(') return std::nullopt;
    SetKind(node, "ct");
    const int close = range.EndOfParenthesis(node.begin);
    if (close == 0) return FailBelow(node, SFAIL_Parenthesis, "Missing )");
    Add<TAPIdentifiant>(node, node.begin + 1, close - node.begin - 1);
    return AddExpression(node, close + 1, node.begin + node.size - close - 1);
}

std::optional<int> TreeBuilder::Not(TAPExpression& node, const RangeView&) {
    if (stream[node.begin] != '!') return std::nullopt;
    SetKind(node, "!");
    return AddExpression(node, node.begin + 1, node.size - 1);
}

// A typed list whose word the stream shows as it was written: the type, and what is declared with it.
std::optional<int> TreeBuilder::Sequence(TAPExpression& node, const RangeView& range) {
    static constexpr std::string_view word = "SEQUENCE(";
    if (!TextAt(node.begin, word)) return std::nullopt;
    const int close = range.EndOfParenthesis(node.begin + static_cast<int>(word.size()) - 1);
    if (close == 0) return std::nullopt;
    SetKind(node, "dc");
    TAPExpression& listType = Add<TAPExpression>(node, node.begin, close - node.begin + 1);
    SetKind(listType, "id");
    Add<TAPIdentifiant>(listType, listType.begin, listType.size);
    TAPExpression& declared = Add<TAPExpression>(node, close + 1, node.begin + node.size - close - 1);
    Add<TAPIdentifiant>(declared, declared.begin, declared.size);
    return 0;
}

// The position of the first parenthesis outside brackets and literals; one past the node if there is none,
// and nothing where a literal doesn't close.
std::optional<int> TreeBuilder::FirstParenthesis(const TAPExpression& node, const RangeView& range) const {
    const int past = node.begin + node.size;
    for (int pos = range.NextMark(node.begin); pos < past; pos = range.NextMark(pos + 1)) {
        const char c = stream[pos];
        if (c == '(') return pos;
        if (!OpensNested(c)) continue;
        const int close = range.EndOfNested(pos);
        if (close == 0 && c != '[') return std::nullopt;
        pos = close == 0 ? past : close;
    }
    return past;
}

std::optional<int> TreeBuilder::Call(TAPExpression& node, const RangeView& range) {
    const int past = node.begin + node.size;
    const auto open = FirstParenthesis(node, range);
    if (!open) return 0;
    if (*open >= past) return std::nullopt;
    SetKind(node, "mt");
    const int close = range.EndOfParenthesis(*open);
    if (close == 0) return FailBelow(node, SFAIL_Parenthesis, "Missing )");
    if (*open > node.begin && AddExpression(node, node.begin, *open - node.begin) != 0) return 1;
    return close - *open >= 2 ? BuildArguments(Add<TAPListOfArgs>(node, *open + 1, close - *open - 1)) : 0;
}

std::optional<int> TreeBuilder::Index(TAPExpression& node, const RangeView& range) {
    const int past = node.begin + node.size;
    int open = range.NextMark(node.begin);
    while (open < past && stream[open] != '[') {
        if (OpensNested(stream[open])) {
            open = range.EndOfNested(open);
            if (open == 0) return 0;
        }
        open = range.NextMark(open + 1);
    }
    if (open >= past) return std::nullopt;
    SetKind(node, "in");
    const int close = range.EndOfBracket(open);
    if (close == 0) return FailBelow(node, SFAIL_Bracket, "Missing ]");
    if (open > node.begin && AddExpression(node, node.begin, open - node.begin) != 0) return 1;
    return close - open >= 2 ? AddExpression(node, open + 1, close - open - 1) : 0;
}

// A declaration is split at the last blank or star before its first declarator. Nesting and literals are not
// regarded.
std::optional<int> TreeBuilder::DeclarationOrIdentifier(TAPExpression& node, const RangeView&) {
    const int past = node.begin + node.size;
    const std::string_view text(stream + node.begin, static_cast<std::size_t>(std::max(node.size - 1, 0)));
    const void* comma = memrchr(text.data(), ',', text.size());
    const char* split = comma != nullptr ? static_cast<const char*>(comma) : text.data() + text.size();
    while (split > text.data() && split[-1] != ' ' && split[-1] != '*') --split;
    if (split == text.data()) return MakeIdentifier(node);
    SetKind(node, "dc");
    const int typeEnd = static_cast<int>(split - stream) - 1;
    if (AddExpression(node, node.begin, typeEnd - node.begin) != 0) return 1;
    return Declarators(node, typeEnd + 1, past);
}

int TreeBuilder::Declarators(TAPExpression& node, int begin, int past) {
    for (int first = begin;;) {
        const void* comma = std::memchr(stream + first, ',', static_cast<std::size_t>(past - first));
        const int end = comma != nullptr ? static_cast<int>(static_cast<const char*>(comma) - stream) : past;
        const int name = first < end && stream[first] == '*' ? first + 1 : first;
        if (AddExpression(node, name, end - name) != 0) return 1;
        if (end == past) return 0;
        first = end + 1;
    }
}

} // namespace ostraka::detail
