// With several jobs, worker w of n takes the batches w, w + n, w + 2n, ... of the files and sends the result
// of each through a pipe of its own once the whole batch is done. The parent takes the batches in their
// order, so a worker is at most a batch ahead of what was shown. Trees can't be built by threads, since their
// failures share a text.

#include "cli/Jobs.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

#include "cli/Console.h"
#include "formats/Text.h"

namespace ostraka::tool {

namespace {

constexpr std::size_t batchSize = 8;

struct Batch {
    std::size_t begin;
    std::size_t past;
};

struct Worker {
    pid_t process = -1;
    int pipe = -1;
};

// What stands in the pipe before the texts of a result.
struct Header {
    std::uint64_t outSize;
    std::uint64_t errSize;
    std::int32_t failed;
    std::int32_t notFound;
};

std::size_t BatchCount(const std::vector<Input>& inputs) {
    return (inputs.size() + batchSize - 1) / batchSize;
}

Batch BatchAt(const std::vector<Input>& inputs, std::size_t number) {
    return {number * batchSize, std::min(inputs.size(), (number + 1) * batchSize)};
}

bool Send(int pipe, const Result& result) {
    const Header header{result.out.size(), result.err.size(), result.failed, result.notFound};
    return WriteAll(pipe, reinterpret_cast<const char*>(&header), sizeof header) &&
           WriteAll(pipe, result.out.data(), result.out.size()) &&
           WriteAll(pipe, result.err.data(), result.err.size());
}

bool ReadAll(int pipe, char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t count = read(pipe, data, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        data += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool Receive(int pipe, Result& result) {
    Header header;
    if (!ReadAll(pipe, reinterpret_cast<char*>(&header), sizeof header)) return false;
    result.out.resize(header.outSize);
    result.err.resize(header.errSize);
    result.failed = header.failed;
    result.notFound = header.notFound;
    return ReadAll(pipe, result.out.data(), result.out.size()) &&
           ReadAll(pipe, result.err.data(), result.err.size());
}

bool SendBatch(int pipe, const std::vector<Result>& results) {
    return std::all_of(results.begin(), results.end(),
                       [=](const Result& result) { return Send(pipe, result); });
}

[[noreturn]] void Work(const Request& request, const std::vector<Input>& inputs, std::size_t first,
                       std::size_t step, int pipe) {
    for (std::size_t number = first; number < BatchCount(inputs); number += step) {
        const Batch batch = BatchAt(inputs, number);
        std::vector<Result> results(batch.past - batch.begin);
        for (std::size_t i = batch.begin; i < batch.past; ++i)
            RunVerb(request, inputs[i], i, results[i - batch.begin]);
        if (!SendBatch(pipe, results)) break; // the parent has gone
    }
    std::_Exit(0);
}

// A worker without a process when the system has none to give.
Worker Start(const Request& request, const std::vector<Input>& inputs, std::size_t first, std::size_t step) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    const pid_t process = fork();
    if (process == 0) Work(request, inputs, first, step, ends[1]);
    close(ends[1]);
    if (process > 0) return {process, ends[0]};
    close(ends[0]);
    return {};
}

// For a file whose worker ended before its time.
Result EndedEarly(const Request& request, const Input& input) {
    Result result;
    result.failed = 1;
    AppendMessage(result.err, input.path, std::nullopt, "error", "the job that worked on it ended early",
                  request.colorErrors);
    return result;
}

void Show(const Result& result, Result& total, Console& console) {
    console.Out(result.out);
    console.Err(result.err);
    total.failed += result.failed;
    total.notFound += result.notFound;
    total.headers += result.headers;
}

Result RunHere(const Request& request, const std::vector<Input>& inputs, Console& console) {
    Result total;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        Result result;
        RunVerb(request, inputs[i], i, result);
        Show(result, total, console);
        console.ShowProgress(i + 1, inputs.size());
    }
    return total;
}

Result RunInWorkers(const Request& request, const std::vector<Input>& inputs, std::size_t count,
                    Console& console) {
    std::vector<Worker> workers;
    for (std::size_t w = 0; w < count; ++w) workers.push_back(Start(request, inputs, w, count));
    Result total;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        Result result;
        if (!Receive(workers[i / batchSize % count].pipe, result)) result = EndedEarly(request, inputs[i]);
        Show(result, total, console);
        console.ShowProgress(i + 1, inputs.size());
    }
    for (const Worker& worker : workers) {
        if (worker.process < 0) continue;
        close(worker.pipe);
        waitpid(worker.process, nullptr, 0);
    }
    return total;
}

} // namespace

Result RunAll(const Request& request, const std::vector<Input>& inputs, Console& console) {
    const std::size_t count = std::min(static_cast<std::size_t>(request.jobs), BatchCount(inputs));
    return count < 2 ? RunHere(request, inputs, console) : RunInWorkers(request, inputs, count, console);
}

} // namespace ostraka::tool
