#pragma once

// What holds for the tree of any text, whatever it is; used by the tests and by the fuzz target. The plain
// scanners and the plain search for operators judge how the builders have split each node.

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <ostraka/syntax/TAPSyntaxePath.h>

#include "support/Source.h"

class TreeProperties {
public:
    explicit TreeProperties(std::string_view bytes) : source(bytes) {}

    // The first property that doesn't hold, with the node that breaks it; empty when all hold.
    std::string Fault() {
        if (source.result != 0) {
            Require(source.file->GetSize() == 0, "a failed file has no stream", "");
            return fault;
        }
        TAPSyntaxe* root = source.Build();
        int nodes = 0;
        const TAPSyntaxe* last = nullptr;
        std::vector<bool> cut; // whether the nodes above may be
        for (TAPSyntaxeWalk walk(*root); walk.Node() != nullptr && fault.empty(); walk.Next()) {
            TAPSyntaxe* node = walk.Node();
            ++nodes;
            last = node;
            cut.resize(static_cast<std::size_t>(walk.Level()));
            mayBeCut = (cut.empty() ? source.buildResult != 0 : cut.back()) || node->StartWith("typedef ") ||
                       node->StartWith("class ");
            cut.push_back(mayBeCut);
            Check(node);
        }
        Require(last == root->GetLastLeaf() || !fault.empty(), "a walk ends at the last leaf", "");
        Require(source.file->count == nodes + 1 || !fault.empty(), "each node holds the file", "");
        root->Release();
        source.root = nullptr;
        Require(source.file->count == 1, "nothing is left", "");
        return fault;
    }

private:
    static int Past(const TAPSyntaxe* node) { return node->GetBegin() + node->GetSize(); }

    void Require(bool holds, const char* property, const char* where) {
        if (!holds && fault.empty()) fault = std::string(property) + ": '" + where + "'";
    }

    void Check(TAPSyntaxe* node) {
        stream = source.file->GetStream() != nullptr ? source.file->GetStream() : "";
        text = node->GetContent();
        const int seen = std::max(0, std::min(Past(node), source.file->GetSize()) - node->GetBegin());
        Require(static_cast<int>(std::strlen(text)) == seen, "the content is the range", text);
        for (int i = 1; i <= node->ChildCount(); ++i) CheckPlace(node, node->Child(i), i);
        CheckQueries(node, seen == node->GetSize());
        switch (node->GetType()) {
        case STYPE_File:
        case STYPE_Bloc: return CheckBlock(node);
        case STYPE_Expression: return CheckExpression(static_cast<TAPExpression*>(node));
        case STYPE_ListOfArgs: return CheckList(node);
        case STYPE_Identifiant:
        case STYPE_NULL: return Require(node->ChildCount() == 0, "leaves have no children", text);
        default: return;
        }
    }

    // Children lie inside their parent and in order. Only the words of instructions, which are compared with
    // a blank that the range may not include, lead behind its end: to an empty child or a name of one
    // character.
    void CheckPlace(TAPSyntaxe* node, TAPSyntaxe* child, int i) {
        const bool instruction = node->GetType() == STYPE_Instruction || node->GetType() == STYPE_Declaration;
        const int over = Past(child) - Past(node);
        Require(child->GetBegin() >= node->GetBegin(), "children begin inside", text);
        Require(over <= 0 || (instruction && over <= 5 && child->GetSize() <= 1), "children end inside",
                text);
        Require(i == 1 || child->GetBegin() >= Past(node->Child(i - 1)) || node->StartWith("typedef"),
                "children are in order", text);
        Require(child->GetPosInFather() == i && child->GetParent() == node && child->depth == node->depth + 1,
                "children know their place", text);
        Require(child->Navigate(SNAV_Parent, SNAV_Child, i, 0) == child, "a walk leads back", text);
        if (node->ChildCount() > widest) return;
        TAPSyntaxe* next = i < node->ChildCount() ? node->Child(i + 1) : nullptr;
        TAPSyntaxe* previous = i > 1 ? node->Child(i - 1) : nullptr;
        Require(node->GetNext(child) == next && child->NextSibling() == next, "next", text);
        Require(node->GetPrevious(child) == previous && child->PreviousSibling() == previous, "previous",
                text);
    }

    void CheckQueries(TAPSyntaxe* node, bool inside) {
        const TAPSyntaxePath path(node);
        TAPSyntaxe* found = source.root;
        for (int i = 1; i <= path.posInTree.Size(); ++i) found = found->Child(path.posInTree[i]);
        Require(found == node, "the path leads back", text);
        int line = 0;
        int col = 0;
        const bool placed = node->GetPos(line, col) == 0;
        Require(placed == (node->GetBegin() < source.file->GetSize()), "nodes in the stream have places",
                text);
        if (inside) Require(node->TestContent(text, -1) == 0 && node->EndWith(text), "equals itself", text);
        if (node->ChildCount() > 0 || !inside || ++leaves > manyLeaves) return;
        NUBListPtrTAPSyntaxe same;
        NUBListValNUBString pieces;
        source.root->FindOccurrences(node, same);
        int hits = 0;
        for (int i = 1; i <= same.Size(); ++i) hits += same[i] == node ? 1 : 0;
        Require(hits == 1, "a leaf occurs", text);
        node->GetListOfString(pieces);
        const bool named = node->GetType() == STYPE_Identifiant;
        Require(!named || (pieces.Size() == 1 && pieces[1] == text), "a name is one piece", text);
        if (leaves == 1) source.root->GetListOfString(pieces);
    }

    bool Holds(TAPSyntaxe* node, int i, int type, int begin, int past) {
        if (i > node->ChildCount()) return mayBeCut;
        TAPSyntaxe* child = node->Child(i);
        return child->GetType() == type && child->GetBegin() >= begin && Past(child) <= past;
    }

    void CheckBlock(TAPSyntaxe* node) {
        int past = Past(node);
        while (past > node->GetBegin() && stream[past - 1] == ' ') --past;
        int i = 0;
        for (int pos = node->GetBegin(), end = 0; pos < past; pos = end + 1) {
            end = pos;
            if (stream[pos] == ' ') continue;
            const bool block = stream[pos] == '{';
            end = block ? TAPSyntaxe::SearchEndOfTAPBloc(stream, pos, past - 1)
                        : TAPSyntaxe::SearchEndOfTAPInstruction(stream, pos, past - 1);
            if (end != 0 && !block && end - pos < 2) continue;
            if (end == 0 || ++i > node->ChildCount()) {
                return Require(mayBeCut && i >= node->ChildCount(), "blocks are complete", text);
            }
            const TAPSyntaxe* child = node->Child(i);
            const int size = block ? end - pos - 1 : end - pos + (stream[end] == ';' ? 0 : 1);
            Require(child->GetBegin() == pos + (block ? 1 : 0) && child->GetSize() == size, "pieces", text);
            Require((child->GetType() == STYPE_Bloc) == block, "blocks are blocks", text);
        }
        Require(i == node->ChildCount(), "no piece too many", text);
    }

    void CheckExpression(TAPExpression* node) {
        const std::string kind(node->kind, strnlen(node->kind, sizeof node->kind));
        const int begin = node->GetBegin();
        const int end = Past(node) - 1;
        const int count = node->ChildCount();
        if (kind == "nw") return Require(Holds(node, 1, STYPE_Expression, begin + 4, end + 1), "new", text);
        if (kind.empty()) // empty, not built, a literal left open, or what stands behind SEQUENCE()
            return Require(count == 0 || Holds(node, 1, STYPE_Identifiant, begin, end + 1), "no kind", text);
        if (stream[begin] == '"' && TAPSyntaxe::SearchEndOfString(stream, begin, end) == end)
            return Require(kind == "st" && count == 0, "strings", text);
        int length = 0;
        const int pos = TAPExpression::SearchOperator(stream, begin, end, length);
        if (pos == 0) return CheckWithoutOperator(node, kind);
        Require(kind == std::string(stream + pos, static_cast<std::size_t>(length)), "operators", text);
        const bool star = pos == begin && kind == "*";
        if (pos > begin) Require(Holds(node, 1, STYPE_Expression, begin, pos), "left operands", text);
        if (star) Require(Holds(node, 1, STYPE_NULL, pos, pos + 1), "unary stars", text);
        const int right = pos > begin || star ? 2 : 1;
        Require(Holds(node, right, STYPE_Expression, pos + length, end + 1), "right operands", text);
        Require(count <= right, "operands", text);
    }

    void CheckWithoutOperator(TAPExpression* node, const std::string& kind) {
        const int begin = node->GetBegin();
        const int end = Past(node) - 1;
        if (stream[begin] == '(') return Require(kind == "ct", "casts", text);
        if (stream[begin] == '!' && begin <= end) return Require(kind == "!", "nots", text);
        if (node->StartWith("SEQUENCE(")) return;
        const auto first = [&](char wanted) {
            for (int i = begin; i <= end; ++i) {
                const char c = stream[i];
                if (c == wanted) return i;
                if (c == '"') i = TAPSyntaxe::SearchEndOfString(stream, i, end);
                if (c == '\'') i = TAPSyntaxe::SearchEndOfString2(stream, i, end);
                if (c == '[') i = TAPSyntaxe::SearchEndOfIndex(stream, i, end);
                if (i == 0 && std::strchr("\"'[", c) != nullptr) return -1;
            }
            return -1;
        };
        const int call = first('(');
        const int index = call < 0 ? first('[') : -1;
        if (call < 0 && index < 0) return Require(kind == "id" || kind == "dc", "words", text);
        const int open = call >= 0 ? call : index;
        Require(kind == (call >= 0 ? "mt" : "in"), "calls and indexes", text);
        const int close = call >= 0 ? TAPSyntaxe::SearchEndOfPar(stream, open, end)
                                    : TAPSyntaxe::SearchEndOfIndex(stream, open, end);
        Require(close != 0 || mayBeCut, "what is open fails", text);
        if (open > begin) Require(Holds(node, 1, STYPE_Expression, begin, open), "callees", text);
        if (close - open < 2) return;
        const int type = call >= 0 ? STYPE_ListOfArgs : STYPE_Expression;
        Require(Holds(node, open > begin ? 2 : 1, type, open + 1, close), "arguments", text);
    }

    // Cuts at the commas that neither parentheses nor literals protect.
    void CheckList(TAPSyntaxe* node) {
        const int past = Past(node);
        if (std::memchr(stream + node->GetBegin(), ';', static_cast<std::size_t>(node->GetSize())) != nullptr)
            return Require(node->ChildCount() == 0, "no list", text);
        int i = 0;
        for (int first = node->GetBegin(), pos = first; first < past; first = ++pos) {
            for (; pos < past && stream[pos] != ','; ++pos) {
                if (stream[pos] == '(')
                    pos = TAPSyntaxe::SearchEndOfPar(stream, pos, past - 1);
                else if (stream[pos] == '"')
                    pos = TAPSyntaxe::SearchEndOfString(stream, pos, past - 1);
                else if (stream[pos] == '\'')
                    pos = TAPSyntaxe::SearchEndOfString2(stream, pos, past - 1);
                if (pos == 0) return Require(mayBeCut && i == node->ChildCount(), "open lists fail", text);
            }
            if (pos > first) Require(Holds(node, ++i, STYPE_Expression, first, pos), "arguments", text);
        }
        Require(node->ChildCount() <= i, "no argument too many", text);
    }

    static constexpr int widest = 50;
    static constexpr int manyLeaves = 10;
    Source source;
    std::string fault;
    const char* stream = "";
    const char* text = ""; // of the node that is checked
    bool mayBeCut = false; // the node, or something above it, may have failed to build
    int leaves = 0;
};
