#include <basalt/NUBStackTrace.h>

#include <algorithm>
#include <execinfo.h>

// The descriptor is written to directly, since what follows may be an abort, which drops buffered output.
void NUBBasicStackTrace::Print(std::FILE* file, int skip, int most) const {
    if (!file) return;
    std::fflush(file);
    const int begin = std::clamp(skip, 0, size);
    const int count = most > 0 ? std::min(most, size - begin) : size - begin;
    backtrace_symbols_fd(frames.data() + begin, count, fileno(file));
}

// The first frame is this function's own.
[[gnu::noinline]] void NUBStackTrace::GetTrace() {
    const int captured = backtrace(frames.data(), static_cast<int>(frames.size()));
    size = std::max(captured - 1, 0);
    std::copy_n(frames.begin() + 1, size, frames.begin());
}
