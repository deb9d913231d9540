#pragma once

#include <cstring>
#include <string>
#include <string_view>

// Types are texts, and from a type to the name in it there are several ways, because the readers differ in
// what they take for part of the name. Each way is here once. What is taken off, for these types:
//
//                    Foo_var   Foo_var_x   Foo_var*&   const Foo_var&   _var    read by
//     BeforeHandle   Foo       Foo         Foo         const Foo        (none)  the scan, of names of classes
//     Referred       Foo       Foo_var_x   Foo_var*&   const Foo_var&   _var    the test of a word
//     WithoutMarks   Foo       Foo_var_x   Foo         const Foo        _var    the line of bases
//     ClassOfType    Foo       Foo_var_x   Foo         Foo              _var    questions about an object
//     BareNames      Foo_var   Foo_var_x   Foo_var     Foo_var          _var    the comparison of two types
namespace ostraka::detail {

// The word that makes a name that of a handle: `Foo_var` is a handle on `Foo`.
inline constexpr std::string_view handleMark = "_var";

// The part of a name before its first handle mark; the whole name if it has none.
inline std::string_view BeforeHandle(std::string_view name) {
    return name.substr(0, name.find(handleMark));
}

// Whether the name ends in a handle mark that has something in front of it.
inline bool IsHandle(std::string_view name) {
    return name.size() > handleMark.size() && name.ends_with(handleMark);
}

// What a handle refers to; any other name as it stands.
inline std::string_view Referred(std::string_view name) {
    return IsHandle(name) ? name.substr(0, name.size() - handleMark.size()) : name;
}

// A type without the handle marks, stars and ampersands that end it, of which the first character stays.
inline std::string_view WithoutMarks(std::string_view type) {
    for (;;) {
        if (IsHandle(type)) {
            type = Referred(type);
        } else if (type.size() > 1 && (type.back() == '*' || type.back() == '&')) {
            type.remove_suffix(1);
        } else {
            return type;
        }
    }
}

// The class of an object that is declared with this type, a pointer to it or a handle on it.
inline std::string_view ClassOfType(std::string_view type) {
    constexpr std::string_view qualifier = "const ";
    if (type.starts_with(qualifier)) type.remove_prefix(qualifier.size());
    return Referred(type.substr(0, type.find_last_not_of(" *&") + 1));
}

// A type reduced to its names: no qualifier, blank, star or ampersand, wherever they stand.
inline std::string BareNames(std::string_view type) {
    constexpr std::string_view qualifier = "const";
    std::string bare;
    for (std::size_t i = 0; i < type.size();) {
        if (type.substr(i).starts_with(qualifier)) {
            i += qualifier.size();
            continue;
        }
        if (std::strchr(" &*", type[i]) == nullptr) bare += type[i];
        ++i;
    }
    return bare;
}

} // namespace ostraka::detail
