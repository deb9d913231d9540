#pragma once

// A class of which the symbol table has no record, shown as its file and the rest of the code base tell it:
// in a namespace, a struct, a template, or declared in words that the table doesn't take for a class.

#include <string>
#include <vector>

#include <answers/resolve/Classes.h>

#include "cli/Run.h"
#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"

namespace ostraka::tool {

class PlainClasses {
public:
    // The classes of these files, and of all others of the code base.
    PlainClasses(const Request& asked, const Session& session, const std::vector<std::string>& paths);

    // Shows the class whole, or the methods where `name` is one's, as Ship::Accept. False where there is
    // neither.
    bool Show(const std::string& name, Result& result);

    // The class with its bases and all that is derived from it, one a line; all classes where the name is
    // empty. False where there is none.
    bool ShowKin(const std::string& name, Result& result);

private:
    ClassList List(bool onlyNamed);
    void PrintClass(const ClassList& list, int number, std::string& out);
    void WriteClass(JsonWriter& json, const ClassList& list, int number);
    void PrintMember(const Declared& declared, int file, std::string& out);
    bool ShowMethods(const std::string& name, Result& result);
    std::string PlaceOf(const DeclarationRef& ref, std::uint32_t at);
    // What the body of a class declares, and where what it declares is implemented elsewhere.
    std::vector<int> MembersOf(const ClassEntry& entry);
    DeclarationRef ImplementationOf(const ClassEntry& entry, const Declared& method);

    const Request& request;
    std::vector<std::string> paths;
    CodeSession code;
};

} // namespace ostraka::tool
