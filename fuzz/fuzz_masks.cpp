// A mask in the first line, and the calls of a stack in the others.

#include <memory>

#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/StackMask.h>

#include "Check.h"
#include "Lines.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto lines = LinesOf(data, size);
    if (lines.empty()) return 0;
    TAIndexCall index;
    std::vector<std::unique_ptr<Call>> held;
    std::vector<Call*> calls;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        held.push_back(std::make_unique<Call>(lines[i].c_str(), &index));
        calls.push_back(held.back().get());
    }
    const int n = static_cast<int>(calls.size());
    const StackMask mask(lines[0].c_str(), "type");
    const int taken = mask.MatchMask(calls.data(), n);
    CHECK(taken >= -1 && taken <= n);
    std::vector<CallRange> ranges(static_cast<std::size_t>(mask.Size()));
    CHECK(mask.MatchMask(calls.data(), n, ranges.data()) == taken);
    int next = 0;
    for (int i = 0; taken >= 0 && i < mask.Size(); ++i) {
        const auto [begin, past] = ranges[static_cast<std::size_t>(i)];
        CHECK(begin == next && past >= begin);
        CHECK(*mask.GetMaskCall(i) == '@' ||
              (past == begin + 1 && mask.AreEqual(i, 1, calls.data(), begin, n) == 1));
        next = past;
    }
    CHECK(taken < 0 || next == taken);
    // What is taken is a stack that the mask takes whole, and what comes before isn't looked at twice.
    if (taken >= 0) CHECK(mask.MatchMask(calls.data(), taken) == taken);
    if (mask.HasAStar(0) < 0 && mask.HasADoubleStar(0) < 0 && mask.Size() > 0)
        CHECK((taken == mask.Size()) == (mask.AreEqual(0, mask.Size(), calls.data(), 0, n) == 1));
    NUBRawCollint found;
    for (int i = 0; i < mask.Size(); ++i) {
        const int places = mask.FindListOfEqual(i, 1, calls.data(), 0, found, n);
        for (int place = 1; place <= places; ++place)
            CHECK(mask.AreEqual(i, 1, calls.data(), found[place], n) == 1);
        CHECK(mask.StackAnalyse(i, mask.Size() - i, calls.data(), n, n) <= n);
    }
    return 0;
}
