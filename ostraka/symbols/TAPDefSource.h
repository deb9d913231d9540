#pragma once

#include <vector>

#include <basalt/NUBString.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefEntity.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/syntax/TAPFailure.h>
#include <ostraka/syntax/TAPSyntaxePoint.h>

class TAPDefSource;

using NUBListPtrTAPDefSource = ostraka::detail::PointerList<TAPDefSource>;

// An argument in a file of interfaces that couldn't be read. Its method stands without it and without the
// arguments behind it.
struct RefusedArgument {
    enum class Cause {
        TooFewWords, // it needs a direction, a type and a name
        NoDirection, // it begins with something else
    };

    Cause cause;
    TAPSyntaxePoint point; // where it begins
    NUBString text;        // its words, with a blank between each two
};

// A file that was loaded. It holds one reference on each class that it declares and each method that it
// implements. Its `path` addresses the root of the tree and is null until the tree exists.
class OSTRAKA_EXPORT TAPDefSource : public TAPDefEntity {
public:
    // By the extension: ".h", ".cpp", ".c", ".idl".
    enum FileKind : int { OtherFile = 0, Header = 1, CppFile = 2, CFile = 3, IdlFile = 4 };
    // By the directory for interfaces that the file lies in.
    enum InterfaceKind : int {
        PublicInterface = 11,
        ProtectedInterface = 12,
        PrivateInterface = 13,
        LocalInterface = 14,
        NoInterface = 15,
    };

    int fileKind = OtherFile;
    int interfaceKind = NoInterface;
    NUBString name;  // the path, as given
    int nbLine = -1; // both -1 until the file has been read
    int nbCodeLine = -1;
    const char* framework; // a key of `fws`; sources of one framework have one pointer
    NUBListPtrTAPDefClass classes;
    NUBListPtrTAPDefMethod implMethods;
    NUBListPtrTAPDefSource includes; // not counted; an entry goes when its file is unloaded
    TAIndex forwardClasses;          // names that the file only declares forward; null values
    TAPFailure failure;              // why the file has no tree, or an empty one as it can't be read

    // Whether the file is read for interfaces, as IDL or besides its C++.
    bool readForInterfaces = false;
    // Arguments of methods in interfaces that were refused, in the order of the text.
    std::vector<RefusedArgument> refusedArguments;

    // The names of all frameworks met by the process; never emptied.
    static TAIndex fws;

    // Classifies the path and looks for the framework among the directories above it. `root` may be null.
    TAPDefSource(const NUBString& fileName, TAPSyntaxe* root, TAPSymbolTable* table);
    ~TAPDefSource() override;

    int GetDefKind() override;

    NUBString GetName() const { return name; }
    int GetNbLine() const { return nbLine; }
    int GetNbCodeLine() const { return nbCodeLine; }

    // Take a reference, unless it is null; return 0.
    int AddDefClass(TAPDefClass* defClass);
    int AddImplMethod(TAPDefMethod* method);

    // Appends to `includes`, and sees to it that the entry goes when `included` is unloaded or dies.
    void AddInclude(TAPDefSource* included);
    // Takes this source out of the `includes` of all others.
    void LeaveIncluders();
    // Empties `includes`.
    void ForgetIncludes();

private:
    std::vector<TAPDefSource*> includers; // sources that AddInclude has given this one, once for each entry
};
