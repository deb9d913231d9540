// An unclosed dialect word: each place that looks like one is a suspect, and may as well stand in a comment.
// The library fails on a text that ends behind a suspect if that one or an earlier one is real, so the first
// real one is found by halving.

#include <answers/facts/Diagnosis.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <ostraka/foundation/TAFileBuffer.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>

#include <answers/facts/RawFile.h>

namespace ostraka::answers {

namespace {

constexpr std::array<std::string_view, 3> dialectWords = {"NUBLISTP", "NUBLISTV", "SEQUENCE"};
constexpr std::size_t wordLength = 8;
// The library leaves a word alone that stands right before the end of a text.
constexpr std::size_t farFromEnd = 16;

struct Suspect {
    std::size_t begin;
    std::size_t past; // behind the character that shows that it doesn't close
};

Place PlaceInText(std::string_view text, std::size_t pos) {
    const std::string_view before = text.substr(0, pos);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineBegin = before.rfind('\n') + 1; // 0 without a newline
    return {static_cast<int>(line), static_cast<int>(pos - lineBegin) + 1};
}

// Finds the suspects from the front; `stop` is the nearest blank or parenthesis that ends an argument, kept
// so that a text without any isn't searched for each word anew.
class SuspectScan {
public:
    explicit SuspectScan(std::string_view source) : text(source) {}

    std::vector<Suspect> Run() {
        std::vector<Suspect> found;
        for (std::size_t at = text.find_first_of("NS"); at != std::string_view::npos;
             at = text.find_first_of("NS", at + 1))
            if (std::size_t past = PastUnclosed(at); past != 0) found.push_back({at, past});
        return found;
    }

private:
    std::size_t SkipBlanks(std::size_t at) const {
        return std::min(text.find_first_not_of(' ', at), text.size());
    }
    bool Holds(std::size_t at, char c) const { return at < text.size() && text[at] == c; }

    // 0 for what is no dialect word or closes.
    std::size_t PastUnclosed(std::size_t begin) {
        const std::string_view word = text.substr(begin, wordLength);
        if (std::find(dialectWords.begin(), dialectWords.end(), word) == dialectWords.end()) return 0;
        const std::size_t open = SkipBlanks(begin + wordLength);
        if (!Holds(open, '(')) return 0;
        const std::size_t argument = SkipBlanks(open + 1);
        if (stop < argument) stop = std::min(text.find_first_of(" )", argument), text.size());
        const std::size_t close = SkipBlanks(stop);
        return Holds(close, ')') ? 0 : std::min(close + 1, text.size());
    }

    std::string_view text;
    std::size_t stop = 0;
};

bool FailsUpTo(std::string_view text, std::size_t past) {
    TAIndex macros;
    std::string head(text.substr(0, past));
    if (past < text.size()) head.append(farFromEnd, ' ');
    TAPSourceFile file(MakeBuffer(head).release());
    return file.Process(macros) != 0;
}

struct Wording {
    std::string_view begin; // of the library's text
    const char* cause;
};

constexpr Wording wordings[] = {
    {"Missing TAPBloc end", "no } for this {, or something inside it isn't closed"},
    {"Missing Instruction end", "no end of this instruction: a bracket or a literal in it isn't closed"},
    {"Depth too high", "nested more than 900 levels deep"},
    {"Missing )", "missing )"},
    {"Missing ]", "missing ]"},
    {"Missing \"", "missing \""},
    {"Missing '", "missing '"},
};

const char* CauseFor(const std::string& message) {
    for (const Wording& wording : wordings)
        if (message.starts_with(wording.begin)) return wording.cause;
    return message.empty() ? "the tree couldn't be built" : message.c_str();
}

// The place that the text itself names, in the library's numbers.
std::optional<Place> PlaceInMessage(const std::string& message) {
    const std::size_t at = message.find(" line ");
    Place place;
    if (at == std::string_view::npos ||
        std::sscanf(message.c_str() + at, " line %d col %d", &place.line, &place.column) != 2)
        return std::nullopt;
    place.column = std::max(1, place.column - 1);
    return place;
}

} // namespace

PrintedErrors::PrintedErrors() : saved(stderr) {
    // The C library lets its streams be assigned; what prints to `stderr` looks the variable up each time.
    if (std::FILE* memory = open_memstream(&text, &size)) stderr = memory;
}

PrintedErrors::~PrintedErrors() {
    if (stderr != saved) std::fclose(stderr);
    stderr = saved;
    std::free(text);
}

std::string PrintedErrors::FirstCause() {
    std::fflush(stderr);
    std::string_view line(text != nullptr ? text : "", size);
    line = line.substr(0, line.find('\n'));
    constexpr std::string_view label = "error: ";
    if (line.starts_with(label)) line.remove_prefix(label.size());
    return std::string(line);
}

Failure DiagnoseStream(std::string_view text) {
    const std::vector<Suspect> suspects = SuspectScan(text).Run();
    const auto real = std::partition_point(suspects.begin(), suspects.end(), [=](const Suspect& suspect) {
        return !FailsUpTo(text, suspect.past);
    });
    if (real == suspects.end()) return {std::nullopt, "a dialect word isn't closed"};
    const std::string word(text.substr(real->begin, wordLength));
    return {PlaceInText(text, real->begin), "missing ) for " + word + "("};
}

Failure DiagnoseTree(const TAPSourceFile& file, TAPSyntaxe& root, const std::string& message) {
    std::optional<Place> place = PlaceInMessage(message);
    // The builders go from left to right and stop at once: what failed is the last node that was made.
    if (!place) place = PlaceAt(file, root.GetLastLeaf()->GetBegin());
    return {place, CauseFor(message)};
}

Failure DescribeNul(std::string_view text, std::size_t nul) {
    const std::size_t behind = text.size() - nul - 1;
    return {PlaceInText(text, nul),
            "a NUL ends the source here; bytes behind it that aren't read: " + std::to_string(behind)};
}

} // namespace ostraka::answers
