#pragma once

// Where something is used, in all files of a code base that hold its name.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <answers/resolve/Resolver.h>

namespace ostraka::answers {

enum class UsePart : std::uint8_t { Read, Call, Type, Base, Declaration };

std::string_view NameOf(UsePart part);

struct Use {
    int file = -1;
    std::uint32_t at = 0;
    Place place;
    UsePart part = UsePart::Read;
    bool isCertain = false; // else the name alone tells
};

// A declaration whose name stands here.
struct NamedPlace {
    int file = -1;
    std::uint32_t at = 0;

    auto operator<=>(const NamedPlace&) const = default;
};

class UseSearch {
public:
    UseSearch(CodeBase& known, Names& allNames, Resolver& asked)
        : base(known), names(allNames), resolver(asked) {}

    // Everything that the code base declares under a name: "Accept", "Ship::Accept", "gui::Ship".
    std::vector<NamedPlace> DeclarationsOf(std::string_view name);

    // All declarations of what the name at the place means: of a method the one in its class and the one with
    // its body. Empty where it means nothing that is known.
    std::vector<NamedPlace> MeantAt(int file, std::uint32_t at);

    // Where the name of these declarations, which are all of one name, is used for one of them, by file and
    // place; the declarations themselves are among it.
    std::vector<Use> Find(const std::vector<NamedPlace>& declarations);

private:
    void TakeFilesWith(std::string_view name);
    std::vector<NamedPlace> AllOf(const PlaceAnswer& answer);
    void FindIn(int file, std::string_view name, const std::vector<NamedPlace>& wanted,
                std::vector<Use>& uses);
    bool IsOfAnother(const DeclarationRef& a, const DeclarationRef& b, int entity);
    bool IsOverloadOf(const DeclarationRef& a, const DeclarationRef& b);

    CodeBase& base;
    Names& names;
    Resolver& resolver;
};

// Whether the word stands in the text, between characters that belong to no word.
bool HoldsWord(std::string_view text, std::string_view word);

} // namespace ostraka::answers
