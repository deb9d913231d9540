#include "ReportTypes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

namespace ostraka::reports {

namespace {

constexpr std::uint64_t zeroPageSize = 4096;

struct Kind {
    std::string_view kind;
    std::string_view type; // empty for an access
    bool leak;
    Region region;
};

constexpr Kind kinds[] = {
    {"Leak_DefinitelyLost", "MLK", true, Region::Unknown},
    {"Leak_IndirectlyLost", "MLK", true, Region::Unknown},
    {"Leak_PossiblyLost", "PLK", true, Region::Unknown},
    {"Leak_StillReachable", "Leak_StillReachable", true, Region::Unknown},
    {"InvalidRead", "", false, Region::Unknown},
    {"InvalidWrite", "", false, Region::Unknown},
    {"InvalidJump", "IPR", false, Region::Unknown},
    {"MismatchedFree", "FMM", false, Region::Unknown},
    {"UninitCondition", "UMR", false, Region::Unknown},
    {"UninitValue", "UMR", false, Region::Unknown},
    {"SyscallParam", "UMR", false, Region::Unknown},
    {"ClientCheck", "UMR", false, Region::Unknown},
    {"Overlap", "PAR", false, Region::Unknown},
    {"FishyValue", "PAR", false, Region::Unknown},
    {"ReallocSizeZero", "PAR", false, Region::Unknown},
    {"Direct leak", "MLK", true, Region::Unknown},
    {"Indirect leak", "MLK", true, Region::Unknown},
    {"heap-buffer-overflow", "", false, Region::OutOfBlock},
    {"global-buffer-overflow", "", false, Region::OutOfBlock},
    {"container-overflow", "", false, Region::OutOfBlock},
    {"intra-object-overflow", "", false, Region::OutOfBlock},
    {"heap-use-after-free", "", false, Region::Freed},
    {"use-after-poison", "", false, Region::Freed},
    {"stack-buffer-overflow", "", false, Region::Stack},
    {"stack-buffer-underflow", "", false, Region::Stack},
    {"dynamic-stack-buffer-overflow", "", false, Region::Stack},
    {"stack-use-after-return", "", false, Region::BeyondStack},
    {"stack-use-after-scope", "", false, Region::BeyondStack},
    {"wild-addr", "", false, Region::Unknown},
    {"SEGV", "", false, Region::Unknown},
    {"BUS", "", false, Region::Unknown},
    {"stack-overflow", "SOF", false, Region::Unknown},
    {"attempting double-free", "FUM", false, Region::Unknown},
    {"attempting free", "FNH", false, Region::Unknown},
    {"alloc-dealloc-mismatch", "FMM", false, Region::Unknown},
    {"new-delete-type-mismatch", "FMM", false, Region::Unknown},
    {"use-of-uninitialized-value", "UMR", false, Region::Unknown},
    {"memcpy-param-overlap", "PAR", false, Region::Unknown},
    {"memmove-param-overlap", "PAR", false, Region::Unknown},
    {"strcpy-param-overlap", "PAR", false, Region::Unknown},
    {"negative-size-param", "PAR", false, Region::Unknown},
    {"calloc-overflow", "PAR", false, Region::Unknown},
    {"allocation-size-too-big", "PAR", false, Region::Unknown},
};

struct Access {
    std::string_view read;
    std::string_view write;
};

// In the order of the regions.
constexpr Access accesses[] = {{"IPR", "IPW"}, {"NPR", "NPW"}, {"ZPR", "ZPW"}, {"FMR", "FMW"},
                               {"ABR", "ABW"}, {"SBR", "SBW"}, {"BSR", "BSW"}};

std::string_view AccessType(Region region, bool write) {
    const Access& access = accesses[static_cast<std::size_t>(region)];
    return write ? access.write : access.read;
}

} // namespace

void SetType(ReportRecord& record, Region region, bool write) {
    if (record.kind == "InvalidFree") {
        record.type = region == Region::Freed ? "FUM" : "FNH";
        return;
    }
    const auto* known = std::find_if(std::begin(kinds), std::end(kinds),
                                     [&](const Kind& row) { return row.kind == record.kind; });
    if (known == std::end(kinds)) {
        record.type = record.kind.empty() ? "?" : record.kind;
        return;
    }
    record.leak = known->leak;
    record.type = known->type;
    if (known->type.empty())
        record.type = AccessType(known->region == Region::Unknown ? region : known->region, write);
}

Region RegionOfAddress(std::string_view address) {
    if (address.starts_with("0x")) address.remove_prefix(2);
    std::uint64_t value = 0;
    const auto parsed = std::from_chars(address.data(), address.data() + address.size(), value, 16);
    if (parsed.ec != std::errc() || value >= zeroPageSize) return Region::Unknown;
    return value == 0 ? Region::Null : Region::ZeroPage;
}

} // namespace ostraka::reports
