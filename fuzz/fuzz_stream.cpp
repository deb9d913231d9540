// The stream of any bytes and its places.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Check.h"
#include "support/Source.h"

namespace {

bool Holds(const std::string& text, const char* what) {
    return text.find(what) != std::string::npos;
}

bool OneOf(char c, const char* set) {
    return c != 0 && std::strchr(set, c) != nullptr;
}

void CheckPlaces(const Source& source, const std::string& text) {
    TAPSourceFile& file = *source.file;
    int last = 1;
    int codeLines = file.GetSize() > 0 ? 1 : 0;
    const int highest = 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    for (int pos = 0; pos < file.GetSize(); ++pos) {
        const TAPSyntaxePoint point = file.GetPoint(pos);
        int line = 0;
        int col = 0;
        CHECK(file.GetPos(pos, line, col) == 0 && line == point.line && col == point.col);
        CHECK(file.lines[pos] == static_cast<short>(line) && file.cols[pos] == static_cast<short>(col));
        CHECK(line >= last && line <= highest && col >= 1 && col <= static_cast<int>(text.size()) + 3);
        codeLines += pos > 0 && line > last ? 1 : 0;
        last = line;
    }
    CHECK(file.GetNbCodeLine() == codeLines && file.GetNbLine() == (file.GetSize() > 0 ? last : 0));
    int none = -1;
    CHECK(file.GetPos(file.GetSize(), none, none) == 1 && file.GetPos(-1, none, none) == 1 && none == -1);
    CHECK(file.GetPoint(file.GetSize()).line == 0);
}

// Without dialect words and character literals, in which lines aren't counted, each character of the stream
// stands in the source at its place, behind the one before it.
void CheckOrigins(const Source& source, const std::string& text) {
    std::vector<int> origins = {-1};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') origins.push_back(static_cast<int>(i));
    }
    int before = -1;
    for (int pos = 0; pos < source.file->GetSize(); ++pos) {
        const TAPSyntaxePoint point = source.file->GetPoint(pos);
        const int at = origins[static_cast<std::size_t>(point.line - 1)] + point.col - 1;
        CHECK(at > before && at < static_cast<int>(text.size()));
        const char c = text[static_cast<std::size_t>(at)];
        const char stored = source.file->stream[pos];
        CHECK(stored == c || (stored == ' ' && static_cast<unsigned char>(c) < ' '));
        before = at;
    }
}

// Without literals, all blanks are reduced and the words that go are gone.
void CheckReduction(const std::string& stream) {
    CHECK(!Holds(stream, "extern") && !Holds(stream, "__stdcall") && !Holds(stream, "\\"));
    CHECK(!Holds(stream, "__declspec(dllimport)") && !Holds(stream, "__declspec(dllexport)"));
    for (std::size_t i = 0; i < stream.size(); ++i) {
        CHECK(static_cast<unsigned char>(stream[i]) >= ' ');
        if (stream[i] != ' ') continue;
        CHECK(i == 0 || !OneOf(stream[i - 1], " (),;>"));
        CHECK(i + 1 == stream.size() || !OneOf(stream[i + 1], " (),;-*:"));
    }
}

} // namespace

// A first byte of 1 or 2 puts so many lines or columns before the text that places need more than 16 bits.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size > 0 && (data[0] == 1 || data[0] == 2)) bytes.replace(0, 1, 65'530, data[0] == 1 ? '\n' : ' ');
    const Source source(bytes);
    const Source again(bytes);
    const std::string text = bytes.c_str();
    const std::string stream(source.Stream());
    CHECK(source.result == again.result && stream == again.Stream());
    CHECK(stream.find('\0') == std::string::npos);
    CHECK(source.file->size == 0 || source.file->stream[source.file->size] == 0);
    CHECK(source.result == 0 || source.file->size == 0);
    CHECK(stream.size() <= text.size() + text.size() / 10);
    CheckPlaces(source, text);
    if (source.result != 0 || Holds(text, "NUBLIST") || Holds(text, "SEQUENCE")) return 0;
    CHECK(stream.size() <= text.size());
    if (!Holds(text, "'")) CheckOrigins(source, text);
    if (!Holds(text, "'") && !Holds(text, "\"")) CheckReduction(stream);
    return 0;
}
