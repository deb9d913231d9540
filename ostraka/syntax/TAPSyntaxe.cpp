// Life of a node, and the builder of blocks: what stands between two braces is cut into blocks and
// instructions by the scanners, one piece after the other.

#include <ostraka/syntax/TAPSyntaxe.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/Ref.h>
#include <ostraka/foundation/ReleaseQueue.h>
#include <ostraka/syntax/NodePool.h>
#include <ostraka/syntax/TreeBuilder.h>

NUBString TAPSyntaxe::ErrMsg;

namespace {

constexpr int inlineChildren = 2;
constexpr int capacityStep = 5;

// Entries of the children's array for a capacity; whole powers of two, so that a wide node isn't copied for
// every few children.
std::size_t EntriesFor(int capacity) {
    return std::bit_ceil(static_cast<std::size_t>(capacity));
}

constinit ostraka::detail::ReleaseQueue<ostraka::detail::Ref<TAPSyntaxe>> releases;

} // namespace

void TAPSyntaxe::FreeContent() {
    std::free(content);
}

// The outermost node of a tree releases every node below it, in the order in which destructors that call each
// other would: a node's own children come before its next sibling.
void TAPSyntaxe::ReleaseChildren() {
    releases.Release([this](auto& waiting) {
        TAPSyntaxe* const* children = moreChildren != nullptr ? moreChildren : firstChildren;
        for (int i = childCount; i > 0; --i)
            waiting.push_back(ostraka::detail::Ref<TAPSyntaxe>::Adopt(children[i - 1]));
    });
    std::free(moreChildren);
}

void TAPSyntaxe::Append(TAPSyntaxe* child) {
    if (child == nullptr) return;
    child->AddRef();
    Adopt(child);
    DropMemory();
}

void TAPSyntaxe::DropMemory() const {
    if (!ostraka::detail::TreeMemory::IsAnyAlive()) return;
    for (const TAPSyntaxe* node = this; node != nullptr; node = node->parent)
        if (node->source != nullptr) node->source->SetMemory(nullptr);
}

// Adds a child behind the second one.
void TAPSyntaxe::AdoptFurther(TAPSyntaxe* child) {
    if (childCount == childCapacity) {
        const int capacity = childCapacity + capacityStep;
        if (moreChildren == nullptr || EntriesFor(capacity) != EntriesFor(childCapacity)) {
            void* array = std::realloc(moreChildren, EntriesFor(capacity) * sizeof(TAPSyntaxe*));
            if (array == nullptr) throw std::bad_alloc();
            moreChildren = static_cast<TAPSyntaxe**>(array);
        }
        childCapacity = capacity;
        if (childCount == inlineChildren) std::copy_n(firstChildren, inlineChildren, moreChildren);
    }
    moreChildren[childCount++] = child;
}

TAPSyntaxe* TAPSyntaxe::Child(int i) const {
    FATAL(i < 1 || i > childCount, "TAPSyntaxe::Child bad index");
    return i <= inlineChildren ? firstChildren[i - 1] : moreChildren[i - 1];
}

char* TAPSyntaxe::GetContent() {
    if (content != nullptr) return content;
    content = static_cast<char*>(std::malloc(static_cast<std::size_t>(size) + 1));
    if (content == nullptr) throw std::bad_alloc();
    // A name can lie behind the stream's end, in a text that breaks off behind its keyword.
    const int available = source != nullptr ? std::clamp(source->size - begin, 0, size) : 0;
    if (available > 0) std::memcpy(content, GetStream(), static_cast<std::size_t>(available));
    content[available] = 0;
    return content;
}

void* TAPSyntaxe::operator new(std::size_t bytes) {
    return ostraka::detail::AllocateNode(bytes);
}

void TAPSyntaxe::operator delete(void* block, std::size_t bytes) {
    ostraka::detail::FreeNode(block, bytes);
}

static_assert(sizeof(TAPExpression) <= ostraka::detail::NodePool::blockSize &&
              sizeof(TAPInstruction) <= ostraka::detail::NodePool::blockSize);

int TAPSyntaxe::Build() {
    using ostraka::detail::TreeBuilder;
    return TreeBuilder::Build(*this, &TreeBuilder::BuildBlock);
}

TAPIdentifiant::~TAPIdentifiant() = default;

TAPSyntaxeNULL::~TAPSyntaxeNULL() = default;

int compare(const void* a, const void* b) {
    const auto* const* first = static_cast<const TAPSyntaxe* const*>(a);
    const auto* const* second = static_cast<const TAPSyntaxe* const*>(b);
    return (*first)->GetBegin() <= (*second)->GetBegin() ? -1 : 1;
}

namespace ostraka::detail {

namespace {

// The shortest piece that becomes a node is this much longer than one character.
constexpr int shortestPiece = 2;

} // namespace

TreeBuilder::TreeBuilder(const TAPSyntaxe& top)
    : file(top.source),
      stream(top.source != nullptr && top.source->stream != nullptr ? top.source->stream : "") {
    top.DropMemory();
    if (top.source == nullptr || top.depth > deepest) return;
    const int end = std::min(top.begin + top.size, top.source->size) - 1;
    if (top.begin >= 0 && top.begin <= end) nesting.emplace(stream, top.begin, end);
}

// Keeps the failure with its place. A node that lies behind the stream counts as standing at its end.
int TreeBuilder::Fail(TAPFailureCode code, int pos) {
    failure = TAPFailure();
    failure.code = code;
    if (file != nullptr) {
        failure.position = std::clamp(pos, 0, std::max(file->size - 1, 0));
        failure.point = file->GetPoint(failure.position);
    }
    return 1;
}

int TreeBuilder::FailBelow(TAPSyntaxe& node, TAPFailureCode code, const char* text) {
    TAPSyntaxe::ErrMsg = text;
    return Fail(code, node.GetLastLeaf()->begin);
}

int TreeBuilder::FailTooDeep(const TAPSyntaxe& node, const char* builder) {
    TAPSyntaxe::ErrMsg =
        NUBString("Depth too high when building a ") + builder + " : " + toString(node.depth);
    return Fail(SFAIL_Depth, node.begin);
}

int TreeBuilder::FailAtPiece(TAPSyntaxe& node, TAPFailureCode code, const char* text, int pos,
                             std::optional<int> length) {
    int line = 0;
    int col = 0;
    node.source->GetPos(pos, line, col);
    TAPSyntaxe::ErrMsg = NUBString(text) + toString(line) + " col " + toString(col);
    if (length) TAPSyntaxe::ErrMsg += NUBString(" length=") + toString(*length);
    return Fail(code, pos);
}

int TreeBuilder::BuildBlock(TAPSyntaxe& node) {
    if (node.depth > deepest) return FailTooDeep(node, "TAPSyntaxe");
    int past = node.begin + node.size;
    while (past > node.begin && stream[past - 1] == ' ') --past;
    const RangeView range = View(node.begin, past - 1);
    int pos = SkipBlanks(node.begin, past);
    while (pos < past) {
        int pieceEnd = pos;
        if (BuildPiece(node, range, pos, pieceEnd) != 0) return 1;
        pos = SkipBlanks(pieceEnd + 1, past);
    }
    return 0;
}

// Makes the node for the piece that starts at `pos`, if it becomes one, and tells where the piece ends.
int TreeBuilder::BuildPiece(TAPSyntaxe& node, const RangeView& range, int pos, int& pieceEnd) {
    const bool shallow = node.type == STYPE_Shallow;
    if (stream[pos] == '{') {
        pieceEnd = range.EndOfBlock(pos);
        if (pieceEnd == 0) {
            const int length = range.End() - pos + 1;
            return FailAtPiece(node, SFAIL_Block, "Missing TAPBloc end at line ", pos, length);
        }
        TAPBloc& block = Add<TAPBloc>(node, pos + 1, pieceEnd - pos - 1);
        return shallow ? 0 : BuildBlock(block);
    }
    pieceEnd = EndOfInstruction(range, pos);
    if (pieceEnd == 0) {
        return FailAtPiece(node, SFAIL_Instruction, "Missing Instruction end for Instruction starting line ",
                           pos, std::nullopt);
    }
    if (pieceEnd - pos < shortestPiece) return 0;
    const bool closed = stream[pieceEnd] == ';';
    TAPInstruction& instruction = Add<TAPInstruction>(node, pos, pieceEnd - pos + (closed ? 0 : 1));
    if (!closed && node.type == STYPE_File && stream[pieceEnd + 1] == '{')
        instruction.type = STYPE_Declaration;
    return shallow ? 0 : BuildInstruction(instruction);
}

} // namespace ostraka::detail
