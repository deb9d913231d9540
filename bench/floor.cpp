// The least that any reader of such a stream has to do, as a measure for the library's: it drops comments,
// directives and runs of blanks, and writes a character, a line and a column for whatever is left. No blank
// is judged by its neighbours, no word is looked at, and nothing is kept.
//
//     floor LIST

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Measure.h"

namespace {

enum CharacterClass : std::uint8_t { Plain, Blank, Quote, Slash, Hash, Nul };

constexpr auto classes = [] {
    std::array<std::uint8_t, 256> table{};
    for (int c = 1; c <= ' '; ++c) table[static_cast<std::size_t>(c)] = Blank;
    table['"'] = table['\''] = Quote;
    table['/'] = Slash;
    table['#'] = Hash;
    table[0] = Nul;
    return table;
}();

CharacterClass ClassOf(char c) {
    return static_cast<CharacterClass>(classes[static_cast<unsigned char>(c)]);
}

struct Stream {
    char* text;
    std::int16_t* lines;
    std::int16_t* cols;
    std::size_t length;
};

// One walk over a text that ends in NUL.
class Reducer {
public:
    Reducer(const char* first, const char* end, Stream& stream)
        : pos(first), past(end), lineStart(first), out(stream) {}

    void Run() {
        char* text = out.text;
        std::int16_t* lines = out.lines;
        std::int16_t* cols = out.cols;
        std::size_t length = 0;
        const auto store = [&](char c) {
            text[length] = c;
            lines[length] = static_cast<std::int16_t>(line);
            cols[length] = static_cast<std::int16_t>(pos - lineStart);
            ++length;
        };
        for (;;) {
            const char c = *pos;
            switch (ClassOf(c)) {
            case Plain:
                freshLine = false;
                store(c);
                ++pos;
                break;
            case Blank:
                if (length == 0 || text[length - 1] != ' ') store(' ');
                SkipBlanks();
                break;
            case Quote:
                freshLine = false;
                store(c);
                for (++pos; pos < past && *pos != c && (c == '"' || *pos != '\n'); ++pos) {
                    if (*pos == '\n') NextLine();
                    store(*pos);
                    if (*pos == '\\' && pos + 1 < past && pos[1] != '\n') store(*++pos);
                }
                if (pos == past || *pos != c) break;
                store(c);
                ++pos;
                break;
            case Slash:
                if (pos[1] == '/') {
                    pos = EndOfLine(pos);
                } else if (pos[1] == '*') {
                    SkipBlockComment();
                } else {
                    freshLine = false;
                    store(c);
                    ++pos;
                }
                break;
            case Hash:
                if (freshLine) {
                    SkipDirective();
                } else {
                    store(c);
                    ++pos;
                }
                break;
            case Nul: out.length = length; return;
            }
        }
    }

private:
    void NextLine() {
        ++line;
        lineStart = pos;
        freshLine = true;
    }

    const char* EndOfLine(const char* from) const {
        const void* found = std::memchr(from, '\n', static_cast<std::size_t>(past - from));
        return found != nullptr ? static_cast<const char*>(found) : past;
    }

    void SkipBlanks() {
        for (; ClassOf(*pos) == Blank; ++pos) {
            if (*pos == '\n') NextLine();
        }
    }

    void SkipBlockComment() {
        for (pos += 2; pos < past && !(pos[0] == '*' && pos[1] == '/'); ++pos) {
            if (*pos == '\n') NextLine();
        }
        pos += pos < past ? 2 : 0;
    }

    // Up to the newline that ends the directive, with the lines that a backslash ties to it.
    void SkipDirective() {
        for (;;) {
            pos = EndOfLine(pos);
            const char* last = pos - 1;
            while (last > lineStart && *last == '\r') --last;
            if (pos == past || *last != '\\') return;
            NextLine();
            ++pos;
        }
    }

    const char* pos;
    const char* past;
    const char* lineStart; // the newline before the line, or the first character
    int line = 1;
    bool freshLine = true; // nothing but blanks and comments so far
    Stream& out;
};

// The whole file with a NUL behind it, from malloc; null if it can't be read.
char* ReadWhole(const char* name, std::size_t& size) {
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    if (file < 0) return nullptr;
    struct stat status {};
    char* text = nullptr;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        const auto room = static_cast<std::size_t>(status.st_size);
        text = static_cast<char*>(std::malloc(room + 1));
        size = 0;
        for (ssize_t got = 1; size < room && got > 0; size += static_cast<std::size_t>(got > 0 ? got : 0))
            got = read(file, text + size, room - size);
        text[size] = 0;
    }
    close(file);
    return text;
}

// Allocates for the size of the source and trims to what is left of it.
std::size_t Reduce(const char* text, std::size_t size) {
    Stream stream{static_cast<char*>(std::malloc(size + 1)),
                  static_cast<std::int16_t*>(std::malloc((size + 1) * sizeof(std::int16_t))),
                  static_cast<std::int16_t*>(std::malloc((size + 1) * sizeof(std::int16_t))), 0};
    Reducer(text, text + size, stream).Run();
    const std::size_t length = stream.length;
    stream.text[length] = 0;
    stream.text = static_cast<char*>(std::realloc(stream.text, length + 1));
    stream.lines =
        static_cast<std::int16_t*>(std::realloc(stream.lines, (length + 1) * sizeof(std::int16_t)));
    stream.cols = static_cast<std::int16_t*>(std::realloc(stream.cols, (length + 1) * sizeof(std::int16_t)));
    std::free(stream.text);
    std::free(stream.lines);
    std::free(stream.cols);
    return length;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: floor LIST\n");
        return 2;
    }
    std::size_t bytes = 0;
    std::size_t left = 0;
    int files = 0;
    for (const std::string& name : bench::ReadList(argv[1])) {
        std::size_t size = 0;
        char* text = ReadWhole(name.c_str(), size);
        if (text == nullptr) continue;
        left += Reduce(text, size);
        std::free(text);
        bytes += size;
        ++files;
    }
    const double seconds = bench::CpuSeconds();
    std::printf("floor files %d bytes %zu left %zu seconds %.3f MB/s %.1f\n", files, bytes, left, seconds,
                static_cast<double>(bytes) / 1e6 / seconds);
    return 0;
}
