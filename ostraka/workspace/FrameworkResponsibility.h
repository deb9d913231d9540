#pragma once

// Who owns a framework, from two lists of texts: an ownership listing and the names of the people.
//
// A line of the listing is split at blanks and says something in either form, or both:
//
//     FW: Alpha RESP: xyz ...             at least 4 fields
//     any any any any FW:Beta RESP:abc    exactly 6
//
// The tag of an owner is his code in upper case between two dots, ".XYZ.", and he is the last of the people
// whose name ends in it and holds it nowhere before. The words, codes and names are compared without regard
// to case, frameworks as they stand. Any line and any name is taken; what fits no form says nothing.

#include <memory>

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>

// Appends an entry "framework owner" for each framework that a line names, the tag standing in for an owner
// whom the people don't have; then sorts the whole table by `CompareTAStrings`. Returns 0.
OSTRAKA_EXPORT int MakeFrameworkOwnerDico(const NUBListValNUBString& people, const NUBListValNUBString& lines,
                                          NUBListValNUBString& table);

// Gives the entries of one line at a time. The people are sorted once, and have to outlive it unchanged.
class OSTRAKA_EXPORT FrameworkOwners {
public:
    explicit FrameworkOwners(const NUBListValNUBString& people);
    ~FrameworkOwners();
    FrameworkOwners(const FrameworkOwners&) = delete;
    FrameworkOwners& operator=(const FrameworkOwners&) = delete;

    // Appends an entry for each framework that the line names; returns their number, 0 to 2.
    int AppendEntries(const NUBString& line, NUBListValNUBString& table);

private:
    class Search;
    std::unique_ptr<Search> search;
};

// The owner by the last line that names the framework; "." without a line, or when the people don't have him.
OSTRAKA_EXPORT NUBString GetFWResponsible(const NUBString& framework, const NUBListValNUBString& people,
                                          const NUBListValNUBString& lines);
// The owner by a sorted table as `MakeFrameworkOwnerDico` makes it, found by halving; "." when it has none.
OSTRAKA_EXPORT NUBString GetFWResponsible(const NUBString& framework, const NUBListValNUBString& table);
