#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <ostraka/Export.h>

// What real files hold and the stream knows nothing of. Each is off unless it is set; then a file is read as
// if blanks stood there, so that every place stays what it is.
struct OSTRAKA_EXPORT TAPLexicalSettings {
    bool byteOrderMark = false;   // the three bytes of UTF-8's at the begin
    bool digitSeparators = false; // `1'000` is read as `1000 `
    bool rawStrings = false;      // `R"x(a"b)x"` is read as ` "x(a'b)x"`, and a backslash in it as a slash
    bool idlAttributes = false;   // in IDL `[in,out] long x` is read as `inout long x`; others go

    // Words that mean nothing, where they stand alone; `*` stands for any characters. With `()` behind it a
    // word goes with its arguments: "API", "DLL_*", "ALIGNED()".
    std::vector<std::string> droppedWords;

    // What every real file may hold.
    static TAPLexicalSettings ForRealFiles();

    bool HasAny() const;
};

namespace ostraka::detail {

// The index of the pattern that the word fits; -1 where none does.
OSTRAKA_EXPORT int FindDroppedWord(const std::vector<std::string>& patterns, std::string_view word);

// Rewrites the text in place, as the settings say.
void ApplyLexicalSettings(const TAPLexicalSettings& settings, bool isIdl, char* text, char* past);

} // namespace ostraka::detail
