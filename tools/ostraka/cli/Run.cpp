#include "cli/Run.h"

#include <algorithm>
#include <numeric>

#include <fmt/format.h>

#include "cli/ExitCodes.h"
#include "cli/Jobs.h"
#include "cli/Messages.h"

namespace ostraka::tool {

namespace {

constexpr std::string_view filesSort = "file";

} // namespace

void Result::Fail(const Request& request, std::string_view path, const Failure& failure) {
    AppendMessage(err, path, failure.place, "error", failure.cause, request.colorErrors);
    ++failed;
}

void Result::Warn(const Request& request, std::string_view path, const std::optional<Place>& place,
                  std::string_view cause) {
    if (!request.quiet) AppendMessage(err, path, place, "warning", cause, request.colorErrors);
}

void Result::Note(const Request& request, std::string_view line) {
    if (!request.quiet) err += fmt::format("ostraka: {}\n", line);
}

void Run::ForEach(const std::vector<Input>& files, AnswerFile answer) {
    const auto show = [&](const Result& result, std::size_t done) {
        Show(result);
        console.ShowProgress(done, files.size());
    };
    AnswerAll(request, files, answer, show);
}

void Run::Ask(const std::string& asked, AnswerQuestion answer) {
    Result result;
    result.files = 1;
    answer(request, asked, result);
    Show(result);
}

void Run::Show(const Result& result) {
    console.Out(result.out);
    console.Err(result.err);
    Counts& ofFiles = CountsOf(filesSort);
    ofFiles.all += result.files;
    ofFiles.failed += result.failed;
    notFound += result.notFound;
}

void Run::Fail(std::string_view sort, std::string_view path, const Failure& failure) {
    std::string line;
    AppendMessage(line, path, failure.place, "error", failure.cause, request.colorErrors);
    console.Err(line);
    ++CountsOf(sort).failed;
}

void Run::Warn(std::string_view path, std::string_view cause) {
    Result result;
    result.Warn(request, path, std::nullopt, cause);
    console.Err(result.err);
}

std::int64_t Run::Failed() const {
    return std::accumulate(counts.begin(), counts.end(), std::int64_t{0},
                           [](std::int64_t sum, const Counts& each) { return sum + each.failed; });
}

Run::Counts& Run::CountsOf(std::string_view sort) {
    const auto known =
        std::find_if(counts.begin(), counts.end(), [=](const Counts& each) { return each.sort == sort; });
    return known != counts.end() ? *known : counts.emplace_back(Counts{sort});
}

int Run::Close() {
    if (Failed() == 0) return notFound > 0 ? ExitNotFound : ExitDone;
    std::string line;
    for (const Counts& each : counts)
        if (each.failed > 0)
            line +=
                fmt::format("{}{} of {} {}s", line.empty() ? "" : " and ", each.failed, each.all, each.sort);
    if (!request.quiet) console.Err(fmt::format("ostraka: {} failed\n", line));
    return ExitFailed;
}

} // namespace ostraka::tool
