#pragma once

// Tables and reports from their files into the model of the run. Whatever can't be read is named on standard
// error and counted, and the run goes on with the rest.

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <answers/reports/ReportModel.h>

#include "cli/Console.h"
#include "cli/Request.h"
#include "formats/Text.h"

namespace ostraka::tool {

// What a run reads, as its last message counts it: lists are owners, tables, masks and baselines.
enum class Reading { List, Folder, Report };

// Names what goes wrong, and counts what was read and what failed.
class Complaints {
public:
    Complaints(const Request& theRequest, Console& theConsole) : request(theRequest), console(theConsole) {}
    void Fail(Reading what, const std::string& path, const Failure& failure);
    void Warn(const std::string& path, const std::string& cause);
    // The last line of standard error, when something failed.
    void Close();
    void Count(Reading what) { ++TallyOf(what).all; }
    int Failed() const;

private:
    struct Tally {
        const char* name;
        int all = 0;
        int failed = 0;
    };
    Tally& TallyOf(Reading what) { return tallies[static_cast<std::size_t>(what)]; }

    const Request& request;
    Console& console;
    std::array<Tally, 3> tallies{Tally{"lists"}, Tally{"folders"}, Tally{"reports"}};
};

// The lines of a list, without those that are empty or begin with "#".
std::vector<std::string> ReadLines(const std::string& path, Complaints& complaints);

// The whole text of a file; none when it can't be read.
std::optional<std::string> ReadText(const std::string& path, Complaints& complaints);

struct OwnerLists {
    NUBListValNUBString lines;
    NUBListValNUBString people;
};

// Reads the lists and gives them to the library, so that every call that is built later finds its owner.
OwnerLists LoadOwners(const Request& request, Complaints& complaints);

// The other tables of `triage`.
void LoadTables(const Request& request, reports::ReportModel& model, Complaints& complaints);

// A mask, or a filter entry with its type in front. Warns of one that is too long to match anything.
std::unique_ptr<StackMask> MakeMask(const std::string& written, const std::string& path,
                                    Complaints& complaints);

struct ReportState {
    std::string path;
    std::int64_t records = 0;
    std::optional<Failure> failure;
};

// Reads all reports that the request names, one after the other, in pieces.
std::vector<ReportState> ReadReports(const Request& request, reports::ReportModel& model, Console& console,
                                     Complaints& complaints);

} // namespace ostraka::tool
