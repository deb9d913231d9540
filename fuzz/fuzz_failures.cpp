// Why a text has no stream or no whole tree: there is a failure exactly when the result isn't 0, it stands in
// the text, and the same text fails in the same way.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include <answers/facts/Diagnosis.h>

#include "Check.h"
#include "support/Source.h"

namespace {

void CheckPlace(const TAPFailure& failure, const std::string& text) {
    const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
    CHECK(failure.point.line >= 1 && failure.point.line <= lines);
    CHECK(failure.point.col >= 1 && failure.point.col <= static_cast<int>(text.size()) + 3);
}

// The word stands in the text at its place.
void CheckWord(const TAPFailure& failure, const std::string& text) {
    std::size_t begin = 0;
    for (int line = 1; line < failure.point.line; ++line) begin = text.find('\n', begin) + 1;
    begin += static_cast<std::size_t>(failure.point.col - 2);
    CHECK(failure.code == SFAIL_Word && failure.position == -1);
    CHECK(text.compare(begin, std::strlen(failure.word), failure.word) == 0);
}

void CheckTree(const TAPFailure& failure, const TAPSourceFile& file) {
    CHECK(failure.code > SFAIL_Word && failure.position >= 0 && failure.position < file.GetSize());
    const TAPSyntaxePoint point = file.GetPoint(failure.position);
    CHECK(point.line == failure.point.line && point.col == failure.point.col);
}

bool AreEqual(const TAPFailure& a, const TAPFailure& b) {
    return a.code == b.code && a.position == b.position && a.point.line == b.point.line &&
           a.point.col == b.point.col && a.word == b.word && a.systemError == b.systemError;
}

void CheckWords(const TAPFailure& failure, int result) {
    const auto told = ostraka::answers::FailureOf(failure);
    CHECK((failure.code != SFAIL_None) == (result != 0) && told.has_value() == (result != 0));
    CHECK(!told || (!told->cause.empty() && told->place && told->place->line == failure.point.line));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const ostraka::answers::SilentTraces silence;
    Source source(bytes);
    Source again(bytes);
    const std::string text = bytes.c_str();
    const TAPFailure& failure = source.file->GetFailure();
    CHECK(AreEqual(failure, again.file->GetFailure()));
    CheckWords(failure, source.result);
    if (source.result != 0) {
        CheckPlace(failure, text);
        CheckWord(failure, text);
        return 0;
    }
    const TAPFailure built = source.Build()->GetFailure();
    CHECK(AreEqual(built, again.Build()->GetFailure()));
    CheckWords(built, source.buildResult);
    if (source.buildResult == 0) return 0;
    CheckPlace(built, text);
    CheckTree(built, *source.file);
    return 0;
}
