#include <basalt/NUBString.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

// A position or a count of the interface as an index into `length` characters.
std::size_t clamped(int value, std::size_t length) {
    return value < 0 ? 0 : std::min(static_cast<std::size_t>(value), length);
}

} // namespace

NUBString NUBString::SubString(int start, int length) const {
    const std::size_t begin = clamped(start, text.size());
    NUBString result;
    result.text.assign(text, begin, clamped(length, text.size() - begin));
    return result;
}

void NUBString::ToUpper() {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
}

void NUBString::insert(int pos, std::string_view more) {
    text.insert(clamped(pos, text.size()), more);
}

void NUBString::Remove(int pos, int count) {
    if (pos < 0 || pos >= Length() || count <= 0) return;
    text.erase(static_cast<std::size_t>(pos), static_cast<std::size_t>(count));
}

int NUBString::ReplaceSubString(const NUBString& from, const NUBString& to) {
    const int pos = from.text.empty() ? -1 : find(from.text, 0);
    if (pos >= 0) text.replace(static_cast<std::size_t>(pos), from.text.size(), to.text);
    return pos;
}

void NUBString::Resize(int n, NUBChar fill, int) {
    const bool lengthens = n > Length();
    if (lengthens && fill.Get() == '\0') return;
    text.resize(static_cast<std::size_t>(std::max(n, 0)), fill.Get());
}

// `memmem` and not `std::string::find`, since it stays linear on texts made to repeat themselves.
int NUBString::find(std::string_view what, int from) const {
    const std::size_t begin = from < 0 ? 0 : static_cast<std::size_t>(from);
    if (begin > text.size()) return -1;
    const char* first = text.data() + begin;
    const void* found = memmem(first, text.size() - begin, what.data(), what.size());
    return found ? static_cast<int>(static_cast<const char*>(found) - text.data()) : -1;
}
