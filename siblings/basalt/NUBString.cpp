#include <basalt/NUBString.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>
#include <string>
#include <utility>

namespace {

// A position or a count of the interface as an index into `length` characters.
std::size_t clamped(int value, std::size_t length) {
    return value < 0 ? 0 : std::min(static_cast<std::size_t>(value), length);
}

} // namespace

namespace basalt::detail {

SharedText::Block* SharedText::newBlock(std::size_t room) {
    Block* made = new (::operator new(sizeof(Block) + room + 1)) Block;
    made->holders = 1;
    made->room = room;
    return made;
}

void SharedText::leaveBlock() {
    if (--block->holders == 0) ::operator delete(block);
}

void SharedText::setSize(std::size_t size) {
    if (isLocal()) return setLocalSize(size);
    block->size = size;
    block->bytes()[size] = '\0';
}

char* SharedText::change() {
    if (!hasRoomOfItsOwn(size())) *this = SharedText(view());
    return isLocal() ? local : block->bytes();
}

void SharedText::replace(std::size_t begin, std::size_t length, std::string_view with) {
    const std::string_view old = view();
    const std::size_t newSize = old.size() - length + with.size();
    const std::string_view behind = old.substr(begin + length);
    const bool looksInside = with.data() >= old.data() && with.data() <= old.data() + old.size();
    if (hasRoomOfItsOwn(newSize) && (!looksInside || with.empty())) {
        char* bytes = isLocal() ? local : block->bytes();
        if (!behind.empty()) std::memmove(bytes + begin + with.size(), behind.data(), behind.size());
        if (!with.empty()) std::memcpy(bytes + begin, with.data(), with.size());
        return setSize(newSize);
    }
    SharedText made;
    if (newSize > localRoom) {
        const bool grows = !old.empty() && newSize > old.size();
        made.adopt(newBlock(grows ? std::max(newSize, 2 * old.size()) : newSize));
    }
    char* bytes = made.isLocal() ? made.local : made.block->bytes();
    const auto put = [&bytes](std::string_view part) { bytes = std::copy(part.begin(), part.end(), bytes); };
    put(old.substr(0, begin));
    put(with);
    put(behind);
    made.setSize(newSize);
    *this = std::move(made);
}

} // namespace basalt::detail

NUBString NUBString::SubString(int start, int length) const {
    const std::size_t begin = clamped(start, text.size());
    return NUBString(View().substr(begin, clamped(length, text.size() - begin)));
}

void NUBString::ToUpper() {
    char* bytes = text.change();
    for (char& c : std::span(bytes, text.size()))
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
}

void NUBString::insert(int pos, std::string_view more) {
    text.replace(clamped(pos, text.size()), 0, more);
}

void NUBString::Remove(int pos, int count) {
    if (pos < 0 || pos >= Length() || count <= 0) return;
    text.replace(static_cast<std::size_t>(pos), clamped(count, text.size() - static_cast<std::size_t>(pos)),
                 {});
}

int NUBString::ReplaceSubString(const NUBString& from, const NUBString& to) {
    const int pos = from.Length() == 0 ? -1 : find(from.View(), 0);
    if (pos >= 0) text.replace(static_cast<std::size_t>(pos), from.text.size(), to.View());
    return pos;
}

void NUBString::Resize(int n, NUBChar fill, int) {
    const std::size_t size = text.size(), wanted = static_cast<std::size_t>(std::max(n, 0));
    if (wanted <= size) return text.replace(wanted, size - wanted, {});
    if (fill.Get() != '\0') text.replace(size, 0, std::string(wanted - size, fill.Get()));
}

// `memmem` and not `std::string::find`, since it stays linear on texts made to repeat themselves.
int NUBString::find(std::string_view what, int from) const {
    const std::size_t begin = from < 0 ? 0 : static_cast<std::size_t>(from);
    if (begin > text.size()) return -1;
    const char* first = text.data() + begin;
    const void* found = memmem(first, text.size() - begin, what.data(), what.size());
    return found ? static_cast<int>(static_cast<const char*>(found) - text.data()) : -1;
}
