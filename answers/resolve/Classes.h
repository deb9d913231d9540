#pragma once

// The classes of a code base, structs, unions, templates and interfaces among them, with all their bases.

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <answers/resolve/Resolver.h>

namespace ostraka::answers {

struct ClassBase {
    std::string name; // as written: "gui::List<int>"
    Access access = Access::None;
    bool isVirtual = false;
    int entity = Names::none; // the class that it means, where some file declares it
};

struct ClassEntry {
    DeclarationRef ref;
    int entity = Names::none;
    FactKind kind = FactKind::Class;
    bool isTemplate = false;
    std::string name; // with its scopes: "gui::Frame"
    std::vector<ClassBase> bases;
    std::uint32_t begin = 0; // of the statement
    std::uint32_t at = 0;    // of the name
};

class ClassList {
public:
    // The classes with a body of these files; those within functions only if wanted, since whole bodies are
    // read for them. These have no index in their reference, and no entity.
    ClassList(CodeBase& known, Names& allNames, Resolver& asked, const std::vector<int>& files,
              bool withLocals = false);

    // By name, file and place.
    const std::vector<ClassEntry>& All() const { return entries; }

    // Indexes of the entries of that name: the whole name, or the end of it behind `::`.
    std::vector<int> Find(std::string_view name) const;
    // Indexes of all that have the class among their bases, at any depth. A base may be one by its written
    // name alone, if no file declares it.
    std::vector<int> DerivedFrom(std::string_view name) const;
    // Entries that are derived from the entry directly, and entries of its direct bases.
    std::vector<int> Below(int entry) const;
    std::vector<int> BasesOf(int entry) const;

    // Entries below which all others stand: those without a base that is among them, and one of each circle.
    std::vector<int> Tops() const;

    // Whether some class has a base of that name.
    bool IsBase(std::string_view name) const;

private:
    void AddLocals(CodeBase& known, int file);
    bool Means(const ClassBase& base, std::string_view name) const;

    std::vector<ClassEntry> entries;
    std::unordered_map<int, std::vector<int>> ofEntity;  // indexes of entries
    std::unordered_map<int, std::vector<int>> derivedOf; // indexes of the entries derived from an entity
};

// The name without its scopes and template arguments.
std::string_view LastName(std::string_view name);

} // namespace ostraka::answers
