#include <basalt/NUBString.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>
#include <string>
#include <utility>

namespace {

// A position or a count of the interface as an index into `length` characters.
std::size_t Clamped(int value, std::size_t length) {
    return value < 0 ? 0 : std::min(static_cast<std::size_t>(value), length);
}

} // namespace

namespace basalt::detail {

SharedText::Block* SharedText::NewBlock(std::size_t room) {
    Block* made = new (::operator new(sizeof(Block) + room + 1)) Block;
    made->holders = 1;
    made->room = room;
    return made;
}

void SharedText::LeaveBlock() {
    if (--block->holders == 0) ::operator delete(block);
}

void SharedText::SetSize(std::size_t size) {
    if (IsLocal()) return SetLocalSize(size);
    block->size = size;
    block->Bytes()[size] = '\0';
}

char* SharedText::Change() {
    if (!HasRoomOfItsOwn(Size())) *this = SharedText(View());
    return IsLocal() ? local : block->Bytes();
}

void SharedText::Replace(std::size_t begin, std::size_t length, std::string_view with) {
    const std::string_view old = View();
    const std::size_t newSize = old.size() - length + with.size();
    const std::string_view behind = old.substr(begin + length);
    const bool looksInside = with.data() >= old.data() && with.data() <= old.data() + old.size();
    if (HasRoomOfItsOwn(newSize) && (!looksInside || with.empty())) {
        char* bytes = IsLocal() ? local : block->Bytes();
        if (!behind.empty()) std::memmove(bytes + begin + with.size(), behind.data(), behind.size());
        if (!with.empty()) std::memcpy(bytes + begin, with.data(), with.size());
        return SetSize(newSize);
    }
    SharedText made;
    if (newSize > localRoom) {
        const bool grows = !old.empty() && newSize > old.size();
        made.Adopt(NewBlock(grows ? std::max(newSize, 2 * old.size()) : newSize));
    }
    char* bytes = made.IsLocal() ? made.local : made.block->Bytes();
    const auto put = [&bytes](std::string_view part) { bytes = std::copy(part.begin(), part.end(), bytes); };
    put(old.substr(0, begin));
    put(with);
    put(behind);
    made.SetSize(newSize);
    *this = std::move(made);
}

} // namespace basalt::detail

NUBString NUBString::SubString(int start, int length) const {
    const std::size_t begin = Clamped(start, text.Size());
    return NUBString(View().substr(begin, Clamped(length, text.Size() - begin)));
}

void NUBString::ToUpper() {
    char* bytes = text.Change();
    for (char& c : std::span(bytes, text.Size()))
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
}

void NUBString::InsertBytes(int pos, std::string_view more) {
    text.Replace(Clamped(pos, text.Size()), 0, more);
}

void NUBString::Remove(int pos, int count) {
    if (pos < 0 || pos >= Length() || count <= 0) return;
    text.Replace(static_cast<std::size_t>(pos), Clamped(count, text.Size() - static_cast<std::size_t>(pos)),
                 {});
}

int NUBString::ReplaceSubString(const NUBString& from, const NUBString& to) {
    const int pos = from.Length() == 0 ? -1 : Find(from.View(), 0);
    if (pos >= 0) text.Replace(static_cast<std::size_t>(pos), from.text.Size(), to.View());
    return pos;
}

void NUBString::Resize(int n, NUBChar fill, int) {
    const std::size_t size = text.Size(), wanted = static_cast<std::size_t>(std::max(n, 0));
    if (wanted <= size) return text.Replace(wanted, size - wanted, {});
    if (fill.Get() != '\0') text.Replace(size, 0, std::string(wanted - size, fill.Get()));
}

// `memmem` and not `std::string::find`, since it stays linear on texts made to repeat themselves.
int NUBString::Find(std::string_view what, int from) const {
    const std::size_t begin = from < 0 ? 0 : static_cast<std::size_t>(from);
    if (begin > text.Size()) return -1;
    const char* first = text.Data() + begin;
    const void* found = memmem(first, text.Size() - begin, what.data(), what.size());
    return found ? static_cast<int>(static_cast<const char*>(found) - text.Data()) : -1;
}
