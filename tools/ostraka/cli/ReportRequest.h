#pragma once

// What the command line asked of the verbs that read reports or list frameworks. Plain values, filled once.

#include <string>
#include <vector>

namespace ostraka::tool {

// A file with a table, for the errors, for the leaks or for both.
struct TableFile {
    std::string path;
    bool forErrors = true;
    bool forLeaks = true;
};

enum class TotalKey { Owner, Framework, Type };
enum class FailOn { Nothing, New, Any };

struct ReportRequest {
    // Who answers for which framework, and the people's names.
    std::vector<std::string> owners;
    std::vector<std::string> people;

    // triage: what is never charged, what is known, which calls of a stack count.
    std::vector<TableFile> ignoredCalls;
    std::vector<TableFile> ignoredOwners;
    std::vector<TableFile> filters;
    std::vector<TableFile> cuts;
    int depth = 0; // no limit

    // triage: what to show.
    std::vector<TotalKey> by;
    std::string baseline;
    std::string writeBaseline;
    bool onlyNew = false;
    bool all = false;
    bool explain = false;
    int top = 0; // no limit
    FailOn failOn = FailOn::Nothing;

    // mask: the mask, or a file of masks in its place.
    std::string mask;
    std::string masks;

    // frameworks: ask the external command for the tests of each.
    bool ask = false;
};

} // namespace ostraka::tool
