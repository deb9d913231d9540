#include <answers/facts/SourceUnit.h>

#include <ostraka/foundation/TAFileBuffer.h>

#include <answers/facts/Diagnosis.h>
#include <answers/facts/RawFile.h>

namespace ostraka::answers {

bool SourceUnit::Read() {
    std::unique_ptr<TAFileBuffer> buffer;
    if (problem.empty()) buffer = ReadFile(path, problem);
    if (!buffer) {
        failure = Failure{std::nullopt, problem};
        return false;
    }
    text.assign(buffer->buffer, buffer->size);
    file.reset(new TAPSourceFile(buffer.release()));
    return true;
}

void SourceUnit::WarnOfNul() {
    if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos)
        warning = DescribeNul(text, nul);
}

bool SourceUnit::Load() {
    if (!Read()) return false;
    WarnOfNul();
    PrintedErrors printed;
    processResult = file->Process(macros);
    if (processResult != 0) failure = DiagnoseStream(text);
    text = std::string();
    return !failure;
}

bool SourceUnit::Build() {
    PrintedErrors printed;
    TAPSyntaxe::ErrMsg = "";
    root.reset(new TAPSyntaxe(STYPE_File, file.get(), 0, file->GetSize(), -1));
    buildResult = root->Build();
    if (buildResult == 0) return true;
    buildMessage = TAPSyntaxe::ErrMsg.CastToCharPtr();
    failure = DiagnoseTree(*file, *root, buildMessage.empty() ? printed.FirstCause() : buildMessage);
    return false;
}

} // namespace ostraka::answers
