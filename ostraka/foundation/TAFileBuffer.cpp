#include <ostraka/foundation/TAFileBuffer.h>

#include <basalt/NUBUnicodeString.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gneiss/qxContext.h>
#include <gneiss/qxErrorCodeManager.h>
#include <gneiss/qxMMap.h>
#include <new>

TAFileBuffer::TAFileBuffer(const char* name, int) : fileName(strdup(name ? name : "")) {
    if (!fileName) throw std::bad_alloc();
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
    if (qxMMap(fileName, 8, buffer, size, '\n') == 0) return 0;
    qxExtContext.GetTraceMngr()->Print(MSG_KEY_systError, stderr, NUBUnicodeString(fileName),
                                       qxExtLastError.GetMsgError());
    return 1;
}

char* TAFileBuffer::GetBuffer() {
    LoadFile();
    return buffer;
}

unsigned int TAFileBuffer::GetSize() {
    LoadFile();
    return size;
}
