// A search through a scope goes from its first child to its last and into each block on the way; behind the
// content of a block come the arguments of the method whose body it is. What the walk meets is numbered, and
// the numbers of a block and of all below it are a stretch of their own:
//
//     void A::f(int p) { int a; { int a; int b; } }      {  int a  {  int a  int b  }  int p  }
//                                                             0          1      2         3
//
// So the first declaration of `a` in the inner block is the first entry of `a` from 1 to before 3.

#include <ostraka/symbols/BlockIndex.h>

#include <algorithm>
#include <utility>

#include <ostraka/symbols/DeclaredVariables.h>
#include <ostraka/symbols/NodeShape.h>
#include <ostraka/symbols/StatementWalk.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

namespace {

// The highest block from which a search reaches this scope; the scope itself if there is none. A search
// doesn't enter instructions.
TAPSyntaxe& OutermostSearched(TAPSyntaxe& scope) {
    TAPSyntaxe* outermost = &scope;
    for (TAPSyntaxe* node = scope.GetParent(); node != nullptr && node->GetType() != STYPE_Instruction;
         node = node->GetParent()) {
        if (node->GetType() == STYPE_Bloc) outermost = node;
        if (!HoldsStatements(*node)) break;
    }
    return *outermost;
}

BlockIndex::Names ReturnedNames(TAPSyntaxe& block) {
    BlockIndex::Names names;
    WalkStatements(&block, [&](TAPSyntaxe* node) {
        if (const TAPSyntaxe* name = ReturnedName(*node)) names.emplace(TextOf(*name));
        return Then::GoBelow;
    });
    return names;
}

} // namespace

// `return x`, or `return (Foo*)x`.
const TAPSyntaxe* ReturnedName(const TAPSyntaxe& node) {
    if (node.GetType() != STYPE_Instruction) return nullptr;
    if (node.StartWith("return ") == 0 && node.StartWith("return(") == 0) return nullptr;
    const TAPSyntaxe* value = ChildOf(&node, 1);
    if (IsOfKind(value, "ct")) value = ChildOf(value, 2);
    return IsOfKind(value, "id") ? value : nullptr;
}

BlockIndex::Knowledge BlockIndex::Knowledge::Of(const TAPSymbolTable& table) {
    const TAIndex* const indexes[] = {&table.keywords, &table.basicTypes, &table.types, &table.macros};
    Knowledge knowledge;
    for (std::size_t i = 0; i < std::size(indexes); ++i) {
        knowledge.epochs[i] = indexes[i]->Epoch();
        knowledge.sizes[i] = indexes[i]->size;
    }
    return knowledge;
}

BlockIndex& BlockIndex::Of(TAPSourceFile& file) {
    if (file.GetMemory() == nullptr) file.SetMemory(std::make_unique<BlockIndex>());
    return *static_cast<BlockIndex*>(file.GetMemory());
}

TAPSyntaxe* BlockIndex::FindDeclare(TAPSymbolTable& table, std::string_view name, TAPSyntaxe& scope,
                                    NUBString& type) {
    // Other scopes are small, and may go while the memory stays.
    const bool isKept = scope.source != nullptr && scope.GetType() <= STYPE_Bloc;
    BlockIndex temporary;
    BlockIndex& index = isKept ? Of(*scope.source) : temporary;
    index.Serve(table);
    if (isKept && !index.extents.contains(&scope)) index.Read(table, OutermostSearched(scope));
    // A node that a tool made may be a child of nobody.
    if (!index.extents.contains(&scope)) index.Read(table, scope);
    const Declared* found = index.Find(name, index.extents.at(&scope));
    if (found == nullptr) return nullptr;
    type = found->type;
    return found->node;
}

void BlockIndex::Serve(const TAPSymbolTable& table) {
    const Knowledge now = Knowledge::Of(table);
    if (now == knowledge) return;
    knowledge = now;
    declared.clear();
    extents.clear();
    places = 0;
}

const BlockIndex::Declared* BlockIndex::Find(std::string_view name, const Extent& extent) const {
    const auto entries = declared.find(name);
    if (entries == declared.end()) return nullptr;
    const auto first = std::partition_point(entries->second.begin(), entries->second.end(),
                                            [&](const Declared& each) { return each.place < extent.first; });
    return first != entries->second.end() && first->place < extent.past ? &*first : nullptr;
}

void BlockIndex::Read(TAPSymbolTable& table, TAPSyntaxe& top) {
    struct Level {
        TAPSyntaxe* node;
        int first; // place
        int nextChild = 1;
    };
    std::vector<Level> open = {{&top, places}}; // from the top down to the node in hand
    while (!open.empty()) {
        Level& level = open.back();
        TAPSyntaxe& node = *level.node;
        const bool isInstruction = node.GetType() == STYPE_Instruction;
        if (!isInstruction && level.nextChild <= node.ChildCount()) {
            TAPSyntaxe* child = node.Child(level.nextChild++);
            if (HoldsStatements(*child)) open.push_back({child, places});
            continue;
        }
        if (isInstruction) {
            ReadInstruction(table, node);
        } else {
            ReadArguments(table, HeadOf(&node));
        }
        if (&node == &top || node.GetType() <= STYPE_Bloc)
            extents.insert_or_assign(&node, Extent{level.first, places});
        open.pop_back();
    }
}

void BlockIndex::ReadInstruction(TAPSymbolTable& table, TAPSyntaxe& instruction) {
    const DeclaredVariables vars(table, &instruction);
    for (int i = 1; i <= vars.Size(); ++i) {
        const char* name = vars[i].name;
        Add(name != nullptr ? name : "", &instruction, vars[i].type);
    }
}

// A plain function's arguments aren't searched.
void BlockIndex::ReadArguments(TAPSymbolTable& table, TAPSyntaxe* head) {
    NUBString className;
    NUBString methodName;
    TAPSyntaxe* args = nullptr;
    if (table.IsMethodImplementation(head, className, methodName, args) == 0) return;
    for (int i = 1; TAPSyntaxe* arg = ChildOf(args, i); ++i) {
        NUBString type;
        NUBString name;
        if (table.GetArgType(arg, type, name) == 1) Add(name.View(), arg, type.View());
    }
}

void BlockIndex::Add(std::string_view name, TAPSyntaxe* node, std::string_view type) {
    declared.try_emplace(std::string(name)).first->second.push_back({places++, node, NUBString(type)});
}

bool BlockIndex::IsReturned(std::string_view name, TAPSyntaxe& block) {
    if (block.source == nullptr) return ReturnedNames(block).contains(name);
    auto& known = Of(*block.source).returned;
    auto entry = known.find(&block);
    if (entry == known.end()) entry = known.emplace(&block, ReturnedNames(block)).first;
    return entry->second.contains(name);
}

} // namespace ostraka::detail
