#pragma once

// A symbol table over files made from one input, and all that its records say.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

#include <ostraka/symbols/TAPSymbolTable.h>

#include "Check.h"

// A folder in memory. Form feeds divide an input into the text that is loaded and the headers "a.h" and
// "b.idl". Each may include all of them, since they stand where the header search looks.
class InputFiles {
public:
    InputFiles(const std::uint8_t* data, std::size_t size, const char* name)
        : path(folder + name), paths{path, folder + "a.h", folder + "b.idl"} {
        setenv("QxqxOS_VAR", "unix_a", 1);
        std::filesystem::create_directories(folder);
        std::string_view rest(reinterpret_cast<const char*>(data), size);
        for (const std::string& file : paths) {
            const std::size_t end = std::min(rest.find('\f'), rest.size());
            std::ofstream(file) << rest.substr(0, end);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    ~InputFiles() { std::filesystem::remove_all(folder); }
    InputFiles(const InputFiles&) = delete;
    InputFiles& operator=(const InputFiles&) = delete;

    // Gives each file the text of the next one, and lets the last vanish.
    void Shift() const {
        for (std::size_t i = 1; i < std::size(paths); ++i) std::filesystem::rename(paths[i], paths[i - 1]);
    }

private:
    const std::string folder = (std::filesystem::exists("/dev/shm") ? "/dev/shm/ostraka_" : "/tmp/ostraka_") +
                               std::to_string(getpid()) + "/LocalInterfaces/";

public:
    const std::string path; // of the text

private:
    const std::string paths[3];
};

// The text of all records and names; empty for a table without files.
class Records {
public:
    explicit Records(const TAPSymbolTable& table) {
        for (const TAIndex* index : {&table.types, &table.classNames, &table.interfaceNames, &table.enumNames,
                                     &table.typedefNames, &table.scannedFiles, &table.trees})
            for (int i = 0; i < index->size; ++i) Add(index->keys[i]);
        for (int i = 0; i < table.macros.size; ++i)
            Add(table.macros.keys[i], static_cast<const char*>(table.macros.values[i]));
        for (int i = 0; i < table.functions.size; ++i) {
            const TAPSyntaxePath path(static_cast<TAPSyntaxe*>(table.functions.values[i]));
            Add(table.functions.keys[i]);
            Add(&path);
        }
        for (int i = 0; i < table.sources.size; ++i)
            Add(*static_cast<TAPDefSource*>(table.sources.values[i]));
        for (int i = 0; i < table.classIndex.size; ++i)
            Add(*static_cast<TAPDefClass*>(table.classIndex.values[i]));
    }

    std::string text;

private:
    template <class... Texts>
    void Add(const char* first, Texts... more) {
        text += first != nullptr ? first : "(null)";
        text += '|';
        if constexpr (sizeof...(more) > 0) Add(more...);
    }
    void Add(const TAPSyntaxePath* path) {
        if (path == nullptr) return;
        Add(path->filePath.CastToCharPtr());
        for (int i = 1; i <= path->posInTree.size; ++i) text += std::to_string(path->posInTree[i]) + ' ';
    }
    void AddNumbers(std::initializer_list<int> numbers) {
        for (const int number : numbers) text += std::to_string(number) + ' ';
    }
    void Add(const TAPDefVar& var) {
        Add(var.type, var.name);
        AddNumbers({var.visibility, var.direction});
        Add(var.path);
    }
    void Add(const TAPDefMethod& method) {
        Add(method.name, method.returnedType);
        AddNumbers({method.visibility, method.binding, method.inlined});
        Add(method.path);
        Add(method.implPath);
        AddAll(method.args);
    }
    void Add(const TAPDefClass& cls) {
        Add(cls.name, cls.parent);
        AddNumbers({cls.kind, cls.dispatch});
        Add(cls.path);
        Add(cls.bodyPath);
        AddAll(cls.methods);
        AddAll(cls.vars);
        for (int i = 1; i <= cls.tied.Size(); ++i) Add(cls.tied[i]->name);
    }
    void Add(const TAPDefSource& source) {
        Add(source.name.CastToCharPtr(), source.framework);
        AddNumbers({source.fileKind, source.interfaceKind, source.nbLine, source.nbCodeLine});
        Add(source.path);
        AddAll(source.classes);
        AddAll(source.implMethods);
        for (int i = 1; i <= source.includes.Size(); ++i) Add(source.includes[i]->name.CastToCharPtr());
        for (int i = 0; i < source.forwardClasses.size; ++i) Add(source.forwardClasses.keys[i]);
    }
    template <class List>
    void AddAll(const List& list) {
        for (int i = 1; i <= list.Size(); ++i) Add(*list[i]);
        text += '\n';
    }
};

// A node that was answered is part of a tree that stands; null is a good answer too.
inline void CheckStands(const TAPSymbolTable& table, TAPSyntaxe* node) {
    if (node == nullptr) return;
    while (TAPSyntaxe* parent = node->GetParent()) {
        CHECK(parent->Child(node->GetPosInFather()) == node);
        node = parent;
    }
    CHECK(table.trees[node->GetSource().CastToCharPtr()] == node);
}

// Loads, unloads in both ways, and loads again, fully and for the types alone.
inline void CheckLoads(const InputFiles& files, int (TAPSymbolTable::*load)(const char*, int)) {
    const char* path = files.path.c_str();
    auto* table = new TAPSymbolTable;
    const int result = (table->*load)(path, 1);
    const std::string records = Records(*table).text;
    CHECK(result == 0 || result == 2 || result == 3);
    CHECK((table->*load)(path, 1) == 0 && Records(*table).text == records);
    table->UnLoadAllFiles();
    CHECK(Records(*table).text.empty());
    CHECK((table->*load)(path, 1) == result && Records(*table).text == records);
    while (table->sources.size > 0)
        CHECK(table->UnLoadFile(table->sources.keys[table->sources.size / 2]) == 0);
    CHECK(table->classIndex.size + table->functions.size + table->trees.size == 0);
    const int again = (table->*load)(path, 1);
    CHECK(again == result);

    table->UnLoadAllFiles();
    CHECK((table->*load)(path, 0) == result && (table->*load)(path, 0) == 0);
    CHECK(table->classIndex.size + table->functions.size + table->sources.size == 0);
    (table->*load)(path, 1);
    table->Release();
}
