#pragma once

// The two streams of the process. Data is gathered and written in large pieces; messages come out at once,
// behind the data that came before them. A reader that has gone away ends the process quietly.

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace ostraka::tool {

// Writes all of it, through interruptions. False, with the reason in `errno`, when the system refuses.
bool WriteAll(int descriptor, const char* data, std::size_t size);

// Until the descriptor has bytes to read, or no more of them. Ends the process quietly where the reader of
// standard output goes away meanwhile.
void WaitForBytes(int descriptor);

class Console {
public:
    explicit Console(bool quiet);
    ~Console() { Flush(); }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    void Out(std::string_view data);
    void Err(std::string_view message);
    void Flush();

    // Shows how far the run is: on a terminal only, after a second, and at most ten times a second.
    void ShowProgress(std::size_t done, std::size_t all, std::string_view unit = "files");

private:
    using Clock = std::chrono::steady_clock;

    void ClearProgress();

    std::string pending;
    bool dataOnTerminal;
    bool progressWanted;
    bool progressShown = false;
    Clock::time_point nextProgress;
};

} // namespace ostraka::tool
