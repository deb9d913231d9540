#include "cli/Console.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <poll.h>
#include <system_error>
#include <unistd.h>

#include <fmt/format.h>

#include "cli/ExitCodes.h"

namespace ostraka::tool {

namespace {

constexpr std::size_t pieceSize = 1 << 20;
constexpr std::chrono::seconds progressAfter(1);
constexpr std::chrono::milliseconds progressPause(100);

// Of a descriptor that others have switched to refuse what it can't take at once. Leaves `errno` alone.
void WaitForRoom(int descriptor) {
    const int error = errno;
    pollfd waiting{descriptor, POLLOUT, 0};
    poll(&waiting, 1, -1);
    errno = error;
}

[[noreturn]] void EndUnwritable(int error) {
    // Who closed the pipe has seen enough.
    if (error == EPIPE) std::_Exit(ExitDone);
    const std::string text =
        fmt::format("ostraka: error: cannot write: {}\n", std::generic_category().message(error));
    WriteAll(STDERR_FILENO, text.data(), text.size());
    std::_Exit(ExitFailed);
}

} // namespace

bool WriteAll(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t count = write(descriptor, data, size);
        if (count < 0 && errno == EAGAIN) WaitForRoom(descriptor);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count < 0) return false;
        data += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

void WaitForBytes(int descriptor) {
    pollfd waiting[] = {{descriptor, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    while (poll(waiting, std::size(waiting), -1) < 0 && errno == EINTR) {
    }
    if ((waiting[1].revents & POLLERR) != 0) EndUnwritable(EPIPE);
}

Console::Console(bool quiet)
    : dataOnTerminal(isatty(STDOUT_FILENO) != 0), progressWanted(!quiet && isatty(STDERR_FILENO) != 0),
      nextProgress(Clock::now() + progressAfter) {}

void Console::Out(std::string_view data) {
    pending += data;
    if (pending.size() >= pieceSize) Flush();
}

void Console::Err(std::string_view message) {
    if (message.empty()) return;
    Flush();
    ClearProgress();
    WriteAll(STDERR_FILENO, message.data(), message.size());
}

void Console::Flush() {
    if (pending.empty()) return;
    if (dataOnTerminal) ClearProgress();
    if (!WriteAll(STDOUT_FILENO, pending.data(), pending.size())) EndUnwritable(errno);
    pending.clear();
}

void Console::ShowProgress(std::size_t done, std::size_t all, std::string_view unit) {
    if (!progressWanted) return;
    const Clock::time_point now = Clock::now();
    if (done == all) return ClearProgress();
    if (now < nextProgress) return;
    nextProgress = now + progressPause;
    const std::string line = fmt::format("\r\x1b[K{} of {} {}", done, all, unit);
    WriteAll(STDERR_FILENO, line.data(), line.size());
    progressShown = true;
}

void Console::ClearProgress() {
    if (!progressShown) return;
    constexpr std::string_view clear = "\r\x1b[K";
    WriteAll(STDERR_FILENO, clear.data(), clear.size());
    progressShown = false;
}

} // namespace ostraka::tool
