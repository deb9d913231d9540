// Traced lines, and the catalogue of messages. A message's text holds a % where its parameters go.

#include <gneiss/qxContext.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace {

struct Message {
    std::string_view key;
    std::string_view text;
};

constexpr std::array catalogue = {
    Message{"TAparser.ImbParenthese", "unbalanced parentheses in %"},
    Message{"TAparser.ImbBracket", "missing ] behind delete ["},
    Message{"TAparser.InvIdlArg", "an IDL argument needs a direction, a type and a name: %"},
    Message{"TAparser.InvNubIdlArg", "an IDL argument has to begin with in, out or inout: %"},
};

const Message* FindMessage(const NUBString& key) {
    for (const Message& message : catalogue)
        if (message.key == key.View()) return &message;
    return nullptr;
}

// In one piece, so that lines of several processes on one terminal don't mix.
void PrintLine(std::FILE* file, const NUBString& line) {
    if (!file) return;
    if (file != stdout) std::fflush(stdout);
    std::fputs(line.CastToCharPtr(), file);
    std::fflush(file);
}

} // namespace

constinit const qxKeyForTraceManager MSG_KEY_qxqxError("error");
constinit const qxKeyForTraceManager MSG_KEY_systError("error");
constinit qxContext qxExtContext;

void qxTraceManager::Print(const qxKeyForTraceManager& key, std::FILE* file, const NUBUnicodeString& text) {
    if (sink != nullptr && file == stderr)
        sink->Receive(key, text);
    else
        PrintLine(file, NUBString(key.label) + ": " + text.CastToCharPtr() + "\n");
}

void qxTraceManager::Print(const qxKeyForTraceManager& key, std::FILE* file, const NUBUnicodeString& text1,
                           const NUBUnicodeString& text2) {
    Print(key, file, NUBString(text1.CastToCharPtr()) + ": " + text2.CastToCharPtr());
}

qxTraceSink* qxTraceManager::SetSink(qxTraceSink* newSink) {
    return std::exchange(sink, newSink);
}

NUBUnicodeString qxMsgManager::GetMsg(const NUBString& key) {
    return GetMsg(key, NUBUnicodeString());
}

NUBUnicodeString qxMsgManager::GetMsg(const NUBString& key, const NUBUnicodeString& params) {
    const Message* message = FindMessage(key);
    if (!message) return NUBUnicodeString(key);
    const std::size_t place = message->text.find('%');
    NUBUnicodeString result(NUBString(message->text.substr(0, place)));
    if (place == std::string_view::npos) return result;
    result += params;
    result += NUBString(message->text.substr(place + 1));
    return result;
}
