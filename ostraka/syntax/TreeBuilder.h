#pragma once

#include <cstring>
#include <optional>
#include <string_view>

#include <ostraka/syntax/NestingIndex.h>
#include <ostraka/syntax/NodePool.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>
#include <ostraka/syntax/TAPListOfArgs.h>
#include <ostraka/syntax/TAPSyntaxe.h>

namespace ostraka::detail {

// Builds the tree below one node, with what one pass over the node's text found out about its nesting. Each
// kind of node has its rules in the source of its class. The results are those of TAPSyntaxe::Build: 0 on
// success, 1 on failure. The builders call each other in proportion to the depth of the tree, which
// `deepest` bounds.
class TreeBuilder {
public:
    static constexpr int deepest = 900;

    explicit TreeBuilder(const TAPSyntaxe& top);

    int BuildBlock(TAPSyntaxe& node);
    int BuildInstruction(TAPInstruction& node);
    int BuildExpression(TAPExpression& node);
    int BuildArguments(TAPListOfArgs& node);

    // What Build of a node is: one of the four above, and at the node's file the failure if it gives 1. A
    // failure on the way that the rules pass over leaves nothing there.
    template <class Node>
    static int Build(Node& top, int (TreeBuilder::*build)(Node&)) {
        TreeBuilder builder(top);
        const int result = (builder.*build)(top);
        if (top.source != nullptr) top.source->treeFailure = result != 0 ? builder.failure : TAPFailure();
        return result;
    }

private:
    struct LadderRow;

    static const LadderRow ladder[];

    // A child over the range, held by the parent alone and not built.
    template <class Node>
    static Node& Add(TAPSyntaxe& parent, int begin, int size) {
        Node* child = ::new (AllocateNode(sizeof(Node))) Node(&parent, begin, size, parent.ChildCount() + 1);
        parent.Adopt(child);
        return *child;
    }

    int AddExpression(TAPSyntaxe& parent, int begin, int size) {
        return BuildExpression(Add<TAPExpression>(parent, begin, size));
    }

    int Fail(TAPFailureCode code, int pos);
    int FailBelow(TAPSyntaxe& node, TAPFailureCode code, const char* text);
    int FailOpen(TAPListOfArgs& node, char opening);
    int FailTooDeep(const TAPSyntaxe& node, const char* builder);
    int FailAtPiece(TAPSyntaxe& node, TAPFailureCode code, const char* text, int pos,
                    std::optional<int> length);
    int FailWithMessage(const TAPSyntaxe& node, TAPFailureCode code, const char* key);
    int BuildPiece(TAPSyntaxe& node, const RangeView& range, int pos, int& pieceEnd);

    // Rules of instructions, by the words that they start with.
    std::optional<int> ExportedEnum(TAPInstruction& node, int wordLength);
    std::optional<int> BareExpressionBehind(TAPInstruction& node, int wordLength);
    std::optional<int> ExpressionBehind(TAPInstruction& node, int wordLength);
    std::optional<int> InstructionBehind(TAPInstruction& node, int wordLength);
    std::optional<int> Typedef(TAPInstruction& node, int wordLength);
    std::optional<int> Class(TAPInstruction& node, int wordLength);
    std::optional<int> Interface(TAPInstruction& node, int wordLength);
    std::optional<int> Condition(TAPInstruction& node, int wordLength);
    std::optional<int> Loop(TAPInstruction& node, int wordLength);
    std::optional<int> Delete(TAPInstruction& node, int wordLength);
    template <class Head>
    int HeadAndBlock(TAPInstruction& node, int parenthesis);
    int BuildHead(TAPExpression& head) { return BuildExpression(head); }
    int BuildHead(TAPBloc& head) { return BuildBlock(head); }
    int NameAndColon(TAPInstruction& node, int nameBegin);

    // Rules of expressions, in the order in which they are tried; nothing where a rule doesn't apply.
    void Trim(TAPExpression& node) const;
    bool IsWord(const TAPExpression& node) const;
    int MakeIdentifier(TAPExpression& node);
    std::optional<int> New(TAPExpression& node);
    void StripParentheses(TAPExpression& node) const;
    std::optional<int> Literal(TAPExpression& node, const RangeView& range);
    std::optional<int> Operation(TAPExpression& node, const RangeView& range);
    std::optional<int> Cast(TAPExpression& node, const RangeView& range);
    std::optional<int> Not(TAPExpression& node, const RangeView& range);
    std::optional<int> Sequence(TAPExpression& node, const RangeView& range);
    std::optional<int> Call(TAPExpression& node, const RangeView& range);
    std::optional<int> Index(TAPExpression& node, const RangeView& range);
    std::optional<int> DeclarationOrIdentifier(TAPExpression& node, const RangeView& range);
    int Declarators(TAPExpression& node, int begin, int past);
    std::optional<int> FirstParenthesis(const TAPExpression& node, const RangeView& range) const;
    template <auto... rules>
    std::optional<int> FirstRule(TAPExpression& node, const RangeView& range);

    RangeView View(const TAPSyntaxe& node) const { return View(node.begin, node.begin + node.size - 1); }
    RangeView View(int begin, int end) const {
        return nesting ? RangeView(stream, *nesting, begin, end) : RangeView(stream, end);
    }
    bool TextAt(int pos, std::string_view word) const {
        return word.empty() ||
               (stream[pos] == word[0] && std::strncmp(stream + pos, word.data(), word.size()) == 0);
    }
    int SkipBlanks(int pos, int past) const {
        while (pos < past && stream[pos] == ' ') ++pos;
        return pos;
    }
    int SkipToBlank(int pos, int past) const {
        while (pos < past && stream[pos] != ' ') ++pos;
        return pos;
    }

    static constexpr int noColon = -1;

    const TAPSourceFile* file; // may be null
    const char* stream;
    std::optional<NestingIndex> nesting;
    TAPFailure failure; // the last one
};

} // namespace ostraka::detail
