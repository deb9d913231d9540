// A tag is looked for at the end of names. Sorted by their last characters, all names that end in one tag
// stand together; and each tag is looked for only once, however many lines have it.

#include <ostraka/workspace/FrameworkResponsibility.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <ostraka/foundation/TextHelpers.h>

namespace {

NUBString UpperOf(NUBString text) {
    text.ToUpper();
    return text;
}

bool EqualsNoCase(const NUBString& text, const char* upper) {
    return UpperOf(text) == upper;
}

// A framework that a line names, and the tag of its owner.
struct Claim {
    NUBString framework;
    NUBString tag;
};

NUBString TagOf(const NUBString& code) {
    return "." + UpperOf(code) + ".";
}

std::optional<Claim> ClaimApart(const NUBListValNUBString& fields) {
    if (!EqualsNoCase(fields[1], "FW:") || !EqualsNoCase(fields[3], "RESP:")) return std::nullopt;
    return Claim{fields[2], TagOf(fields[4])};
}

// What is joined to `word` by a colon.
std::optional<NUBString> JoinedTo(const char* word, const NUBString& field) {
    NUBListValNUBString parts;
    if (Split(field, parts, ":") != 2 || !EqualsNoCase(parts[1], word)) return std::nullopt;
    return parts[2];
}

std::optional<Claim> ClaimJoined(const NUBListValNUBString& fields) {
    if (fields.Size() != 6) return std::nullopt;
    const auto framework = JoinedTo("FW", fields[5]);
    const auto code = JoinedTo("RESP", fields[6]);
    if (!framework || !code) return std::nullopt;
    return Claim{*framework, TagOf(*code)};
}

// By both forms, in their order.
std::array<std::optional<Claim>, 2> ClaimsOf(const NUBString& line) {
    NUBListValNUBString fields;
    if (Split(line, fields) <= 3) return {};
    return {ClaimApart(fields), ClaimJoined(fields)};
}

bool IsTagged(const NUBString& upperName, const NUBString& tag) {
    const int place = upperName.FindPosition(tag);
    return place >= 0 && place == upperName.Length() - tag.Length();
}

// The tag by the last line that names the framework.
std::optional<NUBString> TagFor(const NUBString& framework, const NUBListValNUBString& lines) {
    for (int i = lines.Size(); i >= 1; --i)
        for (const auto& claim : ClaimsOf(lines[i]))
            if (claim && claim->framework == framework) return claim->tag;
    return std::nullopt;
}

// The second field of an entry whose first one is the framework.
std::optional<NUBString> OwnerIn(const NUBString& entry, const NUBString& framework) {
    NUBListValNUBString fields;
    if (Split(entry, fields) < 2 || fields[1] != framework) return std::nullopt;
    return fields[2];
}

} // namespace

class FrameworkOwners::Search {
public:
    explicit Search(const NUBListValNUBString& allPeople) : people(allPeople) {
        byEnding.reserve(static_cast<std::size_t>(people.Size()));
        for (int i = 1; i <= people.Size(); ++i) byEnding.emplace_back(UpperOf(people[i]), i);
        std::sort(byEnding.begin(), byEnding.end());
        found.reserve(byEnding.size());
    }

    // The name of the owner, or the tag itself.
    const NUBString& OwnerOf(const NUBString& tag) {
        const auto [entry, isNew] = found.try_emplace(std::string(tag.View()), 0);
        if (isNew) entry->second = PositionOf(tag);
        return entry->second > 0 ? people[entry->second] : tag;
    }

private:
    // Ordered from the last character to the first. The last eight lie beside the text, whose memory most
    // comparisons don't have to wait for.
    struct Name {
        NUBString upper;
        int position;
        std::uint64_t last;

        Name(const NUBString& theUpper, int thePosition) : upper(theUpper), position(thePosition), last(0) {
            const std::string_view text = upper.View();
            for (std::size_t i = 0; i < sizeof last; ++i)
                last = last << 8 | (i < text.size() ? static_cast<unsigned char>(text.rbegin()[i]) : 0);
        }
        bool operator<(const Name& other) const {
            if (last != other.last) return last < other.last;
            const std::string_view a = upper.View(), b = other.upper.View();
            return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
        }
    };

    // Position of the last of the people that the tag fits, or 0.
    int PositionOf(const NUBString& tag) const {
        int last = 0;
        auto name = std::lower_bound(byEnding.begin(), byEnding.end(), Name(tag, 0));
        for (; name != byEnding.end() && name->upper.View().ends_with(tag.View()); ++name)
            if (name->position > last && IsTagged(name->upper, tag)) last = name->position;
        return last;
    }

    const NUBListValNUBString& people;
    std::vector<Name> byEnding;
    std::unordered_map<std::string, int> found;
};

FrameworkOwners::FrameworkOwners(const NUBListValNUBString& people)
    : search(std::make_unique<Search>(people)) {}

FrameworkOwners::~FrameworkOwners() = default;

int FrameworkOwners::AppendEntries(const NUBString& line, NUBListValNUBString& table) {
    const int before = table.Size();
    for (const auto& claim : ClaimsOf(line))
        if (claim) table.Append(claim->framework + " " + search->OwnerOf(claim->tag));
    return table.Size() - before;
}

int MakeFrameworkOwnerDico(const NUBListValNUBString& people, const NUBListValNUBString& lines,
                           NUBListValNUBString& table) {
    FrameworkOwners owners(people);
    for (int i = lines.Size(); i >= 1; --i) owners.AppendEntries(lines[i], table);
    table.QuickSort(CompareTAStrings);
    return 0;
}

NUBString GetFWResponsible(const NUBString& framework, const NUBListValNUBString& people,
                           const NUBListValNUBString& lines) {
    const auto tag = TagFor(framework, lines);
    for (int i = people.Size(); tag && i >= 1; --i)
        if (IsTagged(UpperOf(people[i]), *tag)) return people[i];
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
        if (const auto owner = OwnerIn(table[place], framework)) return *owner;
    return ".";
}
