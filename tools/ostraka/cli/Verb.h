#pragma once

// A verb of the tool as one row. The parser, the help, the manual page, the completions and the run loop read
// the rows, and nobody else knows which verbs there are. All texts live as long as the process.

#include <array>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>

#include "cli/Request.h"

namespace ostraka::tool {

class Run;

// What is wrong with the command line, as one sentence without a full stop. Whatever takes a word may throw
// it.
struct WrongUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// How an option takes what stands behind it.

struct Flag { // nothing
    void (*take)(Request& request);
};
struct Number { // from `least` to `most`
    int least;
    int most;
    void (*take)(Request& request, int number);
};
struct Word { // one of a few words, given to `take` by its position among them
    std::span<const char* const> words;
    void (*take)(Request& request, std::size_t word);
    bool isList = false; // several with commas between them, and the option any number of times
};
struct FormatWord {}; // one of the formats of the verb
struct Text {
    void (*take)(Request& request, const std::string& text);
    bool isRepeated = false; // the option may stand any number of times
};
struct Operand { // what stands without an option
    void (*take)(Request& request, const std::string& text);
    bool isRequired = false;
    bool isRepeated = false;
};

struct Option {
    const char* names; // "-w,--workspaces"; of an operand its name
    const char* value; // what stands for its value in the help; null for flags, operands and words
    const char* description;
    std::variant<Flag, Number, Word, FormatWord, Text, Operand> kind;
};

struct Verb {
    const char* name;
    const char* summary;
    std::array<const char*, 3> examples; // as a shell takes them, in the sample workspace
    std::span<const Format> formats;
    std::span<const std::span<const Option>> options; // in groups, some of which several verbs have
    // Looks at the whole request once all words are taken, and may put it in order; throws WrongUsage. Null
    // where nothing has to be checked.
    void (*check)(Request& request);
    void (*run)(Run& run);
    const char* failedCheck = ""; // what else than finding nothing ends with 1, as ", or --fail-on failed"
};

// The word by which the command line knows a format.
const char* FormatName(Format format);

} // namespace ostraka::tool
