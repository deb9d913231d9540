// All statics with a life of their own have the earliest priority that is free, so that the statics of a
// client that links the library into one image come after them and go before them.

#include <ostraka/memreport/TAPIndexContainer.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/workspace/FrameworkResponsibility.h>

#define EARLIEST [[gnu::init_priority(101)]]

namespace {

constexpr int callsInKey = 20;

// The masks that the setters made.
EARLIEST std::vector<std::unique_ptr<StackMask>> masks;

struct ListsEnd {
    ~ListsEnd() {
        std::free(std::exchange(TAPIndexContainer::ErrorList, nullptr));
        std::free(std::exchange(TAPIndexContainer::LeaksList, nullptr));
    }
};
EARLIEST ListsEnd listsEnd;

// The codes are only read, whatever their declared type allows.
constexpr char* Code(const char* text) {
    return const_cast<char*>(text);
}

void GiveRoom(Error**& list, int oldRoom, int room) {
    void* block = std::realloc(list, static_cast<std::size_t>(room) * sizeof(Error*));
    if (block == nullptr) throw std::bad_alloc();
    list = static_cast<Error**>(block);
    std::fill(list + std::min(oldRoom, room), list + room, nullptr);
}

void InitList(Error**& list, int& maxSize) {
    if (list != nullptr) return;
    GiveRoom(list, 0, TAPIndexContainer::incSize + 1);
    maxSize = TAPIndexContainer::incSize;
}

// Splits into the two fragments that an entry has to have.
bool IsPair(const NUBString& entry, const char* separator, NUBListValNUBString& fragments) {
    return Split(entry, fragments, separator) == 2;
}

void AddMasks(const NUBListValNUBString& entries, NUBListPtrStackMask& filter) {
    NUBListValNUBString parts;
    for (int i = entries.Size(); i >= 1; --i) {
        if (!IsPair(entries[i], "@@@", parts)) continue;
        masks.push_back(std::make_unique<StackMask>(parts[2].CastToCharPtr(), parts[1].CastToCharPtr()));
        filter.Append(masks.back().get());
    }
}

} // namespace

EARLIEST TAIndex TAPIndexContainer::LongCallIndex;
EARLIEST TAIndex TAPIndexContainer::ShortCallIndex;

EARLIEST TAIndexB TAPIndexContainer::LeaksLongStackIndex(callsInKey);
EARLIEST TAIndexB TAPIndexContainer::LeaksMediumStackIndex(callsInKey);
EARLIEST TAIndexB TAPIndexContainer::LeaksShortStackIndex(callsInKey);
EARLIEST TAIndexB TAPIndexContainer::ErrorLongStackIndex(callsInKey);
EARLIEST TAIndexB TAPIndexContainer::ErrorMediumStackIndex(callsInKey);
EARLIEST TAIndexB TAPIndexContainer::ErrorShortStackIndex(callsInKey);

EARLIEST TAIndex TAPIndexContainer::LeaksIgnoredResponsible;
EARLIEST TAIndex TAPIndexContainer::ErrorIgnoredResponsible;
EARLIEST TAIndex TAPIndexContainer::LeaksCallIgnoredResponsible;
EARLIEST TAIndex TAPIndexContainer::ErrorCallIgnoredResponsible;
EARLIEST NUBListValNUBString TAPIndexContainer::LeaksCallStringToJumpOver;
EARLIEST NUBListValNUBString TAPIndexContainer::ErrorCallStringToJumpOver;

EARLIEST TAIndex TAPIndexContainer::ErrorsStackToJumpOver;
EARLIEST TAIndex TAPIndexContainer::LeaksStackToJumpOver;
EARLIEST TAIndex TAPIndexContainer::ErrorStackToExtend;
EARLIEST TAIndex TAPIndexContainer::ErrorStackToReduce;
EARLIEST TAIndex TAPIndexContainer::LeaksStackToExtend;
EARLIEST TAIndex TAPIndexContainer::LeaksStackToReduce;

EARLIEST NUBListPtrStackMask TAPIndexContainer::ErrorCallStackFilter;
EARLIEST NUBListPtrStackMask TAPIndexContainer::LeaksCallStackFilter;

EARLIEST TAIndex TAPIndexContainer::responsibleIndex;
EARLIEST TAIndex TAPIndexContainer::fwForSourceIndex;
EARLIEST TAIndex TAPIndexContainer::respForFwIndex;
EARLIEST TAIndex TAPIndexContainer::odtIndex;
EARLIEST TAIndex TAPIndexContainer::errorIndex;

Error** TAPIndexContainer::ErrorList = nullptr;
Error** TAPIndexContainer::LeaksList = nullptr;
int TAPIndexContainer::ErrorListSize = 0;
int TAPIndexContainer::LeaksListSize = 0;
int TAPIndexContainer::ErrorListMaxSize = 0;
int TAPIndexContainer::LeaksListMaxSize = 0;

constinit char* TAPIndexContainer::ErrorTypes[26] = {
    Code("ABR"), Code("ABW"), Code("BRK"), Code("BSR"), Code("BSW"), Code("COR"), Code("FMM"),
    Code("FMR"), Code("FMW"), Code("FNH"), Code("FUM"), Code("IPR"), Code("IPW"), Code("MRE"),
    Code("MSE"), Code("NPR"), Code("NPW"), Code("PAR"), Code("SBR"), Code("SBW"), Code("SOF"),
    Code("UMC"), Code("UMR"), Code("ZPR"), Code("ZPW"), nullptr};
constinit char* TAPIndexContainer::LeakTypes[3] = {Code("MLK"), Code("PLK"), nullptr};

int TAPIndexContainer::incSize = 100000;

void TAPIndexContainer::InitStatic() {
    InitList(ErrorList, ErrorListMaxSize);
    InitList(LeaksList, LeaksListMaxSize);
}

void TAPIndexContainer::IncreaseListMaxSize(Error**& list, int& size, int& maxSize) {
    if (incSize * 10LL < static_cast<long long>(size) + incSize) incSize *= 5;
    const int oldRoom = list != nullptr ? maxSize + 1 : 0;
    maxSize += incSize;
    GiveRoom(list, oldRoom, maxSize + 1);
}

void TAPIndexContainer::SetErrorCallStackFilter(const NUBListValNUBString& entries) {
    AddMasks(entries, ErrorCallStackFilter);
}

void TAPIndexContainer::SetLeaksCallStackFilter(const NUBListValNUBString& entries) {
    AddMasks(entries, LeaksCallStackFilter);
}

void TAPIndexContainer::SetRespForFwIndex(const NUBListValNUBString& people,
                                          const NUBListValNUBString& lines) {
    NUBListValNUBString pairs, parts;
    MakeFrameworkOwnerDico(people, lines, pairs);
    for (int i = pairs.Size(); i >= 1; --i) {
        if (!IsPair(pairs[i], " ", parts)) continue;
        const char* responsible = responsibleIndex.Append(parts[2].CastToCharPtr(), nullptr, 0);
        respForFwIndex.Append(parts[1].CastToCharPtr(), responsible, 0);
    }
}
