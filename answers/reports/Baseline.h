#pragma once

// What was known before: a text file with a line for each known stack, sorted, so that a change of it reads
// well in a review. A line holds the type and the functions of the calls, without files and lines, which move
// with every edit; of several stacks in an order of their own.

#include <optional>
#include <set>
#include <string>

#include "ReportModel.h"
#include "ReportReader.h"

namespace ostraka::reports {

class Baseline {
public:
    // Adds the lines of a file; a fault if it is none of this kind.
    std::optional<ReportFault> Read(std::string_view text);
    void Add(const std::string& line) { lines.insert(line); }
    bool Has(const std::string& line) const { return lines.contains(line); }
    const std::set<std::string>& Lines() const { return lines; }
    std::string Text() const;

private:
    std::set<std::string> lines;
};

// The line that stands for the group.
std::string BaselineLine(const StackGroup& group);

} // namespace ostraka::reports
