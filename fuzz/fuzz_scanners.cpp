// Every scanner and the search for operators against plain slow ones, from all places of a short text.

#include <algorithm>
#include <cstdint>
#include <string>

#include <ostraka/syntax/TAPExpression.h>

#include "Check.h"
#include "SlowScanners.h"

namespace {

constexpr std::size_t longest = 100;
constexpr int shortText = 24; // up to here all ends are tried with all begins

void Compare(const std::string& text, int begin, int end) {
    using S = TAPSyntaxe;
    const SlowScanners slow(text);
    const char* s = text.c_str();
    CHECK(S::SearchEndOfTAPBloc(s, begin, end) == slow.Bracket('{', 1, begin, end));
    CHECK(S::SearchEndOfPar(s, begin, end) == slow.Bracket('(', 1, begin, end));
    CHECK(S::SearchEndOfIndex(s, begin, end) == slow.Bracket('[', 1, begin, end));
    CHECK(S::SearchEndOfString(s, begin, end) == slow.EndOfString(begin, end));
    CHECK(S::SearchEndOfString2(s, begin, end) == slow.EndOfCharacter(begin, end));
    CHECK(S::SearchEndOfTAPInstruction(s, begin, end) == slow.EndOfInstruction(begin, end));
    CHECK(S::SearchBeginOfPar(s, end, begin) == slow.Bracket(')', -1, end, begin));
    CHECK(S::SearchBeginOfIndex(s, end, begin) == slow.Bracket(']', -1, end, begin));
    CHECK(S::SearchBeginOfString(s, end, begin) == slow.BeginOfString(end, begin));
    CHECK(S::SearchBeginOfString2(s, end, begin) == slow.BeginOfCharacter(end, begin));
    int length = -1;
    int expected = -1;
    CHECK(TAPExpression::SearchOperator(s, begin, end, length) == slow.SearchOperator(begin, end, expected));
    CHECK(length == expected);
    for (int n = 1; n <= 3; ++n)
        CHECK(S::ExistLongerOp(s, 0, end, begin, n) == slow.ExistLongerOp(0, end, begin, n));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), std::min(size, longest));
    std::replace(text.begin(), text.end(), '\0', ' ');
    const int last = static_cast<int>(text.size()) - 1;
    for (int begin = 0; begin <= last; ++begin) {
        Compare(text, begin, last);
        Compare(text, 0, begin);
        for (int end = begin; end < last && last < shortText; ++end) Compare(text, begin, end);
    }
    return 0;
}
