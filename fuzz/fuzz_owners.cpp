// People, an empty line, and the lines of an ownership listing.

#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/workspace/FrameworkResponsibility.h>

#include "Check.h"
#include "Lines.h"

namespace {

bool Has(const NUBListValNUBString& list, const NUBString& text) {
    for (const NUBString& element : list)
        if (element == text) return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    NUBListValNUBString people, lines, table, fields;
    bool behind = false;
    for (const std::string& line : LinesOf(data, size)) {
        (behind ? lines : people).Append(line.c_str());
        behind = behind || line.empty();
    }
    MakeFrameworkOwnerDico(people, lines, table);
    FrameworkOwners owners(people);
    NUBListValNUBString entries;
    for (const NUBString& line : lines) CHECK(owners.AppendEntries(line, entries) <= 2);
    entries.QuickSort(CompareTAStrings);
    CHECK(entries.Size() == table.Size());
    for (int i = 1; i <= table.Size(); ++i) CHECK(entries[i] == table[i]);
    for (int i = 1; i <= table.Size(); ++i) {
        CHECK(i == 1 || table[i - 1] <= table[i]);
        CHECK(Split(table[i], fields, " ", 2) == 2);
        // The lists answer with somebody of the people, and the table with what stands in it.
        const NUBString owner = GetFWResponsible(fields[1], people, lines);
        CHECK(owner == "." || (Has(people, owner) && Has(table, fields[1] + " " + owner)));
        const NUBString found = GetFWResponsible(fields[1], table);
        CHECK(found.Length() > 0);
    }
    return 0;
}
