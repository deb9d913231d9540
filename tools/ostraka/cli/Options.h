#pragma once

// Options that several verbs have, each told once.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "cli/Verb.h"

namespace ostraka::tool {

inline constexpr Format listFormats[] = {Format::Text, Format::Json, Format::JsonLines};
inline constexpr Format answerFormats[] = {Format::Text, Format::Json};
inline constexpr Format graphFormats[] = {Format::Text, Format::Json, Format::Dot};

// For verbs that have nothing to do without a file.
void CheckFiles(Request& request);

// One of a few words by its position, or WrongUsage with the words and the nearest of them.
std::size_t PositionOf(std::string_view option, const std::string& word, std::span<const char* const> words);

// "a, b or c"
std::string Alternatives(std::span<const char* const> words);

// ---- Rows

inline void TakePath(Request& request, const std::string& path) {
    request.paths.push_back(path);
}

inline constexpr Option filesOption = {"FILE", nullptr, "Files, folders to walk, or - for standard input",
                                       Operand{TakePath, false, true}};
inline constexpr Option filesFromOption = {
    "--files-from", "LIST", "Take the files that LIST names, one a line",
    Text{[](Request& r, const std::string& word) { r.filesFrom = word; }}};
inline constexpr Option compileCommandsOption = {
    "--compile-commands", "JSON", "Take the files of a compile_commands.json",
    Text{[](Request& r, const std::string& word) { r.compileCommands = word; }}};
inline constexpr Number jobCount = {1, 256, [](Request& r, int number) { r.jobs = number; }};

// Where files come from, and how many processes share them.
inline constexpr Option fileOptions[] = {filesOption,
                                         filesFromOption,
                                         compileCommandsOption,
                                         {"--jobs", "N", "Share the files among N processes", jobCount}};
// The same for verbs that put all files into one table.
inline constexpr Option tableFileOptions[] = {
    filesOption,
    filesFromOption,
    compileCommandsOption,
    {"--jobs", "N", "Taken as by other verbs; one process fills the one table", jobCount}};

inline void TakeWorkspaces(Request& request, const std::string& list) {
    if (!request.workspaces.empty()) request.workspaces += ':';
    request.workspaces += list;
}

inline constexpr Option workspaceOptions[] = {
    {"-w,--workspaces", "ROOT[:ROOT...]", "The workspaces, the first having precedence",
     Text{TakeWorkspaces, true}},
    {"--os", "NAME", "The level of the generated directories",
     Text{[](Request& r, const std::string& word) { r.osName = word; }}},
    {"--drop-word", "PATTERN", "Read files without this word, as DLL_* or ALIGNED()",
     Text{[](Request& r, const std::string& word) { r.droppedWords.push_back(word); }, true}}};

inline constexpr Option headerFolderOption = {
    "-I", "DIR", "Look for headers in this folder too",
    Text{[](Request& r, const std::string& folder) { r.headerFolders.push_back(folder); }, true}};

// Where headers are looked for; verbs that take files take those of the commands, too.
inline constexpr Option headerFolderOptions[] = {headerFolderOption};
inline constexpr Option searchOptions[] = {
    headerFolderOption,
    {"--compile-commands", "JSON", "Look for headers in the folders of a compile_commands.json too",
     Text{[](Request& r, const std::string& word) { r.compileCommands = word; }}}};

inline constexpr Option missingOptions[] = {{"--missing", nullptr, "List the includes that find no header",
                                             Flag{[](Request& r) { r.missingOnly = true; }}}};

inline constexpr const char* colorModes[] = {"auto", "always", "never"}; // in the order of ColorMode

inline constexpr Option outputOptions[] = {
    {"--format", nullptr, "How to print", FormatWord{}},
    {"--color", nullptr, "When to use colour",
     Word{colorModes, [](Request& r, std::size_t mode) { r.color = static_cast<ColorMode>(mode); }}},
    {"--quiet", nullptr, "Print no warnings, no progress and no count of failures",
     Flag{[](Request& r) { r.quiet = true; }}}};

inline constexpr Option limitOptions[] = {
    {"--limit", "N", "Draw no more than N of them",
     Number{1, 1000000, [](Request& r, int number) { r.limit = number; }}}};

// Who answers for which framework.
inline constexpr Option ownerOptions[] = {
    {"--owners", "FILE", "Take owners of frameworks from lines such as 'FW: Alpha RESP: xyz'",
     Text{[](Request& r, const std::string& file) { r.report.owners.push_back(file); }, true}},
    {"--people", "FILE", "Take the people's names, such as Some.One.XYZ.",
     Text{[](Request& r, const std::string& file) { r.report.people.push_back(file); }, true}}};

// A list of reports.
inline constexpr Option reportListOptions[] = {
    {"--files-from", "LIST", "Take the reports that LIST names, one a line",
     Text{[](Request& r, const std::string& list) { r.filesFrom = list; }}}};

} // namespace ostraka::tool
