#include "verbs/ReportInputs.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unistd.h>

#include <fmt/format.h>

#include <answers/facts/RawFile.h>
#include <answers/reports/ReportReader.h>
#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/workspace/FrameworkResponsibility.h>

#include "cli/Inputs.h"
#include "formats/Text.h"

namespace ostraka::tool {

namespace {

using reports::ReportModel;
using reports::Side;

constexpr std::size_t pieceSize = 1 << 18;
constexpr std::size_t megabyte = 1'000'000;

bool IsAnyFile(const std::filesystem::path&) {
    return true;
}

void AppendLines(const std::vector<std::string>& lines, NUBListValNUBString& list) {
    for (const std::string& line : lines) list.Append(NUBString(line.c_str()));
}

// Whether the library takes a framework and its owner from the line.
bool GivesOwner(const std::string& text, FrameworkOwners& owners) {
    NUBListValNUBString table;
    owners.AppendEntries(text.c_str(), table);
    return std::any_of(table.begin(), table.end(), [](const NUBString& entry) {
        NUBListValNUBString fields;
        return Split(entry, fields) == 2;
    });
}

constexpr auto checkNothing = [](const std::string&, const std::string&) { return true; };

// Gives each line of each file that passes the check to the sides that the file is for.
template <class Check, class Use>
void ForEachLine(const std::vector<TableFile>& files, Run& run, Check check, Use use) {
    for (const TableFile& file : files)
        for (const std::string& line : ReadLines(file.path, run)) {
            if (!check(line, file.path)) continue;
            if (file.forErrors) use(Side::Errors, line);
            if (file.forLeaks) use(Side::Leaks, line);
        }
}

void LoadFilters(const ReportRequest& request, Run& run) {
    NUBListValNUBString entries[2];
    const auto check = [&](const std::string& line, const std::string& path) {
        const bool hasType = MakeMask(line, path, run)->GetType() != nullptr;
        if (!hasType)
            run.Warn(path, fmt::format("passed over, since it isn't TYPE@@@MASK: {}", Shortened(line, 60)));
        return hasType;
    };
    ForEachLine(request.filters, run, check, [&](Side side, const std::string& line) {
        entries[static_cast<int>(side)].Append(NUBString(reports::MaskText(line).c_str()));
    });
    TAPIndexContainer::SetErrorCallStackFilter(entries[static_cast<int>(Side::Errors)]);
    TAPIndexContainer::SetLeaksCallStackFilter(entries[static_cast<int>(Side::Leaks)]);
}

// The bytes of a report, through its reader.
class ReportFeed {
public:
    ReportFeed(int theDescriptor, ReportModel& theModel)
        : descriptor(theDescriptor), model(theModel), piece(pieceSize, '\0') {}
    ~ReportFeed() { close(descriptor); }
    ReportFeed(const ReportFeed&) = delete;
    ReportFeed& operator=(const ReportFeed&) = delete;

    // Why it couldn't be read to its end.
    template <class Progress>
    std::optional<Failure> Run(Progress progress) {
        std::string beginning;
        ssize_t size = 0;
        while (beginning.size() < reports::formLength && (size = ReadPiece()) > 0)
            beginning.append(piece, 0, static_cast<std::size_t>(size));
        isBlank = size == 0 && beginning.find_first_not_of(" \t\r\n") == std::string::npos;
        const auto [form, cause] = reports::Recognise(beginning);
        if (form == reports::ReportForm::None) return Failure{std::nullopt, cause};
        const auto reader = reports::MakeReader(form, model);
        bool going = reader->Feed(beginning);
        while (going && size > 0 && (size = ReadPiece()) > 0) {
            going = reader->Feed(std::string_view(piece).substr(0, static_cast<std::size_t>(size)));
            progress(static_cast<std::size_t>(size));
        }
        if (size < 0) return Failure{std::nullopt, std::generic_category().message(errno)};
        if (going) reader->End();
        return FailureOf(reader->Fault());
    }
    bool IsBlank() const { return isBlank; }

private:
    static std::optional<Failure> FailureOf(const std::optional<reports::ReportFault>& fault) {
        if (!fault) return std::nullopt;
        const Place place{fault->line, fault->column};
        return Failure{fault->line > 0 ? std::optional(place) : std::nullopt, fault->cause};
    }

    ssize_t ReadPiece() {
        ssize_t size = 0;
        do size = read(descriptor, piece.data(), piece.size());
        while (size < 0 && errno == EINTR);
        return size;
    }

    int descriptor;
    ReportModel& model;
    std::string piece;
    bool isBlank = false;
};

std::size_t SizeOf(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    return error ? 0 : static_cast<std::size_t>(size);
}

} // namespace

std::optional<std::string> ReadText(const std::string& path, Run& run) {
    run.Count(listSort);
    std::string problem;
    const auto buffer = ReadFile(path, problem);
    if (buffer) return std::string(buffer->buffer, buffer->size);
    run.Fail(listSort, path, {std::nullopt, problem});
    return std::nullopt;
}

std::vector<std::string> ReadLines(const std::string& path, Run& run) {
    const std::optional<std::string> text = ReadText(path, run);
    std::vector<std::string> lines;
    std::string_view rest = text ? std::string_view(*text) : std::string_view();
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        while (!line.empty() && static_cast<unsigned char>(line.back()) <= ' ') line.remove_suffix(1);
        if (!line.empty() && line.front() != '#') lines.emplace_back(line);
    }
    return lines;
}

OwnerLists LoadOwners(Run& run) {
    OwnerLists lists;
    for (const std::string& path : run.request.report.people) AppendLines(ReadLines(path, run), lists.people);
    FrameworkOwners owners(lists.people);
    for (const std::string& path : run.request.report.owners) {
        const std::vector<std::string> lines = ReadLines(path, run);
        const auto silent = std::count_if(lines.begin(), lines.end(),
                                          [&](const auto& line) { return !GivesOwner(line, owners); });
        if (silent > 0) run.Warn(path, fmt::format("gives no owner in {} of {} lines", silent, lines.size()));
        AppendLines(lines, lists.lines);
    }
    TAPIndexContainer::SetRespForFwIndex(lists.people, lists.lines);
    return lists;
}

std::unique_ptr<StackMask> MakeMask(const std::string& written, const std::string& path, Run& run) {
    const NUBString text(reports::MaskText(written).c_str());
    NUBListValNUBString parts;
    const bool typed = Split(text, parts, "@@@") == 2;
    auto mask = std::make_unique<StackMask>(typed ? parts[2].CastToCharPtr() : text.CastToCharPtr(),
                                            typed ? parts[1].CastToCharPtr() : nullptr);
    if (mask->Size() == 0)
        run.Warn(path, fmt::format("matches nothing, since it has more than 20 elements: {}",
                                   Shortened(written, 60)));
    return mask;
}

void LoadTables(Run& run, ReportModel& model) {
    const ReportRequest& report = run.request.report;
    ForEachLine(report.ignoredCalls, run, checkNothing, [&](Side side, const std::string& line) {
        model.Tables(side).ignoredCalls.Append(reports::CallText(line).c_str(), nullptr, 0);
    });
    ForEachLine(report.ignoredOwners, run, checkNothing, [&](Side side, const std::string& line) {
        model.Tables(side).ignoredOwners.Append(line.c_str(), nullptr, 0);
    });
    const auto checkMask = [&](const std::string& line, const std::string& path) {
        return MakeMask(line, path, run)->Size() > 0;
    };
    ForEachLine(report.cuts, run, checkMask, [&](Side side, const std::string& line) {
        model.Tables(side).cuts.push_back(
            std::make_unique<StackMask>(reports::MaskText(line).c_str(), nullptr));
    });
    LoadFilters(report, run);
    if (report.depth > 0) model.LimitDepth(report.depth);
}

std::vector<ReportState> ReadReports(Run& run, ReportModel& model) {
    std::vector<ReportState> states;
    std::size_t done = 0;
    std::size_t all = 0;
    const std::vector<Input> inputs = CollectInputs(run.request, IsAnyFile);
    for (const Input& input : inputs) all += SizeOf(input.path);
    for (const Input& input : inputs) {
        run.Count(reportSort);
        ReportState& state = states.emplace_back();
        state.path = input.path;
        const std::int64_t before = model.Records();
        model.BeginReport(static_cast<int>(states.size()) - 1);
        std::string problem = input.problem;
        const int descriptor = problem.empty() ? OpenToRead(input.path, problem) : -1;
        if (descriptor < 0) {
            state.failure = Failure{std::nullopt, problem};
        } else {
            ReportFeed feed(descriptor, model);
            state.failure = feed.Run([&](std::size_t size) {
                done += size;
                run.console.ShowProgress(done / megabyte, all / megabyte + 1, "MB");
            });
            // Whoever has nothing to report may well write nothing; but so may one that couldn't.
            if (!state.failure && feed.IsBlank()) run.Warn(input.path, "is empty");
        }
        state.records = model.Records() - before;
        if (state.failure) run.Fail(reportSort, input.path, *state.failure);
    }
    run.console.ShowProgress(1, 1, "MB");
    return states;
}

} // namespace ostraka::tool
