#pragma once

// Who is called what: all declarations of the files that were asked for, under their name and the scope that
// holds them. Scopes of one name in several files are one: the namespace `gui` wherever it is opened, the
// class `gui::Frame` with its members in the header and its implementations elsewhere.

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <answers/resolve/CodeBase.h>

namespace ostraka::answers {

// A declaration of a file.
struct DeclarationRef {
    int file = -1;
    int index = -1;

    bool IsNone() const { return file < 0; }
    bool operator==(const DeclarationRef&) const = default;
};

using Refs = std::vector<DeclarationRef>;

class Names {
public:
    static constexpr int none = -1;
    static constexpr int global = 0; // the entity of files

    explicit Names(CodeBase& known) : base(known) { entities.push_back({}); }

    // Takes in what the file declares outside of bodies. Once for each file.
    void Add(int file);
    bool Has(int file) const { return entitiesOfFile.contains(file); }

    int IdOf(std::string_view name) const; // of a name; none where nothing is called so
    int NameCount() const { return static_cast<int>(nameTexts.size()); } // ids are from 0
    std::string_view TextOf(int name) const { return nameTexts[static_cast<std::size_t>(name)]; }

    // The entity of a scope of a file that was added; that of the nearest one around where it has none.
    int EntityOf(int file, int scope) const;
    // The entity below another; none where there is none.
    int ChildOf(int entity, std::string_view name) const;
    int ParentOf(int entity) const { return entities[static_cast<std::size_t>(entity)].parent; }
    // Of an implementation that stands outside of its scope: the entity that it names.
    int NamedScopeOf(const DeclarationRef& ref) const;
    std::string_view NameOf(int entity) const;
    // The whole name: "gui::Frame".
    std::string QualifiedName(int entity) const;

    // What the entity itself declares under the name; implementations elsewhere aren't among it.
    const Refs& In(int entity, int name) const;
    // Everything of that name outside of bodies.
    const Refs& All(int name) const;
    // Implementations that stand outside of the entity: `int Frame::Show() {`.
    const Refs& ImplementedFor(int entity, int name) const;
    // Declarations of the class or enum with a body.
    const Refs& DefinitionsOf(int entity) const {
        return entities[static_cast<std::size_t>(entity)].definitions;
    }

    // The files that name the entity, by declaring it or by implementing what is in it.
    const std::vector<int>& FilesOf(int entity) const {
        return entities[static_cast<std::size_t>(entity)].files;
    }

    // Where a namespace is opened.
    const Refs& OpeningsOf(int entity) const { return entities[static_cast<std::size_t>(entity)].openings; }

    struct UsingRef {
        int file;
        int index;
    };
    const std::vector<UsingRef>& UsingsOf(int entity) const;

    // Macros by name.
    struct MacroRef {
        int file;
        int index;
    };
    const std::vector<MacroRef>& MacrosOf(int name) const;

private:
    struct Entity {
        int parent = none;
        int name = none;
        Refs definitions;
        Refs openings;
        std::vector<int> files; // that name it
    };

    int Intern(std::string_view name);
    int MakeChild(int file, int entity, int name);
    int MakeQualified(int file, int entity, std::string_view qualifier);
    int MakeEntity(int file, const FileFacts& facts, int scope, const std::vector<int>& of,
                   const std::vector<bool>& isNamedElsewhere);

    static std::uint64_t Key(int entity, int name) {
        return static_cast<std::uint64_t>(static_cast<std::uint32_t>(entity)) << 32 |
               static_cast<std::uint32_t>(name);
    }

    CodeBase& base;
    std::unordered_map<std::string_view, int> nameIds;
    std::vector<std::string_view> nameTexts;
    TextArena texts;
    std::deque<Entity> entities;
    std::unordered_map<std::uint64_t, int> children;
    std::unordered_map<std::uint64_t, Refs> declared;
    std::unordered_map<std::uint64_t, Refs> implemented;
    std::vector<Refs> byName;                           // by name
    std::unordered_map<std::uint64_t, int> namedScopes; // of implementations, by file and index
    std::unordered_map<int, std::vector<UsingRef>> usings;
    std::unordered_map<int, std::vector<MacroRef>> macros;
    std::unordered_map<int, std::vector<int>> entitiesOfFile; // by scope
};

} // namespace ostraka::answers
