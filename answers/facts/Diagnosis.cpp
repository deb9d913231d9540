#include <answers/facts/Diagnosis.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

namespace ostraka::answers {

namespace {

std::string ReasonOfSystem(int error) {
    return error == EISDIR ? "is a folder" : std::generic_category().message(error);
}

std::string CauseOf(const TAPFailure& failure) {
    switch (failure.code) {
    case SFAIL_Unreadable: return ReasonOfSystem(failure.systemError);
    case SFAIL_Word: return std::string("missing ) for ") + failure.word + "(";
    case SFAIL_Block: return "no } for this {, or something inside it isn't closed";
    case SFAIL_Instruction: return "no end of this instruction: a bracket or a literal in it isn't closed";
    case SFAIL_Depth: return "nested more than 900 levels deep";
    case SFAIL_Parenthesis: return "missing )";
    case SFAIL_Bracket: return "missing ]";
    case SFAIL_String: return "missing \"";
    case SFAIL_Character: return "missing '";
    case SFAIL_DeleteBracket: return "missing ] behind delete [";
    case SFAIL_None: break;
    }
    return {};
}

} // namespace

std::optional<Failure> FailureOf(const TAPFailure& failure) {
    if (failure.code == SFAIL_None) return std::nullopt;
    std::optional<Place> place;
    if (failure.code != SFAIL_Unreadable) place = PlaceOf(failure.point);
    return Failure{place, CauseOf(failure)};
}

std::optional<Failure> FindNul(std::string_view text) {
    const std::size_t nul = text.find('\0');
    if (nul == std::string_view::npos) return std::nullopt;
    const std::string_view before = text.substr(0, nul);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineBegin = before.rfind('\n') + 1; // 0 without a newline
    return Failure{Place{static_cast<int>(line), static_cast<int>(nul - lineBegin) + 1},
                   "a NUL ends the source here; bytes behind it that aren't read: " +
                       std::to_string(text.size() - nul - 1)};
}

} // namespace ostraka::answers
