// Types as texts: the type of an expression, whether two types fit, what inherits from what, what is basic.
//
// The type of an expression is read along one chain of nodes: each says of which node below it has the type,
// and which marks come off or on; a type word, a literal or a declared name ends the chain. Then the marks
// are applied on the way back.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ostraka/symbols/LineOfBases.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/symbols/TypeNames.h>

namespace {

using ostraka::detail::BareNames;
using ostraka::detail::ChildOf;
using ostraka::detail::ChildOfType;
using ostraka::detail::Holds;
using ostraka::detail::IsOfKind;
using ostraka::detail::TextOf;
using ostraka::detail::WithoutMarks;

// A node has the type of `operand` without its last star, where `dropsStar` says so, and with marks behind.
struct Derivation {
    TAPSyntaxe* operand;
    bool dropsStar = false;
    bool addsReference = false;
    int addsStars = 0;
};

// The stars on the chain of second children: those of `**` in `char ** p`.
int FurtherStars(const TAPSyntaxe& node) {
    int stars = 0;
    for (const TAPSyntaxe* next = ChildOf(&node, 2); IsOfKind(next, "*"); next = ChildOf(next, 2)) ++stars;
    return stars;
}

Derivation SameAsFirst(const TAPSyntaxe& node) {
    return {node.Child(1)};
}

// A pointer, or with nothing in front of the star the value that it points to.
Derivation FromStar(const TAPSyntaxe& node) {
    if (node.Child(1)->GetType() == STYPE_NULL) return {ChildOf(&node, 2), true};
    return {node.Child(1), false, false, 1 + FurtherStars(node)};
}

// An address, or a reference.
Derivation FromAmpersand(const TAPSyntaxe& node) {
    if (node.StartWith("&") != 0) return {node.Child(1), false, false, 1};
    return {node.Child(1), false, true, FurtherStars(node)};
}

// A declared array `int a[3]`, or an element `a[3]`.
Derivation FromIndex(const TAPSyntaxe& node) {
    if (node.Child(1)->ChildCount() >= 2) return {node.Child(1), false, false, 1};
    return {node.Child(1), true};
}

struct DerivingKind {
    const char* kind;
    Derivation (*derive)(const TAPSyntaxe& node); // of a node with a child 1
};

constexpr DerivingKind derivingKinds[] = {
    {"ct", SameAsFirst}, {"dc", SameAsFirst},  {"*", FromStar},
    {"=", SameAsFirst},  {"&", FromAmpersand}, {"in", FromIndex},
};

std::optional<Derivation> Derive(const TAPSyntaxe& node) {
    if (node.ChildCount() == 0) return std::nullopt;
    for (const DerivingKind& row : derivingKinds)
        if (IsOfKind(&node, row.kind)) return row.derive(node);
    return std::nullopt;
}

// `const Foo`, of which the whole is the type.
bool IsConstType(const TAPSyntaxe& node) {
    return IsOfKind(&node, "dc") && node.ChildCount() > 0 && TextOf(*node.Child(1)) == "const";
}

// The identifier that the node is or wraps; null for other nodes.
const TAPSyntaxe* WordOf(const TAPSyntaxe& node) {
    if (node.GetType() == STYPE_Identifiant) return &node;
    return IsOfKind(&node, "id") ? ChildOfType(&node, 1, STYPE_Identifiant) : nullptr;
}

// The type of a node that ends the chain, where it can be told.
std::optional<NUBString> TypeAtEnd(TAPSymbolTable& table, TAPSyntaxe& node) {
    if (IsConstType(node)) return NUBString(TextOf(node));
    if (IsOfKind(&node, "st")) return "const char *";
    const TAPSyntaxe* word = WordOf(node);
    if (word == nullptr) return std::nullopt;
    const std::string_view text = TextOf(*word);
    if (text.ends_with('*') || Holds(table.basicTypes, text) || Holds(table.types, text)) {
        return NUBString(text);
    }
    NUBString type = table.FindClass(&node);
    if (type.Length() == 0) return std::nullopt;
    return type;
}

// False if a star is to go that isn't there.
bool Apply(const Derivation& derivation, std::string& type) {
    if (derivation.dropsStar) {
        if (!type.ends_with('*')) return false;
        type.pop_back();
    }
    if (derivation.addsReference) type += '&';
    type.append(static_cast<std::size_t>(derivation.addsStars), '*');
    return true;
}

std::string_view TextOrEmpty(const char* text) {
    return text != nullptr ? text : std::string_view();
}

} // namespace

int TAPSymbolTable::GetType(TAPSyntaxe* node, NUBString& type) {
    type = "";
    std::vector<Derivation> chain;
    while (node != nullptr && !IsConstType(*node)) {
        const std::optional<Derivation> derivation = Derive(*node);
        if (!derivation) break;
        chain.push_back(*derivation);
        node = derivation->operand;
    }
    if (node == nullptr) return 1;
    const std::optional<NUBString> atEnd = TypeAtEnd(*this, *node);
    if (!atEnd) return 1;
    std::string text(atEnd->View());
    for (; !chain.empty(); chain.pop_back())
        if (!Apply(chain.back(), text)) return 1;
    type = NUBString(std::string_view(text));
    return 0;
}

int TAPSymbolTable::MatchType(const NUBString& first, const NUBString& second) const {
    if (first == second) return 1;
    const std::string derived = BareNames(first.View());
    const std::string base = BareNames(second.View());
    return derived == base ? 1 : InheritFrom(derived.c_str(), base.c_str());
}

int TAPSymbolTable::InheritFrom(const char* derived, const char* base) const {
    const std::string start(WithoutMarks(TextOrEmpty(derived)));
    const std::string_view sought = WithoutMarks(TextOrEmpty(base));
    if (start.empty()) return 0;
    if (start == sought) return 1;
    return bases->LeadsTo(*this, GetClass(start.c_str()), sought) ? 1 : 0;
}

int TAPSymbolTable::IsBasicType(TAPSyntaxe* node) {
    NUBString type;
    if (FindDeclare(node, type, nullptr, 0) == nullptr) return -1;
    std::string_view text = type.View();
    if (Holds(basicTypes, text)) return 1;
    if (text.find('*', 1) == std::string_view::npos) return 0;
    text.remove_suffix(1);
    return Holds(basicTypes, text) ? 1 : 0;
}

int TAPSymbolTable::IsBasicType(const char* type) const {
    std::string_view text = TextOrEmpty(type);
    for (std::string_view sign : {"signed ", "unsigned "})
        if (text.starts_with(sign)) text.remove_prefix(sign.size());
    const std::size_t mark = text.find_first_of("*&");
    if (mark != std::string_view::npos) {
        text = text.substr(0, mark);
        text = text.substr(0, text.find_last_not_of(' ') + 1);
    }
    return Holds(basicTypes, text) ? 1 : 0;
}
