// What a file declares: each line of the input read as a statement, and the outline of the whole. Texts lie
// in what was read, places in the file and on the name.

#include <string>
#include <vector>

#include <answers/facts/DeclarationText.h>
#include <answers/facts/Outline.h>

#include "Check.h"
#include "Lines.h"

using namespace ostraka::answers;

namespace {

// One statement or body, and what was read in it, as a text.
class Reading {
public:
    explicit Reading(std::string_view whole) : text(whole) {}

    std::string Dump() {
        for (const bool hasBody : {false, true}) AddDeclaration(ReadDeclaration(text, hasBody));
        dump += BelongsBehindArguments(text) ? "+" : "-";
        return dump;
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

// Every place is one of the file, and a name begins at its own.
void CheckPlaces(const OutlineEntry& entry, const FileFacts& facts, std::string_view text) {
    for (const Place& place : {entry.place, entry.namePlace})
        CHECK(place.line >= 1 && place.column >= 1 && facts.OffsetOf(place) <= text.size());
    const std::size_t at = facts.OffsetOf(entry.namePlace);
    CHECK(entry.name.empty() || (at < text.size() && text[at] == entry.name.front()));
}

std::string OutlineDump(std::string_view text, Dialect dialect) {
    const TokenList tokens(text);
    const FileFacts facts = ReadFacts(tokens, Depth::Declarations, dialect);
    std::string dump;
    int depth = 0;
    for (const OutlineEntry& entry : OutlineOf(tokens, facts)) {
        CheckPlaces(entry, facts, text);
        CHECK(entry.depth >= 0 && entry.depth <= depth + 2);
        depth = entry.depth;
        if (entry.declared >= 0)
            dump += SortOf(facts, facts.declared[static_cast<std::size_t>(entry.declared)]);
        dump +=
            NameOf(entry.kind) + entry.scope + entry.name + entry.text + entry.arguments + entry.type + "\n";
    }
    return dump;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const std::string& line : LinesOf(data, size)) CHECK(Reading(line).Dump() == Reading(line).Dump());
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const Dialect dialect : {Dialect::Cpp, Dialect::Idl})
        CHECK(OutlineDump(text, dialect) == OutlineDump(text, dialect));
    return 0;
}
