#pragma once

// What the verbs that ask one symbol table over all files of a run have in common.

#include <string>
#include <vector>

#include "cli/Run.h"

namespace ostraka::tool {

class Session;

// `files` are the files that were named, by the paths of the table, each once.
using AnswerTable = void (*)(const Request& request, const Session& session,
                             const std::vector<std::string>& files, Result& result);

// Loads the files that the request names, or all of the workspaces where it names none, and lets the verb
// answer. What failed is told behind the answer.
void AnswerFromTable(Run& run, AnswerTable answer);

} // namespace ostraka::tool
