// What a file declares: each line of the input read as a statement, as a list of names and of enumerators,
// and the whole loaded into a table. Texts lie in what was read, places in the file and on the name.

#include <iterator>
#include <string>
#include <vector>

#include <answers/facts/DeclarationText.h>
#include <answers/resolve/Declarations.h>

#include "Lines.h"
#include "LoadedTable.h"

using namespace ostraka::answers;

namespace {

// One statement or body, and what was read in it, as a text.
class Reading {
public:
    explicit Reading(std::string_view whole) : text(whole) {}

    std::string Dump() {
        for (const bool hasBody : {false, true}) AddDeclaration(ReadDeclaration(text, hasBody));
        for (const DeclaredName& name : ReadNamesBehindBody(text)) AddName(name);
        for (const EnumeratorText& value : ReadEnumerators(text)) {
            Add(value.name);
            Add(value.text);
            CHECK(value.name.data() == text.data() + value.at);
        }
        dump += BelongsBehindArguments(text) ? "+" : "-";
        return dump + ReadableLine(text);
    }

private:
    void Add(std::string_view part) {
        CHECK(part.empty() ||
              (part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size()));
        dump += part;
        dump += '|';
    }

    void AddName(const DeclaredName& name) {
        CHECK(!name.name.empty() && name.name.data() == text.data() + name.at);
        Add(name.scope);
        Add(name.name);
        Add(name.type);
        Add(name.marks);
        dump += TypeOf(name) + AsWritten("const char const*", name);
    }

    void AddDeclaration(const DeclarationReading& reading) {
        dump += reading.kind ? NameOf(*reading.kind) : "none";
        if (!reading.kind) return;
        CHECK(reading.begin <= reading.past && reading.past <= text.size());
        Add(text.substr(reading.begin, reading.past - reading.begin));
        Add(reading.arguments);
        CHECK(*reading.kind != DeclarationKind::Function || reading.names.size() == 1);
        for (const DeclaredName& name : reading.names) AddName(name);
    }

    const std::string_view text;
    std::string dump;
};

std::vector<std::string> LinesOfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// The words of the dialect that the stream rewrites; columns behind them aren't those of the file.
bool IsRewritten(const std::string& line) {
    return line.find("NUBLIST") != std::string::npos || line.find("SEQUENCE") != std::string::npos;
}

// Lines that end within a literal aren't counted by the stream, which keeps their ends.
bool HasLinesInLiterals(TAPSymbolTable& table, const std::string& path) {
    const TAPSourceFile& file = *static_cast<TAPSyntaxe*>(table.trees[path.c_str()])->GetTAPSourceFile();
    return std::string_view(file.GetStream(), static_cast<std::size_t>(file.GetSize())).find('\n') !=
           std::string_view::npos;
}

// Every place is one of the file, and a name begins at its own.
void CheckPlaces(const OutlineEntry& entry, const std::vector<std::string>& lines) {
    for (const Place& place : {entry.place, entry.namePlace}) {
        CHECK(place.line >= 1 && place.line <= static_cast<int>(lines.size()) && place.column >= 1);
        const std::string& line = lines[static_cast<std::size_t>(place.line - 1)];
        CHECK(place.column <= static_cast<int>(line.size()));
    }
    const std::string& line = lines[static_cast<std::size_t>(entry.namePlace.line - 1)];
    if (entry.name.empty() || IsRewritten(line)) return;
    CHECK(line[static_cast<std::size_t>(entry.namePlace.column - 1)] == entry.name.front());
}

std::string OutlineOf(TAPSymbolTable& table, const std::string& path) {
    const std::vector<std::string> lines = LinesOfFile(path);
    const bool isExact = !HasLinesInLiterals(table, path);
    std::string dump;
    for (const OutlineEntry& entry : DeclarationsOf(table, path)) {
        if (isExact) CheckPlaces(entry, lines);
        CHECK(entry.depth >= 0 && entry.visibility >= -1 && entry.visibility <= 2);
        dump += NameOf(entry.kind) + entry.scope + entry.name + entry.text + entry.arguments + entry.type +
                std::to_string(entry.namePlace.line) + ":" + std::to_string(entry.namePlace.column) + "\n";
    }
    return dump;
}

std::string OutlinesOf(TAPSymbolTable& table) {
    std::string dump;
    for (int i = 0; i < table.trees.size; ++i) dump += OutlineOf(table, table.trees.keys[i]);
    return dump;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const std::string& line : LinesOf(data, size)) CHECK(Reading(line).Dump() == Reading(line).Dump());
    const InputFiles files(data, size, "text.cpp");
    auto* table = new TAPSymbolTable;
    table->LoadFile(files.path.c_str(), 1);
    CHECK(OutlinesOf(*table) == OutlinesOf(*table));
    for (int i = 0; i < table->classIndex.size; ++i)
        MembersOf(*table, *static_cast<TAPDefClass*>(table->classIndex.values[i]));
    table->Release();
    return 0;
}
