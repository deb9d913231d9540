// Questions to the tree. Walks over whole trees keep their own stack.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <ostraka/foundation/Fatal.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>
#include <ostraka/syntax/TAPSyntaxe.h>
#include <ostraka/syntax/TAPSyntaxeWalk.h>

namespace {

bool HasKind(const TAPSyntaxe& node, const char* text) {
    return node.GetType() == STYPE_Expression &&
           std::strncmp(static_cast<const TAPExpression&>(node).kind, text, 2) == 0;
}

bool HasPreciseType(const TAPSyntaxe& node, int preciseType) {
    return node.GetType() == STYPE_Instruction &&
           static_cast<const TAPInstruction&>(node).GetPreciseType() == preciseType;
}

int AsNumber(const char* entry) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(entry));
}

TAPSyntaxe* AsNode(const char* entry) {
    return reinterpret_cast<TAPSyntaxe*>(const_cast<char*>(entry));
}

TAPSyntaxe* When(bool holds, TAPSyntaxe* node) {
    return holds ? node : nullptr;
}

TAPSyntaxe* ToChild(TAPSyntaxe* node, const char* entry) {
    return AsNumber(entry) > node->ChildCount() ? nullptr : node->Child(AsNumber(entry));
}

TAPSyntaxe* WithType(TAPSyntaxe* node, const char* entry) {
    return When(node->GetType() == AsNumber(entry), node);
}

TAPSyntaxe* WithKind(TAPSyntaxe* node, const char* entry) {
    return When(HasKind(*node, entry), node);
}

TAPSyntaxe* WithPreciseType(TAPSyntaxe* node, const char* entry) {
    return When(HasPreciseType(*node, AsNumber(entry)), node);
}

TAPSyntaxe* WithContentOf(TAPSyntaxe* node, const char* entry) {
    return When(node->TestContent(AsNode(entry)) == 0, node);
}

TAPSyntaxe* WithContent(TAPSyntaxe* node, const char* entry) {
    return When(node->TestContent(entry, -1) == 0, node);
}

TAPSyntaxe* WithNullType(TAPSyntaxe* node, const char*) {
    return When(node->GetType() == STYPE_NULL, node);
}

TAPSyntaxe* WithBegin(TAPSyntaxe* node, const char* entry) {
    return When(node->TestContent(entry, static_cast<int>(std::strlen(entry))) == 0, node);
}

// A step that takes an argument, with the text for a path that ends before it.
struct Step {
    int code;
    TAPSyntaxe* (*walk)(TAPSyntaxe* node, const char* entry);
    const char* missingArgument; // null where the argument isn't read
};

constexpr Step steps[] = {
    {SNAV_Child, ToChild, "TAPSyntaxe::Navigate not enought args for SNAV_Child"},
    {SNAV_Test, WithType, "TAPSyntaxe::Navigate not enought args for SNAV_Test"},
    {SNAV_ExprTest, WithKind, "TAPSyntaxe::Navigate not enought args for SNAV_ExprTest"},
    {SNAV_InstTest, WithPreciseType, "TAPSyntaxe::Navigate not enought args for SNAV_InstTest"},
    {SNAV_SyntaxeContent, WithContentOf, "TAPSyntaxe::Navigate not enought args for SNAV_SyntaxeContent"},
    {SNAV_StringContent, WithContent, "TAPSyntaxe::Navigate not enought args for SNAV_StringContent"},
    {SNAV_NullTest, WithNullType, nullptr},
    {SNAV_BeginWith, WithBegin, "TAPSyntaxe::Navigate not enought args for SNAV_BeginWith"},
};

const Step& StepOf(int code) {
    const Step* step =
        std::find_if(std::begin(steps), std::end(steps), [=](const Step& s) { return s.code == code; });
    FATAL(step == std::end(steps), "TAPSyntaxe::Navigate bad argument");
    return *step;
}

template <class Matches>
int AppendLeaves(TAPSyntaxe& top, NUBListPtrTAPSyntaxe& found, Matches matches) {
    for (TAPSyntaxeWalk walk(top); walk.Node() != nullptr; walk.Next())
        if (walk.Node()->ChildCount() == 0 && matches(walk.Node())) found.Append(walk.Node());
    return found.Size() > 0 ? 1 : 0;
}

// How the text of a kind of expression is read back: a template in which 1 and 2 stand for the pieces of the
// children, K for the kind's own text, and anything else for itself.
struct Reading {
    const char* kind;
    bool (*applies)(int childCount);
    std::string_view pieces;
};

bool Always(int) {
    return true;
}
bool OneChild(int childCount) {
    return childCount == 1;
}
bool NotOneChild(int childCount) {
    return childCount != 1;
}
bool SomeChild(int childCount) {
    return childCount > 0;
}

constexpr Reading readings[] = {
    {",", Always, "1K2"},      {"=", Always, "1K2"},      {"&&", OneChild, "K1"},
    {"&", OneChild, "K1"},     {"*", OneChild, "K1"},     {"&&", NotOneChild, "1K2"},
    {"&", NotOneChild, "1K2"}, {"*", NotOneChild, "1K2"}, {"in", SomeChild, "1[2]"},
    {"mt", Always, "1(2)"},    {"ct", Always, "(1)2"},
};

// A piece of text, or a node whose pieces are still to be written.
struct Pending {
    TAPSyntaxe* node;
    std::string_view mark;
};

// Collects what a node consists of, in reading order.
class PieceWriter {
public:
    explicit PieceWriter(NUBListValNUBString& list) : pieces(list) {}

    void Write(TAPSyntaxe* top) {
        waiting.push_back({top, {}});
        while (!waiting.empty()) {
            const Pending next = waiting.back();
            waiting.pop_back();
            if (next.node == nullptr) {
                Append(next.mark);
            } else {
                Open(next.node);
            }
        }
    }

private:
    void Append(std::string_view text) { pieces.Append(NUBString(std::string(text).c_str())); }

    void Open(TAPSyntaxe* node) {
        const auto* expression =
            node->GetType() == STYPE_Expression ? static_cast<const TAPExpression*>(node) : nullptr;
        if (node->GetType() == STYPE_Identifiant || (expression != nullptr && IsKind(*expression, "id"))) {
            pieces.Append(NUBString(node->GetContent()));
            return;
        }
        const std::size_t before = waiting.size();
        if (expression != nullptr && AddByReading(*expression)) {
        } else if (node->GetType() == STYPE_ListOfArgs) {
            AddChildren(*node, ",");
        } else if (node->GetType() == STYPE_Bloc) {
            waiting.push_back({nullptr, "{"});
            AddChildren(*node, {});
            waiting.push_back({nullptr, "}"});
        } else {
            AddChildren(*node, {});
        }
        std::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(before), waiting.end());
    }

    static bool IsKind(const TAPExpression& expression, const char* kind) {
        return std::strncmp(expression.kind, kind, sizeof expression.kind) == 0;
    }

    bool AddByReading(const TAPExpression& expression) {
        for (const Reading& reading : readings) {
            if (!IsKind(expression, reading.kind) || !reading.applies(expression.ChildCount())) continue;
            for (const char& piece : reading.pieces) AddPiece(expression, reading, piece);
            return true;
        }
        return false;
    }

    void AddPiece(const TAPExpression& expression, const Reading& reading, const char& piece) {
        if (piece == 'K') {
            waiting.push_back({nullptr, reading.kind});
        } else if (piece != '1' && piece != '2') {
            waiting.push_back({nullptr, std::string_view(&piece, 1)});
        } else if (piece - '0' <= expression.ChildCount()) {
            waiting.push_back({expression.Child(piece - '0'), {}});
        }
    }

    void AddChildren(const TAPSyntaxe& node, std::string_view separator) {
        for (int i = 1; i <= node.ChildCount(); ++i) {
            if (i > 1 && !separator.empty()) waiting.push_back({nullptr, separator});
            waiting.push_back({node.Child(i), {}});
        }
    }

    NUBListValNUBString& pieces;
    std::vector<Pending> waiting; // the next one last
};

} // namespace

TAPSyntaxe* TAPSyntaxe::NavigateFrom2(TAPSyntaxe* node, int length, const char** entries) {
    for (int i = 0; i < length && node != nullptr; ++i) {
        const int code = AsNumber(entries[i]);
        if (code == SNAV_Parent) {
            node = node->parent;
            continue;
        }
        const Step& step = StepOf(code);
        ++i;
        FATAL(i >= length && step.missingArgument != nullptr, step.missingArgument);
        node = step.walk(node, i < length ? entries[i] : nullptr);
    }
    return node;
}

int TAPSyntaxe::TestContent(const char* text, int length) const {
    const std::size_t textLength = std::strlen(text);
    const auto own = static_cast<std::size_t>(size);
    const auto compared = length == -1 ? own : static_cast<std::size_t>(std::max(length, 0));
    if (length == -1 ? textLength != own : textLength < compared || own < compared) return 1;
    return compared == 0 ? 0 : std::strncmp(GetStream(), text, compared);
}

int TAPSyntaxe::TestContent(const TAPSyntaxe* other) const {
    if (other == nullptr || other->size != size) return 1;
    return size == 0 ? 0 : std::strncmp(GetStream(), other->GetStream(), static_cast<std::size_t>(size));
}

int TAPSyntaxe::StartWith(const char* text) const {
    return TestContent(text, static_cast<int>(std::strlen(text))) == 0 ? 1 : 0;
}

int TAPSyntaxe::EndWith(const char* text) const {
    const std::size_t length = std::strlen(text);
    if (length > static_cast<std::size_t>(size)) return 0;
    return length == 0 || std::strncmp(GetStream() + size - length, text, length) == 0 ? 1 : 0;
}

int TAPSyntaxe::IsHandler() const {
    return size < 5 ? 1 : EndWith("_var");
}

int TAPSyntaxe::IsPointer() const {
    return size < 2 ? 1 : EndWith("*");
}

TAPSyntaxe* TAPSyntaxe::GetPrevious(const TAPSyntaxe* child) const {
    for (int i = childCount; i >= 2; --i) {
        if (Child(i) == child) return Child(i - 1);
    }
    return nullptr;
}

TAPSyntaxe* TAPSyntaxe::GetNext(const TAPSyntaxe* child) const {
    for (int i = childCount - 1; i >= 1; --i) {
        if (Child(i) == child) return Child(i + 1);
    }
    return nullptr;
}

bool TAPSyntaxe::StandsAtItsPosition() const {
    return posInFather >= 1 && posInFather <= parent->childCount && parent->Child(posInFather) == this;
}

TAPSyntaxe* TAPSyntaxe::PreviousSibling() const {
    if (parent == nullptr) return nullptr;
    if (!StandsAtItsPosition()) return parent->GetPrevious(this);
    return posInFather > 1 ? parent->Child(posInFather - 1) : nullptr;
}

TAPSyntaxe* TAPSyntaxe::NextSibling() const {
    if (parent == nullptr) return nullptr;
    if (!StandsAtItsPosition()) return parent->GetNext(this);
    return posInFather < parent->childCount ? parent->Child(posInFather + 1) : nullptr;
}

TAPSyntaxe* TAPSyntaxe::GetLastLeaf() {
    TAPSyntaxe* leaf = this;
    while (leaf->childCount > 0) leaf = leaf->Child(leaf->childCount);
    return leaf;
}

int TAPSyntaxe::FindOccurrences(const TAPSyntaxe* pattern, NUBListPtrTAPSyntaxe& found) {
    return AppendLeaves(*this, found, [=](TAPSyntaxe* leaf) { return leaf->TestContent(pattern) == 0; });
}

int TAPSyntaxe::FindOccurrences(const char* text, NUBListPtrTAPSyntaxe& found) {
    return AppendLeaves(*this, found, [=](TAPSyntaxe* leaf) { return leaf->TestContent(text, -1) == 0; });
}

int TAPSyntaxe::GetListOfString(NUBListValNUBString& pieces) {
    PieceWriter(pieces).Write(this);
    return 1;
}

int TAPSyntaxe::GetBlocSize() const {
    if (type != STYPE_Bloc) return 0;
    if (size == 0) return 1;
    return source->GetPoint(begin + size - 1).GetLine() - source->GetPoint(begin).GetLine() + 1;
}

int TAPSyntaxe::GetTAPSyntaxePath(NUBRawCollint& path) const {
    for (const TAPSyntaxe* node = this; node->parent != nullptr; node = node->parent) path.Append(0);
    int place = path.size;
    for (const TAPSyntaxe* node = this; node->parent != nullptr; node = node->parent) {
        path[place--] = node->posInFather;
    }
    return 0;
}
