#pragma once

// The verbs that ask one symbol table over all files of a run.

#include <string>
#include <vector>

#include "cli/Request.h"
#include "cli/Verbs.h"

namespace ostraka::tool {

class Console;
class Session;

bool IsTableVerb(const Request& request);

// Loads the files that the request names, or all of the workspaces where it names none, and lets the verb
// answer. What failed is told behind the answer.
Result RunTableVerb(const Request& request, Console& console);

// The answers. `files` are the files that were named, by the paths of the table, each once.
void AnswerOutline(const Request& request, const Session& session, const std::vector<std::string>& files,
                   Result& result);
void AnswerClasses(const Request& request, const Session& session, const std::vector<std::string>& files,
                   Result& result);
void AnswerShow(const Request& request, const Session& session, const std::vector<std::string>& files,
                Result& result);
void AnswerHierarchy(const Request& request, const Session& session, const std::vector<std::string>& files,
                     Result& result);
void AnswerTags(const Request& request, const Session& session, const std::vector<std::string>& files,
                Result& result);

} // namespace ostraka::tool
