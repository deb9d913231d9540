// Frame lines, and the stack that they form.

#include <cstdlib>
#include <cstring>
#include <memory>

#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/TAPIndexContainer.h>

#include "Check.h"
#include "Lines.h"

namespace {

void CheckCall(const Call& call, const std::string& line) {
    CHECK(line == call.GetCall());
    const std::unique_ptr<char, void (*)(void*)> shortCall(call.GetShortCall(), std::free);
    CHECK(call.HasString(shortCall.get()) == 1);
    const CallParts parts = call.GetParts();
    CHECK(parts.function == shortCall.get() && parts.line >= 0);
    CHECK(parts.path.empty() || line.find("[" + std::string(parts.path)) != std::string::npos);
    if (call.GetFwResponsible() == nullptr) return;
    CHECK(line.find(std::string("/") + call.GetFwResponsible() + "/") != std::string::npos);
    CHECK(std::strcmp(call.GetResponsible(), ".") == 0);
}

void CheckStack(Call** calls, int n) {
    TAIndexBStack index(20);
    Stack stack(nullptr, calls, n, &index, nullptr, nullptr, nullptr, 0);
    const Stack again(nullptr, calls, n, &index, nullptr, nullptr, nullptr, 0);
    CHECK(again.bitStack == stack.bitStack && again.GetId() == stack.GetId() && index.size == 1);
    CHECK(stack.GetToExtend() == n && stack.GetSize() == (n < 20 ? n : 20));
    const Call* first = stack.GetFirstKetchCall();
    CHECK(stack.GetFwResponsible() == (first != nullptr ? first->GetFwResponsible() : nullptr));
    for (int i = 0; i < stack.GetSize(); ++i) {
        const CallCharge charge = stack.ChargeOf(i, nullptr, nullptr);
        CHECK((charge == CallCharge::NoFramework) == (calls[i]->GetFwResponsible() == nullptr));
        CHECK((charge == CallCharge::Charged) == (i == stack.chargedCall));
    }
    std::string text;
    for (int i = 0; i < stack.GetSize(); ++i) text += (i > 0 ? "!" : "") + std::string(calls[i]->GetCall());
    CHECK(stack.GetStack(0) == text.c_str());
    if (stack.GetSize() < 2) return;
    CHECK(stack.Resize(1, stack.GetSize() - 1, &index, nullptr, nullptr, nullptr) == 0);
    CHECK(stack.GetCall(0) == calls[1] && index[stack.bitStack] == &stack && index.size == 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TAIndexCall index;
    std::vector<std::unique_ptr<Call>> held;
    std::vector<Call*> calls;
    for (const std::string& line : LinesOf(data, size)) {
        held.push_back(std::make_unique<Call>(line.c_str(), &index));
        calls.push_back(held.back().get());
        CheckCall(*held.back(), line);
    }
    CheckStack(calls.data(), static_cast<int>(calls.size()));
    TAPIndexContainer::fwForSourceIndex.Reset();
    TAPIndexContainer::respForFwIndex.Reset();
    return 0;
}
