#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class TAPDefClass;
class TAPSymbolTable;

namespace ostraka::detail {

// Walks from a class to its base, to the base of that, and so on, in search of a name.
//
// A long walk leaves behind how it ended, with every class on its way, so that many questions for one base
// don't walk the same line again. What it leaves is good for the base that was asked for last, and as long as
// classes are only added to the table. A line that ends with a base that isn't known yet goes on there when
// the base has come.
class LineOfBases {
public:
    // Whether a class of that name stands in the line of bases of this class, or is itself the class.
    bool LeadsTo(const TAPSymbolTable& table, const TAPDefClass* cls, std::string_view name);

private:
    enum class End { Open, Found, NotFound };

    // How the line goes on behind a class: to `last`, with nothing sought on the way, and there as it says.
    struct Rest {
        const TAPDefClass* last;
        End end;
    };

    void Serve(const TAPSymbolTable& table, std::string_view name);
    Rest Walk(const TAPSymbolTable& table, const TAPDefClass* cls, std::string_view name);

    std::string sought;
    std::uint64_t epoch = 0; // of the table's classes
    std::unordered_map<const TAPDefClass*, Rest> rests;
    std::vector<const TAPDefClass*> passed; // by the walk in hand
};

} // namespace ostraka::detail
