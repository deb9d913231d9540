#pragma once

#include <ostraka/Export.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/foundation/TypedLists.h>
#include <ostraka/syntax/TAPSyntaxePath.h>

class TAPSymbolTable;
class TAPSyntaxe;

// Base of the definition records: what a symbol table knows of a file, a class, a method or a variable once
// the tree has been read.
//
// A record never holds a node. It keeps the address of one, which outlives the tree, and asks its table for
// the node when somebody wants it; the table reads the file again if its tree has gone. A node that a record
// gives is good as long as the tree of its file stands, so ask again rather than keep it.
//
// Records are counted. The table is not owned, and a record that outlives it mustn't be asked for nodes, nor
// for texts that its header says are held by the table.
class OSTRAKA_EXPORT TAPDefEntity : public TARefCounter {
public:
    // What GetDefKind answers.
    enum DefKind : int { BareEntity = 0, ClassRecord = 1, MethodRecord = 2, SourceRecord = 3, VarRecord = 4 };
    // Of methods and of variables.
    enum Visibility : int { UnknownVisibility = -1, Public = 0, Protected = 1, Private = 2 };

    TAPSymbolTable* symTab = nullptr; // null only in a bare TAPDefEntity
    TAPSyntaxePath* path = nullptr;   // one reference held; null where there is no declaration

    TAPDefEntity() = default;
    ~TAPDefEntity() override;

    // What the record is, a DefKind.
    virtual int GetDefKind();

    TAPSymbolTable* GetSymTab() const { return symTab; }

    // Without a new reference.
    TAPSyntaxePath* GetSyntaxePath() const { return path; }

    // Shares the path, which gets one more reference, and gives back the one on the old path. Null is taken.
    void SetSyntaxePath(TAPSyntaxePath* newPath);
    // The same with a new path to the node; null leaves the record without one.
    void SetSyntaxe(TAPSyntaxe* node);

    // The node at the path; null without a table, without a path, or when the node can't be found.
    TAPSyntaxe* GetSyntaxe();
};

using NUBListPtrTAPDefEntity = ostraka::detail::PointerList<TAPDefEntity>;
