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
    TAPDefMethod* Find(std::string_view name, const ArgTypes& types) const;

private:
    // Methods with the same name and number of arguments, in the order of the class.
    struct Overloads {
        std::vector<TAPDefMethod*> methods;
        std::unordered_map<std::string, std::size_t>
            placeOfTypes;                   // the first one of each list of known types
        std::vector<std::size_t> uncertain; // places of those with an unknown type
    };

    std::unordered_map<std::string, Overloads> overloads;
};

} // namespace ostraka::detail
