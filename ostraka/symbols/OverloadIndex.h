#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class TAPDefClass;
class TAPDefMethod;

namespace ostraka::detail {

// Types of arguments in order; "?" stands for one that can't be told.
using ArgTypes = std::vector<std::string>;

// The methods of one class by name and types of arguments, so that an implementation finds its declaration
// without a walk over all methods. Two types agree if they are equal or one of them is unknown.
//
// It holds no reference: the methods, and their arguments as they stand when they are entered, have to
// outlive it.
class OverloadIndex {
public:
    explicit OverloadIndex(const TAPDefClass& owner);

    void Add(TAPDefMethod* method);

    // The first method of that name whose types all agree; null if there is none.
    TAPDefMethod* Find(std::string_view name, const ArgTypes& types);

private:
    // Which of the types can be told, one character for each.
    using Pattern = std::string;

    // Places in the list of methods by the types of one pattern, the first of equal ones.
    using PlaceOfTypes = std::unordered_map<std::string, std::size_t>;

    // Methods of which the same types can be told.
    struct Group {
        Pattern known;
        std::vector<std::size_t> places;
        std::unordered_map<Pattern, PlaceOfTypes> byTypes; // as far as implementations can tell them too
    };

    // Methods with the same name and number of arguments, in the order of the class.
    struct Overloads {
        std::vector<TAPDefMethod*> methods;
        std::vector<Group> groups; // by their first method
        std::unordered_map<Pattern, std::size_t> groupOf;
    };

    static const PlaceOfTypes& TableFor(const Overloads& same, Group& group, const Pattern& shared);
    static std::size_t FirstIn(const Overloads& same, Group& group, const ArgTypes& types);

    std::unordered_map<std::string, Overloads> overloads;
};

} // namespace ostraka::detail
