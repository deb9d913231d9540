#pragma once

// What the records of a table say in words, and what stands at their places.

#include <string>
#include <vector>

#include <answers/facts/Outline.h>
#include <answers/resolve/Names.h>

class TAPDefClass;
class TAPDefMethod;
class TAPSyntaxePath;

namespace ostraka::answers {

// A file as it is read for its outline; without entries where it can't be read.
class OutlinedFile {
public:
    explicit OutlinedFile(const std::string& path, const std::vector<std::string>& droppedWords = {});
    OutlinedFile(const OutlinedFile&) = delete;
    OutlinedFile& operator=(const OutlinedFile&) = delete;

    const FileFacts& Facts() const { return facts; }
    const std::vector<OutlineEntry>& Entries() const { return entries; }
    // The first entry whose statement begins at the place; null where none does.
    const OutlineEntry* EntryAt(const Place& place) const;
    const Declared& DeclaredOf(const OutlineEntry& entry) const {
        return facts.declared[static_cast<std::size_t>(entry.declared)];
    }

private:
    FileFacts facts;
    std::vector<OutlineEntry> entries;
};

// The access that the class gives a method which is implemented outside of it; None where no file that the
// names were taken from declares it.
Access AccessOfImplementation(CodeBase& base, const Names& names, const DeclarationRef& implementation);

// The place of a record in its file.
Place PlaceOf(const TAPSyntaxePath& path);

// Words for the codes of records; "" for what needs no word, as the plain binding.
const char* VisibilityOf(int code);
const char* BindingOf(const TAPDefMethod& method);
const char* DirectionOf(int code);
// "plain", "interface", "component"; several with a comma between them.
std::string KindOf(const TAPDefClass& record);

} // namespace ostraka::answers
