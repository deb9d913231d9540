#include <ostraka/syntax/TAPSourceFile.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <gneiss/qxContext.h>
#include <gneiss/qxErrorCodeManager.h>
#include <ostraka/syntax/StreamNormaliser.h>

using ostraka::detail::StreamNormaliser;

namespace {

template <class T>
T* AllocateArray(std::size_t count) {
    void* block = std::malloc(count * sizeof(T));
    if (block == nullptr) throw std::bad_alloc();
    return static_cast<T*>(block);
}

// Gives back what lies behind the first `count` entries; an array that can't shrink is left as it is.
template <class T>
void Shrink(T*& array, std::size_t count) {
    if (void* block = std::realloc(array, count * sizeof(T)); block != nullptr)
        array = static_cast<T*>(block);
}

template <class T>
void FreeArray(T*& array) {
    std::free(array);
    array = nullptr;
}

int treeMemories = 0; // that are alive

bool IsIdl(std::string_view path) {
    const std::string_view ending = path.substr(std::min(path.rfind('.'), path.size()));
    return ending == ".idl" || ending == ".IDL" || ending == ".odl" || ending == ".ODL";
}

} // namespace

ostraka::detail::TreeMemory::TreeMemory() {
    ++treeMemories;
}

ostraka::detail::TreeMemory::~TreeMemory() {
    --treeMemories;
}

bool ostraka::detail::TreeMemory::IsAnyAlive() {
    return treeMemories > 0;
}

TAPSourceFile::TAPSourceFile(const char* fileName) : TAPSourceFile(new TAFileBuffer(fileName, 0)) {}

TAPSourceFile::TAPSourceFile(TAFileBuffer* rawFile) : buffer(rawFile), name(rawFile->fileName) {}

TAPSourceFile::~TAPSourceFile() {
    std::free(stream);
    std::free(lines);
    std::free(cols);
    delete buffer;
}

int TAPSourceFile::Process(TAIndex& macros) {
    FreeArray(stream);
    FreeArray(lines);
    FreeArray(cols);
    size = 0;
    placeMarks.clear();
    failure = TAPFailure();
    if (buffer == nullptr) return 0;

    const std::size_t fileSize = buffer->GetSize();
    char* text = buffer->GetBuffer();
    SendCallback(1, text, nullptr);
    if (text == nullptr) {
        failure.code = SFAIL_Unreadable;
        failure.systemError = qxExtLastError.GetError();
    }
    if (text == nullptr || fileSize == 0) {
        DropBuffer();
        return 0;
    }

    const std::size_t capacity = StreamNormaliser::Capacity(fileSize);
    stream = AllocateArray<char>(capacity);
    lines = AllocateArray<short>(capacity);
    cols = AllocateArray<short>(capacity);
    const void* nul = std::memchr(text, 0, fileSize);
    const char* past = nul != nullptr ? static_cast<const char*>(nul) : text + fileSize;
    if (lexicalSettings != nullptr && lexicalSettings->HasAny())
        ostraka::detail::ApplyLexicalSettings(*lexicalSettings, IsIdl(name.View()), text,
                                              text + (past - text));
    StreamNormaliser normaliser(text, past, static_cast<std::ptrdiff_t>(fileSize), stream, lines, cols);
    failure = normaliser.Run(includes, macros);
    includeList.swap(normaliser.Includes());
    if (failure.code == SFAIL_None) {
        placeMarks.swap(normaliser.PlaceMarks());
        AdoptStream(normaliser.Length());
    } else {
        const NUBUnicodeString message = qxExtContext.GetMsgMngr()->GetMsg(
            NUBString("TAparser.ImbParenthese"), NUBUnicodeString(name.CastToCharPtr()));
        qxExtContext.GetTraceMngr()->Print(MSG_KEY_qxqxError, stderr, message);
    }
    DropBuffer();
    return failure.code == SFAIL_None ? 0 : 1;
}

void TAPSourceFile::DropBuffer() {
    delete buffer;
    buffer = nullptr;
}

// Ends the stream, trims its arrays and counts the lines.
void TAPSourceFile::AdoptStream(int length) {
    stream[length] = 0;
    size = length;
    nbLine = 0;
    nbCodeLine = 0;
    // Marks of characters that were taken out again at the very end.
    while (!placeMarks.empty() && placeMarks.back().pos >= size) placeMarks.pop_back();
    if (size == 0) return;
    const auto used = static_cast<std::size_t>(length);
    Shrink(stream, used + 1);
    Shrink(lines, used);
    Shrink(cols, used);
    nbLine = GetPoint(size - 1).GetLine();
    nbCodeLine = 1;
    for (int pos = 1; pos < size; ++pos) nbCodeLine += lines[pos] != lines[pos - 1] ? 1 : 0;
    // Lines that differ in their high bits alone.
    for (const PlaceMark& mark : placeMarks) {
        if (mark.pos == 0 || lines[mark.pos] != lines[mark.pos - 1]) continue;
        nbCodeLine += GetPoint(mark.pos).GetLine() > GetPoint(mark.pos - 1).GetLine() ? 1 : 0;
    }
}

int TAPSourceFile::GetPos(int pos, int& line, int& col) {
    if (pos < 0 || pos >= size) {
        errMsg = "TAPSourceFile::GetPos - Position out of bounds";
        return 1;
    }
    const TAPSyntaxePoint point = GetPoint(pos);
    line = point.GetLine();
    col = point.GetCol();
    return 0;
}

TAPSyntaxePoint TAPSourceFile::GetPoint(int pos) const {
    if (pos < 0 || pos >= size || lines == nullptr || cols == nullptr) return TAPSyntaxePoint();
    const auto low = [=](const short* places) { return int{static_cast<std::uint16_t>(places[pos])}; };
    if (placeMarks.empty()) return TAPSyntaxePoint(low(lines), low(cols));
    auto behind = std::upper_bound(placeMarks.begin(), placeMarks.end(), pos,
                                   [](int position, const PlaceMark& mark) { return position < mark.pos; });
    const PlaceMark high = behind == placeMarks.begin() ? PlaceMark{} : *(behind - 1);
    return TAPSyntaxePoint((high.lineHigh << 16) + low(lines), (high.colHigh << 16) + low(cols));
}
