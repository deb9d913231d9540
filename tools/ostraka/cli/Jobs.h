#pragma once

// Answers for all files of a run, in this process or in several, with the same results either way.

#include <cstddef>
#include <functional>
#include <vector>

#include "cli/Run.h"

namespace ostraka::tool {

// Takes the results one by one in the order of the files, with the number of files that are done.
using ShowResult = std::function<void(const Result& result, std::size_t done)>;

// As many processes as the request asks for, none of which outlives this one, whatever ends it.
void AnswerAll(const Request& request, const std::vector<Input>& files, AnswerFile answer,
               const ShowResult& show);

} // namespace ostraka::tool
