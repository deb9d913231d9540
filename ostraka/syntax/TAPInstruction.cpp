// What an instruction is follows from its first characters, by a ladder of words: the first row whose word
// stands at the instruction's begin decides its type, its precise kind and its children. The words are
// compared without regard to the instruction's end.

#include <ostraka/syntax/TAPInstruction.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <gneiss/qxContext.h>
#include <ostraka/syntax/TreeBuilder.h>

TAPInstruction::~TAPInstruction() = default;

int TAPInstruction::Build() {
    using ostraka::detail::TreeBuilder;
    return TreeBuilder::Build(*this, &TreeBuilder::BuildInstruction);
}

namespace ostraka::detail {

// A type or kind of 0 leaves what the node has. The children are made from the text behind the word, of which
// the rule is told the length; a rule that gives nothing passes the instruction on to the next row.
struct TreeBuilder::LadderRow {
    std::string_view word;
    int leastSize;
    int type;
    int preciseType;
    std::optional<int> (TreeBuilder::*makeChildren)(TAPInstruction& node, int wordLength);
    int wordLength;
};

constexpr TreeBuilder::LadderRow TreeBuilder::ladder[] = {
    {"ExportedBy", 0, 0, 0, &TreeBuilder::ExportedEnum, 10},
    {"enum ", 0, STYPE_Declaration, 0, &TreeBuilder::BareExpressionBehind, 5},
    {"static ", 0, STYPE_Instruction, SINST_Static, &TreeBuilder::ExpressionBehind, 7},
    {"virtual ", 0, STYPE_Instruction, SINST_Virtual, &TreeBuilder::ExpressionBehind, 8},
    {"inline ", 0, STYPE_Instruction, SINST_Inline, &TreeBuilder::InstructionBehind, 7},
    {"struct ", 0, STYPE_Declaration, 0, &TreeBuilder::BareExpressionBehind, 7},
    {"typedef ", 0, STYPE_Declaration, 0, &TreeBuilder::Typedef, 8},
    {"class ", 0, STYPE_Declaration, 0, &TreeBuilder::Class, 6},
    {"interface ", 0, STYPE_Declaration, 0, &TreeBuilder::Interface, 10},
    {"if(", 0, 0, 0, &TreeBuilder::Condition, 2},
    {"while(", 0, 0, 0, &TreeBuilder::Condition, 5},
    {"switch(", 0, 0, 0, &TreeBuilder::Condition, 6},
    {"for(", 0, 0, 0, &TreeBuilder::Loop, 3},
    {"return ", 8, 0, 0, &TreeBuilder::ExpressionBehind, 7},
    {"return(", 7, 0, 0, &TreeBuilder::ExpressionBehind, 6},
    {"else{", 6, 0, 0, &TreeBuilder::InstructionBehind, 5},
    {"else ", 6, 0, 0, &TreeBuilder::InstructionBehind, 5},
    {"delete", 0, 0, SINST_Delete, &TreeBuilder::Delete, 6},
    {"", 0, 0, 0, &TreeBuilder::ExpressionBehind, 0},
};

int TreeBuilder::BuildInstruction(TAPInstruction& node) {
    if (node.depth > deepest) return FailTooDeep(node, "TAPInstruction");
    for (const LadderRow& row : ladder) {
        if (node.size < row.leastSize || !TextAt(node.begin, row.word)) continue;
        if (row.type != 0) node.type = row.type;
        if (row.preciseType != 0) node.preciseType = row.preciseType;
        if (const auto result = (this->*row.makeChildren)(node, row.wordLength)) return *result;
    }
    return 0;
}

std::optional<int> TreeBuilder::ExportedEnum(TAPInstruction& node, int) {
    const int past = node.begin + node.size;
    const int pos = SkipBlanks(SkipToBlank(node.begin, past), past);
    if (!TextAt(pos, "enum ")) return std::nullopt;
    node.type = STYPE_Declaration;
    return BareExpressionBehind(node, pos + 5 - node.begin);
}

std::optional<int> TreeBuilder::BareExpressionBehind(TAPInstruction& node, int wordLength) {
    Add<TAPExpression>(node, node.begin + wordLength, node.size - wordLength);
    return 0;
}

std::optional<int> TreeBuilder::ExpressionBehind(TAPInstruction& node, int wordLength) {
    return AddExpression(node, node.begin + wordLength, node.size - wordLength);
}

std::optional<int> TreeBuilder::InstructionBehind(TAPInstruction& node, int wordLength) {
    return BuildInstruction(Add<TAPInstruction>(node, node.begin + wordLength, node.size - wordLength));
}

// The new name is the last word; the type runs up to the blank or parenthesis before it.
std::optional<int> TreeBuilder::Typedef(TAPInstruction& node, int wordLength) {
    const int past = node.begin + node.size;
    int split = past - 1;
    while (split > node.begin && stream[split] == ' ') --split;
    while (split > node.begin && stream[split] != ' ' && stream[split] != ')') --split;
    split = std::max(split, node.begin);
    AddExpression(node, node.begin + wordLength, split - node.begin - wordLength + 1);
    AddExpression(node, split + 1, past - split - 1);
    return 0;
}

// Adds the name at `nameBegin`, which has one character at least, and gives the first position behind a colon
// that follows it, or `noColon`.
int TreeBuilder::NameAndColon(TAPInstruction& node, int nameBegin) {
    const int past = node.begin + node.size;
    int nameEnd = nameBegin + 1;
    while (nameEnd < past && stream[nameEnd] != ' ' && stream[nameEnd] != ':') ++nameEnd;
    Add<TAPIdentifiant>(node, nameBegin, nameEnd - nameBegin);
    const int colon = SkipBlanks(nameEnd, past);
    return colon < past && stream[colon] == ':' ? SkipBlanks(colon + 1, past) : noColon;
}

std::optional<int> TreeBuilder::Class(TAPInstruction& node, int wordLength) {
    const int past = node.begin + node.size;
    int pos = SkipBlanks(node.begin + wordLength, past);
    if (TextAt(pos, "ExportedBy")) pos = SkipBlanks(SkipToBlank(pos, past), past);
    pos = NameAndColon(node, pos);
    if (pos == noColon) return 0;
    for (std::string_view access : {"public ", "protected ", "private "}) {
        if (TextAt(pos, access)) pos += static_cast<int>(access.size());
    }
    pos = SkipBlanks(pos, past);
    AddExpression(node, pos, past - pos);
    return 0;
}

std::optional<int> TreeBuilder::Interface(TAPInstruction& node, int wordLength) {
    const int past = node.begin + node.size;
    const int base = NameAndColon(node, SkipBlanks(node.begin + wordLength, past));
    if (base == noColon) return 0;
    Add<TAPIdentifiant>(node, base, SkipToBlank(base + 1, past) - base);
    return 0;
}

// A child for what stands between the parentheses, unless that is nothing, and a block for what follows them.
template <class Head>
int TreeBuilder::HeadAndBlock(TAPInstruction& node, int parenthesis) {
    const int past = node.begin + node.size;
    const int close = View(node).EndOfParenthesis(parenthesis);
    if (close == 0) return FailBelow(node, SFAIL_Parenthesis, "Missing )");
    if (close - parenthesis >= 2) {
        Head& head = Add<Head>(node, parenthesis + 1, close - parenthesis - 1);
        if (BuildHead(head) != 0) return 1;
    }
    return close < past ? BuildBlock(Add<TAPBloc>(node, close + 1, past - close - 1)) : 0;
}

std::optional<int> TreeBuilder::Condition(TAPInstruction& node, int wordLength) {
    return HeadAndBlock<TAPExpression>(node, node.begin + wordLength);
}

std::optional<int> TreeBuilder::Loop(TAPInstruction& node, int wordLength) {
    return HeadAndBlock<TAPBloc>(node, node.begin + wordLength);
}

// `delete` and `delete [ ]`. A comma anywhere makes what follows a list.
std::optional<int> TreeBuilder::Delete(TAPInstruction& node, int wordLength) {
    const int past = node.begin + node.size;
    int pos = SkipBlanks(node.begin + wordLength, past);
    if (stream[pos] == '[') {
        node.preciseType = SINST_DeleteArray;
        pos = SkipBlanks(pos + 1, past);
        if (stream[pos] != ']') return FailWithMessage(node, SFAIL_DeleteBracket, "TAparser.ImbBracket");
        pos = SkipBlanks(pos + 1, past);
    }
    if (std::memchr(stream + node.begin, ',', static_cast<std::size_t>(node.size)) != nullptr) {
        return BuildArguments(Add<TAPListOfArgs>(node, pos, past - pos));
    }
    return AddExpression(node, pos, past - pos);
}

int TreeBuilder::FailWithMessage(const TAPSyntaxe& node, TAPFailureCode code, const char* key) {
    const NUBUnicodeString text = qxExtContext.GetMsgMngr()->GetMsg(NUBString(key));
    qxExtContext.GetTraceMngr()->Print(MSG_KEY_qxqxError, stderr, text);
    return Fail(code, node.begin);
}

} // namespace ostraka::detail
