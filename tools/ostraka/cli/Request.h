#pragma once

// What the command line asked for, and one file of the run. Plain values, filled once and then only read.

#include <string>
#include <vector>

#include "cli/ReportRequest.h"

namespace ostraka::answers {}

namespace ostraka::tool {

using namespace answers;

enum class Format { Text, Json, JsonLines, Dump, Dot, Tags, Sarif, Html };
enum class ColorMode { Auto, Always, Never };

// A path as the user gave it or as a folder held it. What is known to be unreadable before it is opened, as
// a folder that can't be listed, says so in `problem`.
struct Input {
    std::string path;
    std::string problem;
};

struct Request {
    const char* verb = ""; // by its name
    Format format = Format::Text;
    ColorMode color = ColorMode::Auto;
    int jobs = 1;
    bool quiet = false;

    // Where the files come from.
    std::vector<std::string> paths;
    std::string filesFrom;
    std::string compileCommands;

    // stream: what to show besides or instead of the text.
    bool map = false;
    bool includes = false;
    bool macros = false;

    // tree: the node to show, as positions from the root on, how many levels below it, and whole texts.
    std::vector<int> node;
    int depth = -1; // no limit
    bool fullText = false;

    // Questions to a symbol table: its workspaces, separated by ":", and its operating system.
    std::string workspaces;
    std::string osName;

    std::vector<std::string> headerFolders; // in which headers are looked for
    std::vector<std::string> droppedWords;  // that mean nothing in declarations

    bool certainOnly = false; // uses: without what the name alone tells
    bool byFile = false;      // uses: how many in each file
    bool byPrefix = false;    // find: all names that begin so
    std::string places;       // at: a file with a place on each line
    std::string from;         // header: the file that includes it
    std::string includesTo;   // includes: the file whose includers are wanted
    bool missingOnly = false; // includes: only those that weren't found; else: list those as well

    // Verbs over all files of a run: which classes, and how many of a drawing.
    std::string className;
    std::vector<std::string> kinds;
    std::string derivedFrom;
    int limit = 500;

    ReportRequest report; // triage, mask, frameworks

    // Set by the command line for the streams of the process.
    bool colorOutput = false;
    bool colorErrors = false;
};

// Whether any word of the command line says where files come from.
inline bool NamesFiles(const Request& request) {
    return !request.paths.empty() || !request.filesFrom.empty() || !request.compileCommands.empty();
}

} // namespace ostraka::tool
