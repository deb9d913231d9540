// With several jobs, worker w of n takes the batches w, w + n, w + 2n, ... of the files and sends the result
// of each through a pipe of its own once the whole batch is done. The parent takes the batches in their
// order, so a worker is at most a batch ahead of what was shown. The system ends the workers with their
// parent. Trees can't be built by threads, since their failures share a text.

#include "cli/Jobs.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/Console.h"

namespace ostraka::tool {

namespace {

constexpr std::size_t batchSize = 8;

struct Batch {
    std::size_t begin;
    std::size_t past;
};

struct Worker {
    pid_t process = -1;
    int pipe = -1; // the end to read from
};

// What stands in the pipe before the texts of a result.
struct Header {
    std::uint64_t outSize;
    std::uint64_t errSize;
    std::int64_t files;
    std::int64_t failed;
    std::int64_t notFound;
};

std::size_t BatchCount(const std::vector<Input>& inputs) {
    return (inputs.size() + batchSize - 1) / batchSize;
}

Batch BatchAt(const std::vector<Input>& inputs, std::size_t number) {
    return {number * batchSize, std::min(inputs.size(), (number + 1) * batchSize)};
}

bool Send(int pipe, const Result& result) {
    const Header header{result.out.size(), result.err.size(), result.files, result.failed, result.notFound};
    return WriteAll(pipe, reinterpret_cast<const char*>(&header), sizeof header) &&
           WriteAll(pipe, result.out.data(), result.out.size()) &&
           WriteAll(pipe, result.err.data(), result.err.size());
}

bool ReadAll(int pipe, char* data, std::size_t size) {
    while (size > 0) {
        WaitForBytes(pipe);
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
    result.files = header.files;
    result.failed = header.failed;
    result.notFound = header.notFound;
    return ReadAll(pipe, result.out.data(), result.out.size()) &&
           ReadAll(pipe, result.err.data(), result.err.size());
}

bool SendBatch(int pipe, const std::vector<Result>& results) {
    return std::all_of(results.begin(), results.end(),
                       [=](const Result& result) { return Send(pipe, result); });
}

// The files of a run and what is asked of each.
struct Task {
    const Request& request;
    const std::vector<Input>& files;
    AnswerFile answer;

    Result Answer(std::size_t index) const {
        Result result;
        result.files = 1;
        answer(request, {files[index], index, files.size()}, result);
        return result;
    }
};

[[noreturn]] void Work(const Task& task, std::size_t first, std::size_t step, int pipe) {
    for (std::size_t number = first; number < BatchCount(task.files); number += step) {
        const Batch batch = BatchAt(task.files, number);
        std::vector<Result> results;
        for (std::size_t i = batch.begin; i < batch.past; ++i) results.push_back(task.Answer(i));
        if (!SendBatch(pipe, results)) break; // the parent has gone
    }
    std::_Exit(0);
}

// The system ends this process with its parent, also one that has gone already.
void EndWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) std::_Exit(0);
}

// A worker without a process when the system has none to give. It holds no end of another's pipe, or a pipe
// would outlive its reader.
Worker Start(const Task& task, const std::vector<Worker>& before, std::size_t step) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        EndWithParent(parent);
        close(ends[0]);
        for (const Worker& worker : before) close(worker.pipe);
        Work(task, before.size(), step, ends[1]);
    }
    close(ends[1]);
    if (process > 0) return {process, ends[0]};
    close(ends[0]);
    return {};
}

// For a file whose worker ended before its time.
Result EndedEarly(const Task& task, std::size_t index) {
    Result result;
    result.files = 1;
    result.Fail(task.request, task.files[index].path,
                {std::nullopt, "the job that worked on it ended early"});
    return result;
}

void AnswerInWorkers(const Task& task, std::size_t count, const ShowResult& show) {
    std::vector<Worker> workers;
    while (workers.size() < count) workers.push_back(Start(task, workers, count));
    for (std::size_t i = 0; i < task.files.size(); ++i) {
        Result result;
        if (!Receive(workers[i / batchSize % count].pipe, result)) result = EndedEarly(task, i);
        show(result, i + 1);
    }
    for (const Worker& worker : workers) {
        if (worker.process < 0) continue;
        close(worker.pipe);
        waitpid(worker.process, nullptr, 0);
    }
}

} // namespace

void AnswerAll(const Request& request, const std::vector<Input>& files, AnswerFile answer,
               const ShowResult& show) {
    const Task task{request, files, answer};
    const std::size_t count = std::min(static_cast<std::size_t>(request.jobs), BatchCount(files));
    if (count > 1) return AnswerInWorkers(task, count, show);
    for (std::size_t i = 0; i < files.size(); ++i) show(task.Answer(i), i + 1);
}

} // namespace ostraka::tool
