#pragma once

#include <memory>

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TACallback.h>
#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefSource.h>
#include <ostraka/symbols/TAPDefVar.h>
#include <ostraka/syntax/TAPSyntaxe.h>
#include <ostraka/syntax/TAPSyntaxePath.h>

namespace ostraka {
struct HeaderTrace;
namespace detail {
class DroppedFunctions;
class HeaderMemory;
class LineOfBases;
} // namespace detail
} // namespace ostraka

// The files that a tool has loaded, what they declare, and the answers to questions about it.
//
// The table owns the trees and the records through its indexes; what it hands out is borrowed, and whoever
// keeps a record takes a reference of his own. A node is good as long as the tree of its file: until
// UnLoadFile or DropTree of that file, UnLoadAllFiles, DropTrees, or the table's end. Records outlive their
// tree and find their nodes again, see TAPDefEntity; with the table gone they mustn't be asked for anything
// that it holds.
//
// A declaration can be told only where its types are known, so a full load of a file loads the headers that
// it includes first. Subscribers of the table receive event 1 for each file that is loaded: the TAPSourceFile
// as first data and its raw text as second.
//
// Results of the operations differ: each says what 0 and 1 mean. Types are texts: a name with its marks.
class OSTRAKA_EXPORT TAPSymbolTable : public TACallbackSubscriber,
                                      public TACallbackPublisher,
                                      public TARefCounter {
public:
    NUBListValNUBString concatenation; // the workspace roots, the first having precedence
    TAIndex headers;                   // base name of an exported header or IDL file: its path, a copy
    TAIndex generatedHeaders;          // base name of a generated exported header: its path, a copy
    TAIndex functions; // name of a function declared at file level: the instruction, or null once dropped
    TAIndex keywords;  // the words that may stand in a type beside its name
    TAIndex basicTypes;
    TAIndex types;          // every name of a type that was met
    TAIndex macros;         // name of a macro: the first word of its text, a copy
    TAIndex classNames;     // of classes other than interfaces
    TAIndex interfaceNames; // of interfaces
    TAIndex enumNames;
    TAIndex typedefNames;
    TAIndex trees;        // path of a file: its root, a TAPSyntaxe with the one reference of the table
    TAIndex sources;      // path of a file: its TAPDefSource, one reference held
    TAIndex scannedFiles; // paths of files that went through a scan-only load
    TAIndex classIndex;   // name of a class: its TAPDefClass, one reference held
    NUBString errMsg;     // the last failure; a success leaves it alone
    NUBString osName;     // the value of QxqxOS_VAR
    int lazyHeaders = 1;  // 0: the header of a class declared forward is scanned for its types

    // What a header is read as. False: what a file of interfaces includes is IDL, and of what others include
    // all that doesn't end in ".h". So it depends on who includes it first, and classes in what is read as
    // IDL aren't found. True: its own ending decides, see EndsAsIdl, whoever includes it; and what files of
    // interfaces include, directly or not, is read for its interfaces too.
    bool headersByEnding = false;

    // How files are read that are loaded from here on; null for none of the settings.
    std::shared_ptr<const TAPLexicalSettings> lexicalSettings;

    // Ends the process with status 1 when QxqxOS_VAR isn't set.
    TAPSymbolTable();
    ~TAPSymbolTable() override;
    TAPSymbolTable(const TAPSymbolTable&) = delete;
    TAPSymbolTable& operator=(const TAPSymbolTable&) = delete;

    // ---- Loading

    // Load a C++ file, respectively an IDL file: fully if `full` isn't 0, with the headers that it includes
    // and with a record and a tree that stay; else for the sake of its types alone, and neither stays. 0 on
    // success, also for a file that was loaded already; 1 for a null buffer; 2 if the text couldn't be
    // normalised; 3 if the tree couldn't be built. The table takes the buffer over. A header that fails
    // doesn't stop the file that includes it. Includes may be as deep as there are files.
    int LoadFile(const char* name, int full);
    int LoadFile(TAFileBuffer* buffer, int full);
    int LoadIdlFile(const char* name, int full);
    int LoadIdlFile(TAFileBuffer* buffer, int full);

    // Whether the path ends in ".idl" or ".IDL".
    static bool EndsAsIdl(const char* path);

    // Makes the tree of a file and nothing else. 1 on success; 2 if the file can't be read or normalised, 3
    // if the tree couldn't be built. A file that has a tree ends in FATAL.
    int LightLoadFile(const NUBString& name);

    // Drops the record, the classes and the tree of a file; names of types and macros stay. 0, or 1 if there
    // is no such record.
    int UnLoadFile(const char* name);
    // Drops everything but the headers of the workspaces, the words of the language and `errMsg`.
    void UnLoadAllFiles();

    // Release the tree of a file, respectively all trees, and keep what was read from them: records with
    // their texts and paths, the includes, and all names. The files still count as loaded. 0, or 1 if there
    // is no such tree.
    //
    // Nodes of a dropped tree are gone, and `functions` holds null for what it declares. Who asks a record or
    // GetFunctionDeclarationLocation for a node gets one of a new tree, which is made as by LightLoadFile and
    // stays; or null if the file is gone, as a text in memory is. The file has to be as it was.
    int DropTree(const char* name);
    void DropTrees();

    // Passes event 1 of a source file on to the subscribers of the table. 0.
    int ReceiveCallback(TACallbackPublisher* publisher, int event, void* data1, void* data2) override;

    // Enters a tree and takes over the caller's reference. 0.
    int AddSyntaxeInTable(const NUBString& name, TAPSyntaxe* root);

    // ---- What is loaded

    // The node at the path; a file without a tree is read again. Null for a null path, for a position that
    // the tree doesn't have, and with a text in `errMsg` for a file that can't be read any more.
    TAPSyntaxe* GetSyntaxe(TAPSyntaxePath* path);

    TAPDefSource* GetSource(const char* name) const; // or null
    TAPDefClass* GetClass(const char* name) const;   // or null

    // Puts into `names` the names of the classes whose kind has a bit of `mask`, in ascending order.
    void GetClassNames(NUBListValNUBString& names, int mask) const;

    // "SymboleTable: " and the last failure.
    NUBString GetErrMsg() const;

    // ---- Headers

    // Takes the workspace roots from a list separated by ":" and reads which headers they export.
    void SetConcatenation(const TAFileName& list);

    // The path of a header that `currentFile` names, or the null name.
    TAFileName SearchHeaderFile(const char* currentFile, const char* header) const;

    // Folders around files are listed, rather than asked for each header. A listing stands for its folder
    // while a file is loaded with all that it includes, unless subscribers were told of a file meanwhile; the
    // next load looks whether the folder has changed. Searches outside of loads ask the system each time.
    //
    // With `remember`, from now on listings stand as long as this isn't called again, for all loads and
    // searches; else back to that. Either way, all listings are forgotten, as they are by UnLoadAllFiles.
    void RememberFolders(bool remember);

    // The same search with all its places, told in <ostraka/symbols/HeaderTrace.h>.
    ostraka::HeaderTrace TraceHeaderFile(const char* currentFile, const char* header) const;

    // ---- The scan of a tree

    // Enter what the children of the root declare into `source` and the indexes. With `full` 0 classes are
    // not kept, only their names. 0, also for a null root or source, which enters nothing.
    int SearchDeclarations(TAPSyntaxe* root, TAPDefSource* source, int full);
    int SearchIdlDeclarations(TAPSyntaxe* root, TAPDefSource* source, int full);

    // 1 for a variable declaration, with new records appended to `vars` that the caller releases; 2 for a
    // function declaration; 0 for neither; -1 if the node gives no sign either way, as a null one does.
    int IsVariableOrFunctionDeclaration(TAPSyntaxe* node, NUBListPtrTAPDefVar& vars);

    // 2 for a function declaration, else 0. `argsNode` becomes the argument list, or null if the parentheses
    // are empty. After 0 the results mean nothing. A constructor has an empty returned type.
    int IsFunctionDeclaration(TAPSyntaxe* node, NUBString& returnedType, NUBString& name,
                              TAPSyntaxe*& argsNode);

    // 1 if the node is the head of an implementation, else 0, and then the results mean nothing. `argsNode`
    // becomes child 2 of the call form, whatever its type, or null if the parentheses are empty.
    int IsMethodImplementation(TAPSyntaxe* node, NUBString& className, NUBString& methodName,
                               TAPSyntaxe*& argsNode);
    int IsFunctionImplementation(TAPSyntaxe* node, NUBString& name, TAPSyntaxe*& argsNode);

    // ---- Variable declarations

    // Walks an expression and appends its words to `words`: types, marks, names, "," and brackets, without
    // initialisers. With `strict` 1 the words reached first have to be a type. 1 a variable, 2 a function, 0
    // no declaration, -1 no sign either way.
    int IsVariableDeclarationInternal(TAPSyntaxe* node, NUBListValNUBString& words, int strict);

    // The number of records that the words gave; they are appended to `vars` and are the caller's.
    int GetVariablesAndType(TAPSyntaxe* node, NUBListValNUBString& words, NUBListPtrTAPDefVar& vars);

    // 1 if the argument has a type that is known, else 0, and then the texts mean nothing. The IDL form
    // doesn't set the name of a plain declaration, and leaves its last argument alone.
    int GetArgType(TAPSyntaxe* node, NUBString& type, NUBString& name);
    int GetIdlArgType(TAPSyntaxe* node, NUBString& type, NUBString& name, int& unused);

    // 1 if the text is one known name of a type, with marks and keywords, else 0.
    int IsARecognizedType(const NUBString& type) const;

    // ---- Types

    // The type of an expression: 0 on success, 1 if it can't be told, and then `type` means nothing.
    int GetType(TAPSyntaxe* node, NUBString& type);

    // 1 if the two types fit, marks and "const" aside, or the first is derived from the second; else 0.
    int MatchType(const NUBString& first, const NUBString& second) const;

    // 1 if the names, marks and "_var" aside, are equal or `base` stands in the line of bases, else 0. The
    // classes that a long line has led through keep how it ended for the base that was asked for last.
    int InheritFrom(const char* derived, const char* base) const;

    // 1 if the node has, respectively the text is, a basic type; else 0; -1 for a node without declaration.
    int IsBasicType(TAPSyntaxe* node);
    int IsBasicType(const char* type) const;

    // ---- Names, asked from a node of a loaded tree
    //
    // The first question about a block reads all of it and what lies around it up to the file's level;
    // further ones look up what was read. That stays until the tree goes, is changed by Append or Build, or
    // other words are known as types; a change of a node's fields goes unnoticed.

    // The type of the object that the node names, or an empty text.
    NUBString FindClass(TAPSyntaxe* node);

    // The node that declares the name, with its type in `type`, or null. A null scope searches the blocks
    // around the name, innermost first; else the search goes into the scope. The last argument decides
    // nothing.
    TAPSyntaxe* FindDeclare(TAPSyntaxe* name, NUBString& type, TAPSyntaxe* scope, int nested);

    // The class in whose method the node stands, or an empty text.
    NUBString GetClassName(TAPSyntaxe* node);

    // The function, or "Class::method", in which the node stands: 0 on success, else 1.
    int GetMethodName(TAPSyntaxe* node, NUBString& name);

    // The object on which the method with that identifier is called, or null. `*castType` becomes the type
    // to which the object is cast, or null.
    TAPSyntaxe* FindObject(TAPSyntaxe* node, TAPSyntaxe** castType);

    // Whether a variable goes back to the caller: -1 if it is returned; the position of the argument that it
    // is, with the number of arguments in `nbArgs`; else 0. Tools pass `mode` 0.
    int IsReturned(TAPSyntaxe* node, const char* name, int& nbArgs, int mode);

    // Appends the variables declared in the subtree, which the caller releases.
    void GetVariableDefinitions(TAPSyntaxe* node, NUBListPtrTAPDefVar& vars);

    // The variable of the list that has this name and is valid at the place, or null.
    TAPDefVar* GetVariable(const char* name, TAPSyntaxe* at, NUBListPtrTAPDefVar& vars);

    // The node that declares the function, respectively the class, or null.
    TAPSyntaxe* GetFunctionDeclarationLocation(const char* name) const;
    TAPSyntaxe* GetClassDeclarationLocation(const char* name) const;

private:
    friend class TAPDefClass;
    friend class ostraka::detail::HeaderMemory;

    // The address at which the table holds this text, to its end.
    const char* HoldText(const char* text) { return texts.Append(text, nullptr, 0); }
    void ReleaseAllFiles();

    TAIndex texts;        // names of classes and of their bases
    NUBString rootsStart; // the working directory when the roots were read, where relative ones start
    const std::unique_ptr<ostraka::detail::LineOfBases> bases;
    const std::unique_ptr<ostraka::detail::HeaderMemory> headerMemory;
    const std::unique_ptr<ostraka::detail::DroppedFunctions> droppedFunctions;
};
