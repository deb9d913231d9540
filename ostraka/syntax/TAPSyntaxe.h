#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBRawColl.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/foundation/TypedLists.h>
#include <ostraka/syntax/TAPSourceFile.h>

// Types of nodes, as TAPSyntaxe::GetType gives them.
enum : int {
    STYPE_File = 1,        // root of a file
    STYPE_Bloc = 2,        // what stands between two braces
    STYPE_Instruction = 3, // an instruction
    STYPE_Expression = 4,  // an expression
    STYPE_Identifiant = 5, // a leaf that names something
    STYPE_ListOfArgs = 6,  // what stands between the parentheses of a call
    STYPE_Shallow = 7,     // its children are made and not built further; only a tool makes such a node
    STYPE_Declaration = 8, // an instruction that declares
    STYPE_NULL = 9,        // stands where an expression has nothing
};

// Entries of a path for TAPSyntaxe::Navigate. SNAV_Parent and SNAV_Child move, the others test.
enum : int {
    SNAV_Parent = 101,   // to the parent
    SNAV_Child = 102,    // + i: to child i
    SNAV_Test = 200,     // + type: GetType() is the type
    SNAV_ExprTest = 201, // + const char*: an expression whose kind begins with the text's first two bytes
    SNAV_InstTest = 202, // + kind: an instruction of type 3 with this precise type
    SNAV_SyntaxeContent = 203, // + TAPSyntaxe*: has the text of that node
    SNAV_StringContent = 204,  // + const char*: its text is this one
    SNAV_NullTest = 205,       // + any entry, unread: has type 9
    SNAV_BeginWith = 206,      // + const char*: its text begins with this one
};

namespace ostraka::detail {
class TreeBuilder;
}

class TAPSyntaxe;
using NUBListPtrTAPSyntaxe =
    ostraka::detail::PointerList<TAPSyntaxe, ostraka::detail::ListKind::WithoutDuplicates>;

// A node of a syntax tree: a range of the normalised stream of a file, with its children. It holds no text
// of its own. This class serves as the root of a file; the subclasses are the other kinds of node.
//
// A parent holds one reference on each child, and every node one on its source file; a child points to its
// parent without a reference. So a tree lives as long as its root is held, and a child held longer has a
// dangling parent. A node starts with one reference, held by whoever created it. Releasing a tree takes no
// machine stack in proportion to its depth.
//
// Positions are positions of the file's stream; bounds named `end` and `limit` are inclusive.
class OSTRAKA_EXPORT TAPSyntaxe : public TARefCounter {
public:
    int depth = 0;                       // 0 without a parent, else the parent's depth + 1
    TAPSourceFile* source = nullptr;     // counted; may be null in a node that a tool made
    int begin = 0;                       // position of the first character
    int size = 0;                        // number of characters
    int type = 0;                        // STYPE_ code
    TAPSyntaxe* firstChildren[2] = {};   // counted; children 1 and 2
    TAPSyntaxe** moreChildren = nullptr; // owned; all children once there are more than two
    int childCount = 0;
    int childCapacity = 2;
    TAPSyntaxe* parent = nullptr; // not counted
    char* content = nullptr;      // owned; made by GetContent
    int posInFather = -1;         // from 1, as the creator gave it; -1 at a root

    // The text of the last failure of any node.
    static NUBString ErrMsg;

    // Operators of two and of three characters, each table ended by null.
    static constexpr const char* operator_2[] = {"&&", "||", "==", "*=", "/=", "+=", "-=", "%=", "!=",
                                                 "&=", "^=", "|=", "<=", ">=", "->", ".*", "::", nullptr};
    static constexpr const char* operator_3[] = {"<<=", ">>=", "->*", nullptr};

    // A node without parent; takes a reference on `file` unless it is null. A negative size counts as 0.
    TAPSyntaxe(int nodeType, TAPSourceFile* file, int first, int length, int position)
        : source(file), begin(first), size(length > 0 ? length : 0), type(nodeType), posInFather(position) {
        if (source != nullptr) source->AddRef();
    }

    // A node below `father`, of the same file. It becomes a child only by Append.
    TAPSyntaxe(int nodeType, TAPSyntaxe* father, int first, int length, int position)
        : depth(father->depth + 1), source(father->source), begin(first), size(length > 0 ? length : 0),
          type(nodeType), parent(father), posInFather(position) {
        if (source != nullptr) source->AddRef();
    }

    ~TAPSyntaxe() override {
        if (source != nullptr) {
            if (type <= STYPE_Bloc) source->SetMemory(nullptr);
            source->Release();
        }
        if (content != nullptr) FreeContent();
        if (childCount == 1 && firstChildren[0]->childCount == 0) {
            firstChildren[0]->Release(); // the leaf of a word: half of all nodes
        } else if (childCount > 0) {
            ReleaseChildren();
        }
    }

    TAPSyntaxe(const TAPSyntaxe&) = delete;
    TAPSyntaxe& operator=(const TAPSyntaxe&) = delete;

    // Makes the children, and theirs. 0 on success, 1 on failure with the text in ErrMsg; the children made
    // before a failure stay. To be called once, by the creator.
    virtual int Build();

    // Adds a child at the end and takes a reference on it; null adds nothing.
    void Append(TAPSyntaxe* child);

    // Child i, from 1. An i outside 1 to ChildCount() is a fault of the caller and ends in FATAL.
    TAPSyntaxe* Child(int i) const;

    int ChildCount() const { return childCount; }
    int GetType() const { return type; }
    int GetBegin() const { return begin; }
    int GetSize() const { return size; }
    int GetPosInFather() const { return posInFather; }
    TAPSyntaxe* GetParent() const { return parent; }
    TAPSourceFile* GetTAPSourceFile() const { return source; }

    // The stream from the node's first character on. It is not cut at the node's end.
    char* GetStream() const { return source->stream + begin; }

    // The node's text, ended by NUL. Made on the first call and owned by the node.
    char* GetContent();

    // TAPSourceFile::GetPos of the first character: 0, or 1 for a node that lies outside the stream.
    int GetPos(int& line, int& col) const { return source->GetPos(begin, line, col); }

    // The same for the position behind the node's last character.
    int GetPosEndOfScope(int& line, int& col) const { return source->GetPos(begin + size, line, col); }

    NUBString GetSource() const { return source->GetName(); } // the file's name
    NUBString GetErrMsg() const { return ErrMsg; }

    // Why the last Build over this node's file gave 1, as soon as it was called on this node the one of this
    // node; SFAIL_None when it gave 0, and for a node without a file.
    TAPFailure GetFailure() const { return source != nullptr ? source->GetTreeFailure() : TAPFailure(); }

    // Scanners. `stream` is the whole stream; each gives the position of the delimiter that ends what starts
    // at `begin`, or begins what ends at `pos`, and 0 where there is none. Called elsewhere than on a
    // delimiter of its own, a bracket scanner answers as soon as its count is 0, that is at once, or at the
    // far end of the literal or bracket pair that stands there. Nesting costs no machine stack.
    static int SearchEndOfTAPBloc(const char* stream, int begin, int end);
    static int SearchEndOfTAPInstruction(const char* stream, int begin, int end);
    static int SearchEndOfPar(const char* stream, int begin, int end);
    static int SearchEndOfIndex(const char* stream, int begin, int end);
    static int SearchEndOfString(const char* stream, int begin, int end);
    static int SearchEndOfString2(const char* stream, int begin, int end);
    static int SearchBeginOfPar(const char* stream, int pos, int limit);
    static int SearchBeginOfIndex(const char* stream, int pos, int limit);
    static int SearchBeginOfString(const char* stream, int pos, int limit);
    static int SearchBeginOfString2(const char* stream, int pos, int limit);

    // Whether the n characters that end at `pos` belong to a longer operator of the text from `begin` to
    // `end`: 0 if not, else 2 or 3.
    static int ExistLongerOp(const char* stream, int begin, int end, int pos, int n);

    // Walks the path: codes, each followed by its argument, up to the first entry that is 0. Gives the node
    // reached, or null as soon as a step fails. A wrong path ends in FATAL.
    // Example: node->Navigate(SNAV_Parent, SNAV_Child, 2, SNAV_ExprTest, "mt", 0)
    template <class... Entries>
    TAPSyntaxe* Navigate(int code, Entries... entries) {
        return NavigateFrom(this, code, entries...);
    }

    // The same over an array of `length` entries, none of which ends the path.
    TAPSyntaxe* Navigate2(int length, const char** entries) { return NavigateFrom2(this, length, entries); }

    // Both again for a node that may be null, which gives null.
    template <class... Entries>
    static TAPSyntaxe* NavigateFrom(TAPSyntaxe* node, int code, Entries... entries) {
        const char* path[] = {PathEntry(code), PathEntry(entries)...};
        int length = 0;
        while (length < static_cast<int>(sizeof...(entries)) + 1 && path[length] != nullptr) ++length;
        return NavigateFrom2(node, length, path);
    }
    static TAPSyntaxe* NavigateFrom2(TAPSyntaxe* node, int length, const char** entries);

    // Comparison of texts: 0 when they are equal, else a value with the sign that strncmp gives, or 1.
    // With length -1 the whole text is compared, else the first `length` characters, which both must have.
    int TestContent(const char* text, int length) const;
    int TestContent(const TAPSyntaxe* other) const;

    int StartWith(const char* text) const; // 1 if the node's text begins with `text`, else 0
    int EndWith(const char* text) const;   // 1 if it ends with it, else 0

    // 1 if the text ends in "_var", respectively `*`; 1 too for fewer than 5, respectively 2 characters.
    int IsHandler() const;
    int IsPointer() const;

    // Called on the parent: the child before, respectively after `child`; null if there is none.
    TAPSyntaxe* GetPrevious(const TAPSyntaxe* child) const;
    TAPSyntaxe* GetNext(const TAPSyntaxe* child) const;

    // The neighbours of this node under its parent; null where there is none. Found at once where the node
    // stands at the position that its creator gave it, as those of a built tree do; else searched like those
    // above.
    TAPSyntaxe* PreviousSibling() const;
    TAPSyntaxe* NextSibling() const;

    // The last child of the last child and so on; the node itself if it has none.
    TAPSyntaxe* GetLastLeaf();

    // Appends to `found` each leaf below the node that has the text of the pattern, without a reference.
    // 1 if `found` holds anything then, else 0.
    int FindOccurrences(const TAPSyntaxe* pattern, NUBListPtrTAPSyntaxe& found);
    int FindOccurrences(const char* text, NUBListPtrTAPSyntaxe& found);

    // Appends the text of the tree below the node in reading order, a piece for each leaf and mark. Gives 1.
    int GetListOfString(NUBListValNUBString& pieces);

    // The number of source lines from the first character of a block to its last, 1 for an empty block; 0 for
    // any other node.
    int GetBlocSize() const;

    // Appends the positions by which Child leads from the root to this node. Gives 0.
    int GetTAPSyntaxePath(NUBRawCollint& path) const;

    // Nodes are blocks of one pool.
    static void* operator new(std::size_t bytes);
    static void operator delete(void* block, std::size_t bytes);

private:
    template <class Entry>
    static const char* PathEntry(Entry entry) {
        if constexpr (std::is_pointer_v<Entry>) {
            return reinterpret_cast<const char*>(entry);
        } else if constexpr (std::is_null_pointer_v<Entry>) {
            return nullptr;
        } else {
            static_assert(std::is_integral_v<Entry> || std::is_enum_v<Entry>,
                          "an entry of a path is an integer or a pointer");
            return reinterpret_cast<const char*>(static_cast<std::intptr_t>(entry));
        }
    }

    bool StandsAtItsPosition() const;
    void FreeContent();
    void ReleaseChildren();
    void DropMemory() const; // of the files of this node and of those above it

    friend class ostraka::detail::TreeBuilder;

    // Adds a child at the end and takes over the caller's reference on it.
    void Adopt(TAPSyntaxe* child) {
        if (childCount < 2) {
            firstChildren[childCount++] = child;
        } else {
            AdoptFurther(child);
        }
    }
    void AdoptFurther(TAPSyntaxe* child);
};

// A brace block; the braces themselves lie outside its range.
class OSTRAKA_EXPORT TAPBloc : public TAPSyntaxe {
public:
    TAPBloc(TAPSyntaxe* father, int first, int length, int position)
        : TAPSyntaxe(STYPE_Bloc, father, first, length, position) {}
};

// A leaf that names something; never built.
class OSTRAKA_EXPORT TAPIdentifiant : public TAPSyntaxe {
public:
    TAPIdentifiant(TAPSyntaxe* father, int first, int length, int position)
        : TAPSyntaxe(STYPE_Identifiant, father, first, length, position) {}
    ~TAPIdentifiant() override;
};

// A leaf in the place of something that an expression doesn't have; never built.
class OSTRAKA_EXPORT TAPSyntaxeNULL : public TAPSyntaxe {
public:
    TAPSyntaxeNULL(TAPSyntaxe* father, int first, int length, int position)
        : TAPSyntaxe(STYPE_NULL, father, first, length, position) {}
    ~TAPSyntaxeNULL() override;
};

// Comparator over two pointers to TAPSyntaxe*: -1 when the first node doesn't begin behind the second,
// else 1. For QuickSort of a list of nodes.
OSTRAKA_EXPORT int compare(const void* a, const void* b);
