#pragma once

// One file on its way through the library: read, normalised, built into a tree, each step with the failure
// that it met. The unit owns the file and its tree, which end with it. What the library prints on standard
// error meanwhile is kept from the user, who gets it as a Failure that has a place.

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <answers/facts/Place.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>

namespace ostraka::answers {

class SourceUnit {
public:
    // `knownProblem`: why the file can't be read, where that is known before it is opened; else empty.
    explicit SourceUnit(std::string ofPath, std::string knownProblem = {})
        : path(std::move(ofPath)), problem(std::move(knownProblem)) {}

    // Reads the file, or standard input for "-", and normalises it. False when there is no stream, with the
    // reason in GetFailure.
    bool Load();

    // Builds the tree of a loaded file. False when it is incomplete, with the reason in GetFailure; what was
    // built stays.
    bool Build();

    bool WasRead() const { return file != nullptr; }
    TAPSourceFile& File() const { return *file; }
    TAPSyntaxe& Root() const { return *root; }
    TAIndex& Macros() { return macros; }
    const std::optional<Failure>& GetFailure() const { return failure; }

    // What the library returned, and the text that it left for a failed tree.
    int ProcessResult() const { return processResult; }
    int BuildResult() const { return buildResult; }
    const std::string& BuildMessage() const { return buildMessage; }

    // A NUL that ends the source before its end.
    const std::optional<Failure>& GetWarning() const { return warning; }

private:
    struct Release {
        void operator()(TARefCounter* counted) const { counted->Release(); }
    };

    bool Read();

    std::string path;
    std::string problem;
    TAIndex macros;
    std::unique_ptr<TAPSourceFile, Release> file;
    std::unique_ptr<TAPSyntaxe, Release> root;
    int processResult = 0;
    int buildResult = 0;
    std::string buildMessage;
    std::optional<Failure> failure;
    std::optional<Failure> warning;
};

} // namespace ostraka::answers
