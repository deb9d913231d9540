#include <answers/resolve/NodeText.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include <fmt/format.h>

#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>

namespace ostraka::answers {

namespace {

constexpr const char* classNames[] = {"",
                                      "TAPSyntaxe",
                                      "TAPBloc",
                                      "TAPInstruction",
                                      "TAPExpression",
                                      "TAPIdentifiant",
                                      "TAPListOfArgs",
                                      "TAPSyntaxe",
                                      "TAPInstruction",
                                      "TAPSyntaxeNULL"};

struct PreciseName {
    int preciseType;
    const char* name;
};

constexpr PreciseName preciseNames[] = {
    {SINST_Plain, "plain"},     {SINST_Delete, "delete"}, {SINST_DeleteArray, "delete[]"},
    {SINST_Virtual, "virtual"}, {SINST_Static, "static"}, {SINST_Inline, "inline"},
};

} // namespace

const char* ClassNameOf(const TAPSyntaxe& node) {
    return classNames[node.GetType()];
}

std::string KindOf(const TAPSyntaxe& node) {
    if (node.GetType() == STYPE_Expression) {
        const auto& kind = static_cast<const TAPExpression&>(node).kind;
        return std::string(kind, strnlen(kind, sizeof kind));
    }
    if (node.GetType() == STYPE_Declaration) return "declaration";
    if (node.GetType() != STYPE_Instruction) return node.GetType() == STYPE_File ? "file" : "";
    const int precise = static_cast<const TAPInstruction&>(node).GetPreciseType();
    const auto* row = std::find_if(std::begin(preciseNames), std::end(preciseNames),
                                   [=](const PreciseName& name) { return name.preciseType == precise; });
    return row == std::end(preciseNames) ? "" : row->name;
}

std::string DescriptionOf(const TAPSyntaxe& node) {
    const std::string kind = KindOf(node);
    if (node.GetType() == STYPE_Expression) return fmt::format("{} \"{}\"", ClassNameOf(node), kind);
    return kind.empty() ? ClassNameOf(node) : fmt::format("{} {}", ClassNameOf(node), kind);
}

std::string_view TextOf(const TAPSyntaxe& node) {
    const TAPSourceFile& file = *node.GetTAPSourceFile();
    const int begin = std::clamp(node.GetBegin(), 0, file.GetSize());
    const int length = std::min(node.GetSize(), file.GetSize() - begin);
    if (length == 0) return {};
    return {file.GetStream() + begin, static_cast<std::size_t>(length)};
}

std::string_view TrimmedTextOf(const TAPSyntaxe& node) {
    const std::string_view text = TextOf(node);
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

Place PlaceOf(const TAPSyntaxe& node) {
    const std::size_t blanks = TextOf(node).find_first_not_of(' ');
    return PlaceAt(*node.GetTAPSourceFile(),
                   node.GetBegin() + (blanks == std::string_view::npos ? 0 : static_cast<int>(blanks)));
}

} // namespace ostraka::answers
