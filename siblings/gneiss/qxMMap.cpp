// The size that the system tells is a first guess and no more: reading goes on until the system says that
// there is nothing left. The helpers return a value of `errno`, 0 for success.

#include <gneiss/qxMMap.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

#include <gneiss/qxErrorCodeManager.h>

namespace {

constexpr std::size_t tooLarge = std::size_t{1} << 31;
constexpr std::size_t firstGuess = 4096;

class Descriptor {
public:
    explicit Descriptor(const char* path) {
        do number = open(path, O_RDONLY | O_CLOEXEC);
        while (number < 0 && errno == EINTR);
    }
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number;
};

struct Free {
    void operator()(char* block) const { std::free(block); }
};

// Bytes read so far.
struct Content {
    std::unique_ptr<char, Free> block;
    std::size_t capacity = 0;
    std::size_t size = 0;
};

std::size_t RoundUp(std::size_t length, int mode) {
    const std::size_t unit = static_cast<std::size_t>(std::max(mode, 1));
    return (length + unit - 1) / unit * unit;
}

int Resize(Content& content, std::size_t capacity) {
    void* block = std::realloc(content.block.get(), capacity);
    if (!block) return ENOMEM;
    static_cast<void>(content.block.release());
    content.block.reset(static_cast<char*>(block));
    content.capacity = capacity;
    return 0;
}

// How many bytes to make room for, the NUL included.
int GuessLength(const Descriptor& file, std::size_t& length) {
    struct stat status;
    if (fstat(file.number, &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    const bool known = S_ISREG(status.st_mode) && status.st_size > 0;
    length = known ? static_cast<std::size_t>(status.st_size) + 1 : firstGuess;
    return length > tooLarge ? EFBIG : 0;
}

int ReadToEnd(const Descriptor& file, Content& content) {
    for (;;) {
        if (content.size == content.capacity)
            if (int error = Resize(content, content.capacity * 2)) return error;
        const ssize_t count =
            read(file.number, content.block.get() + content.size, content.capacity - content.size);
        if (count == 0) return 0;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        content.size += static_cast<std::size_t>(count);
        if (content.size >= tooLarge) return EFBIG;
    }
}

// Cuts the block to its final length and fills what is behind the bytes.
int Finish(Content& content, int mode, char pad) {
    const std::size_t length = RoundUp(content.size + 1, mode);
    if (length != content.capacity)
        if (int error = Resize(content, length)) return error;
    char* past = content.block.get() + content.size;
    *past = '\0';
    std::memset(past + 1, pad, length - content.size - 1);
    return 0;
}

int ReadFile(const char* path, int mode, Content& content, char pad) {
    if (!path) return EFAULT;
    const Descriptor file(path);
    if (file.number < 0) return errno;
    std::size_t length = 0;
    if (int error = GuessLength(file, length)) return error;
    if (int error = Resize(content, RoundUp(length, mode))) return error;
    if (int error = ReadToEnd(file, content)) return error;
    return Finish(content, mode, pad);
}

} // namespace

int qxMMap(const char* path, const int& mode, char*& data, unsigned int& size, char pad) {
    Content content;
    if (int error = ReadFile(path, mode, content, pad)) {
        qxExtLastError.SetError(error);
        return 1;
    }
    size = static_cast<unsigned int>(content.size);
    data = content.block.release();
    return 0;
}
