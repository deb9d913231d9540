#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <basalt/NUBString.h>
#include <ostraka/syntax/TAPSourceFile.h>

class TAPSymbolTable;
class TAPSyntaxe;

namespace ostraka::detail {

// The name that an instruction gives back; null in any other node.
const TAPSyntaxe* ReturnedName(const TAPSyntaxe& node);

// What the blocks of one file declare and give back, by name, so that a question for one name costs no walk
// over its block. A block is read when the first question falls into it, together with all others below the
// outermost block around it.
//
// It lives as the memory of the source file: from the first question until the tree goes or changes. What is
// declared hangs on the types that are known, so that part starts anew when a table asks that knows others.
class BlockIndex final : public TreeMemory {
public:
    // The node in the scope that declares the name, by the rules of TAPSymbolTable::FindDeclare, and its
    // type; null if there is none, which leaves the type alone.
    static TAPSyntaxe* FindDeclare(TAPSymbolTable& table, std::string_view name, TAPSyntaxe& scope,
                                   NUBString& type);

    // Whether an instruction in the block gives the name back.
    static bool IsReturned(std::string_view name, TAPSyntaxe& block);

    // Texts that can be sought without a copy.
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    using Names = std::unordered_set<std::string, TextHash, std::equal_to<>>;

private:
    // The state of the indexes that tell what is a type.
    struct Knowledge {
        std::uint64_t epochs[4] = {};
        int sizes[4] = {};

        static Knowledge Of(const TAPSymbolTable& table);
        bool operator==(const Knowledge&) const = default;
    };

    struct Declared {
        int place;
        TAPSyntaxe* node; // an instruction, or an argument
        NUBString type;
    };

    // What is declared in a scope has these places, in the order of the search.
    struct Extent {
        int first;
        int past;
    };

    static BlockIndex& Of(TAPSourceFile& file);

    void Serve(const TAPSymbolTable& table);
    const Declared* Find(std::string_view name, const Extent& extent) const;
    void Read(TAPSymbolTable& table, TAPSyntaxe& top);
    void ReadInstruction(TAPSymbolTable& table, TAPSyntaxe& instruction);
    void ReadArguments(TAPSymbolTable& table, TAPSyntaxe* head);
    void Add(std::string_view name, TAPSyntaxe* node, std::string_view type);

    Knowledge knowledge;
    std::unordered_map<std::string, std::vector<Declared>, TextHash, std::equal_to<>> declared; // by place
    std::unordered_map<const TAPSyntaxe*, Extent> extents; // of files and blocks
    int places = 0;                                        // given so far
    std::unordered_map<const TAPSyntaxe*, Names> returned; // of the blocks that were asked for
};

} // namespace ostraka::detail
