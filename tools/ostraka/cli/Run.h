#pragma once

// The run of a verb: its request, its two streams, what failed and what wasn't found. A verb prints through
// it or through a Result, and the run makes the exit code and the last line of standard error.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <answers/facts/Place.h>

#include "cli/Console.h"
#include "cli/Verb.h"

namespace ostraka::tool {

// What one file or one question adds to the streams and to the exit code. Workers send it to their parent, so
// that several processes can share the files and all still comes out in their order.
struct Result {
    std::string out;
    std::string err;
    std::int64_t files = 0;    // that were read, or couldn't be
    std::int64_t failed = 0;   // those that couldn't be read or loaded whole
    std::int64_t notFound = 0; // questions without an answer

    // Names a file and why it failed, and counts it as failed.
    void Fail(const Request& request, std::string_view path, const Failure& failure);
    void Warn(const Request& request, std::string_view path, const std::optional<Place>& place,
              std::string_view cause);
    // A line about the run, as "ostraka: 2 includes not found".
    void Note(const Request& request, std::string_view line);
};

// One file of a run over several.
struct FileOfRun {
    const Input& input;
    std::size_t index; // from 0
    std::size_t count;
};

using AnswerFile = void (*)(const Request& request, const FileOfRun& file, Result& result);

using AnswerQuestion = void (*)(const Request& request, const std::string& asked, Result& result);

class Run {
public:
    Run(const Request& theRequest, Console& theConsole) : request(theRequest), console(theConsole) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    const Request& request;
    Console& console;

    // Answers for each file, in as many processes as are asked for, and shows the answers in the order of the
    // files.
    void ForEach(const std::vector<Input>& files, AnswerFile answer);

    // Answers one question, which is about one file.
    void Ask(const std::string& asked, AnswerQuestion answer);

    // Takes a result over: prints its texts and counts what it counts.
    void Show(const Result& result);

    // For verbs that read files of several sorts, as "report" and "table": each sort is counted for itself.
    void Count(std::string_view sort, std::int64_t number = 1) { CountsOf(sort).all += number; }
    void Fail(std::string_view sort, std::string_view path, const Failure& failure);
    void Warn(std::string_view path, std::string_view cause);
    std::int64_t Failed() const;

    void NotFound() { ++notFound; }

    // Tells how many of how many failed, and gives the exit code. The end of the run.
    int Close();

private:
    struct Counts {
        std::string_view sort;
        std::int64_t all = 0;
        std::int64_t failed = 0;
    };

    Counts& CountsOf(std::string_view sort);

    std::vector<Counts> counts;
    std::int64_t notFound = 0;
};

} // namespace ostraka::tool
