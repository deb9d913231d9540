#include <ostraka/foundation/TAFileBuffer.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <basalt/NUBUnicodeString.h>
#include <gneiss/qxContext.h>
#include <gneiss/qxErrorCodeManager.h>
#include <gneiss/qxMMap.h>

namespace {

constexpr int lookAhead = 8;
constexpr std::size_t tooLarge = std::size_t{1} << 31;

int TellFailure(const char* fileName) {
    qxExtContext.GetTraceMngr()->Print(MSG_KEY_systError, stderr, NUBUnicodeString(fileName),
                                       qxExtLastError.GetMsgError());
    return 1;
}

char* PaddedCopy(std::string_view text) {
    auto* copy = static_cast<char*>(std::malloc(text.size() + lookAhead));
    if (!copy) throw std::bad_alloc();
    char* past = std::copy(text.begin(), text.end(), copy);
    *past = '\0';
    std::fill_n(past + 1, lookAhead - 1, '\n');
    return copy;
}

} // namespace

TAFileBuffer::TAFileBuffer(const char* name, int) : fileName(strdup(name ? name : "")) {
    if (!fileName) throw std::bad_alloc();
}

TAFileBuffer::TAFileBuffer(const char* name, std::string_view text) : TAFileBuffer(name, 0) {
    loaded = 1;
    if (text.size() >= tooLarge) {
        qxExtLastError.SetError(EFBIG);
        TellFailure(fileName);
        return;
    }
    buffer = PaddedCopy(text);
    size = static_cast<unsigned int>(text.size());
}

TAFileBuffer::~TAFileBuffer() {
    std::free(fileName);
    std::free(buffer);
}

int TAFileBuffer::LoadFile() {
    if (loaded != 0) return 0;
    size = 0;
    buffer = nullptr;
    loaded = 1;
    return qxMMap(fileName, lookAhead, buffer, size, '\n') == 0 ? 0 : TellFailure(fileName);
}

char* TAFileBuffer::GetBuffer() {
    LoadFile();
    return buffer;
}

unsigned int TAFileBuffer::GetSize() {
    LoadFile();
    return size;
}
