// A tag is looked for at the end of names. Sorted by their last characters, all names that end in one tag
// stand together; and each tag is looked for only once, however many lines have it.

#include <ostraka/workspace/FrameworkResponsibility.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <ostraka/foundation/TextHelpers.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

NUBString upperOf(NUBString text) {
    text.ToUpper();
    return text;
}

bool equalsNoCase(const NUBString& text, const char* upper) {
    return upperOf(text) == upper;
}

// A framework that a line names, and the tag of its owner.
struct Claim {
    NUBString framework;
    NUBString tag;
};

NUBString tagOf(const NUBString& code) {
    return "." + upperOf(code) + ".";
}

std::optional<Claim> claimApart(const NUBListValNUBString& fields) {
    if (!equalsNoCase(fields[1], "FW:") || !equalsNoCase(fields[3], "RESP:")) return std::nullopt;
    return Claim{fields[2], tagOf(fields[4])};
}

// What is joined to `word` by a colon.
std::optional<NUBString> joinedTo(const char* word, const NUBString& field) {
    NUBListValNUBString parts;
    if (Split(field, parts, ":") != 2 || !equalsNoCase(parts[1], word)) return std::nullopt;
    return parts[2];
}

std::optional<Claim> claimJoined(const NUBListValNUBString& fields) {
    if (fields.Size() != 6) return std::nullopt;
    const auto framework = joinedTo("FW", fields[5]);
    const auto code = joinedTo("RESP", fields[6]);
    if (!framework || !code) return std::nullopt;
    return Claim{*framework, tagOf(*code)};
}

// By both forms, in their order.
std::array<std::optional<Claim>, 2> claimsOf(const NUBString& line) {
    NUBListValNUBString fields;
    if (Split(line, fields) <= 3) return {};
    return {claimApart(fields), claimJoined(fields)};
}

bool isTagged(const NUBString& upperName, const NUBString& tag) {
    const int place = upperName.FindPosition(tag);
    return place >= 0 && place == upperName.Length() - tag.Length();
}

class OwnerSearch {
public:
    explicit OwnerSearch(const NUBListValNUBString& allPeople) : people(allPeople) {
        for (int i = 1; i <= people.Size(); ++i) byEnding.push_back({upperOf(people[i]), i});
        std::sort(byEnding.begin(), byEnding.end(),
                  [](const Name& a, const Name& b) { return endsBefore(a.upper.View(), b.upper.View()); });
    }

    // The name of the owner, or the tag itself.
    const NUBString& ownerOf(const NUBString& tag) {
        const auto [entry, isNew] = found.try_emplace(std::string(tag.View()), 0);
        if (isNew) entry->second = search(tag);
        return entry->second > 0 ? people[entry->second] : tag;
    }

private:
    struct Name {
        NUBString upper;
        int position;
    };

    static bool endsBefore(std::string_view a, std::string_view b) {
        return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    }

    // Position of the last of the people that the tag fits, or 0.
    int search(const NUBString& tag) const {
        int last = 0;
        auto name = std::lower_bound(byEnding.begin(), byEnding.end(), tag,
                                     [](const Name& each, const NUBString& ending) {
                                         return endsBefore(each.upper.View(), ending.View());
                                     });
        for (; name != byEnding.end() && name->upper.View().ends_with(tag.View()); ++name)
            if (name->position > last && isTagged(name->upper, tag)) last = name->position;
        return last;
    }

    const NUBListValNUBString& people;
    std::vector<Name> byEnding;
    std::unordered_map<std::string, int> found;
};

// The tag by the last line that names the framework.
std::optional<NUBString> tagFor(const NUBString& framework, const NUBListValNUBString& lines) {
    for (int i = lines.Size(); i >= 1; --i)
        for (const auto& claim : claimsOf(lines[i]))
            if (claim && claim->framework == framework) return claim->tag;
    return std::nullopt;
}

// The second field of an entry whose first one is the framework.
std::optional<NUBString> ownerIn(const NUBString& entry, const NUBString& framework) {
    NUBListValNUBString fields;
    if (Split(entry, fields) < 2 || fields[1] != framework) return std::nullopt;
    return fields[2];
}

} // namespace

int MakeFrameworkOwnerDico(const NUBListValNUBString& people, const NUBListValNUBString& lines,
                           NUBListValNUBString& table) {
    OwnerSearch owners(people);
    for (int i = lines.Size(); i >= 1; --i)
        for (const auto& claim : claimsOf(lines[i]))
            if (claim) table.Append(claim->framework + " " + owners.ownerOf(claim->tag));
    table.QuickSort(CompareTAStrings);
    return 0;
}

NUBString GetFWResponsible(const NUBString& framework, const NUBListValNUBString& people,
                           const NUBListValNUBString& lines) {
    const auto tag = tagFor(framework, lines);
    for (int i = people.Size(); tag && i >= 1; --i)
        if (isTagged(upperOf(people[i]), *tag)) return people[i];
    return ".";
}

NUBString GetFWResponsible(const NUBString& framework, const NUBListValNUBString& table) {
    if (table.Size() == 0) return ".";
    int low = 1, high = table.Size();
    while (low + 1 < high) {
        const int middle = (low + high) / 2;
        (framework > table[middle] ? low : high) = middle;
    }
    for (const int place : {low, high})
        if (const auto owner = ownerIn(table[place], framework)) return *owner;
    return ".";
}
