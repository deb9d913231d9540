#include <answers/facts/SourceUnit.h>

#include <answers/facts/Diagnosis.h>
#include <answers/facts/RawFile.h>
#include <ostraka/foundation/TAFileBuffer.h>

namespace ostraka::answers {

bool SourceUnit::Read() {
    std::unique_ptr<TAFileBuffer> buffer;
    if (problem.empty()) buffer = ReadFile(path, problem);
    if (!buffer) {
        failure = Failure{std::nullopt, problem};
        return false;
    }
    warning = FindNul({buffer->buffer, buffer->size});
    file.reset(new TAPSourceFile(buffer.release()));
    return true;
}

bool SourceUnit::Load() {
    if (!Read()) return false;
    const SilentTraces silence;
    processResult = file->Process(macros);
    failure = FailureOf(file->GetFailure());
    return !failure;
}

bool SourceUnit::Build() {
    const SilentTraces silence;
    TAPSyntaxe::ErrMsg = "";
    root.reset(new TAPSyntaxe(STYPE_File, file.get(), 0, file->GetSize(), -1));
    buildResult = root->Build();
    buildMessage = buildResult != 0 ? TAPSyntaxe::ErrMsg.CastToCharPtr() : "";
    failure = FailureOf(root->GetFailure());
    return !failure;
}

} // namespace ostraka::answers
