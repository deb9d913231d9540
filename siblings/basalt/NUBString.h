#pragma once

// NUBString, the value class of all narrow text, and NUBChar, one character of it.
//
// A text is a run of bytes without a NUL. A short one lies in the object; a long one lies in a block of its
// own that its copies share until one of them changes, so that many records may hold one path for the price
// of a pointer. The share isn't counted atomically: one thread at a time. A growing text doubles its room, so
// that adding n characters one by one costs n steps. Positions count from 0 and are clamped to the text, so
// no call reads or writes outside of it. A null `const char*` counts as the empty text, and a view counts up
// to its first NUL. Order is that of the bytes as unsigned numbers.

#include <compare>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <basalt/Export.h>

// A character to fill with.
class NUBChar {
public:
    constexpr NUBChar(char character) : value(character) {}
    constexpr char Get() const { return value; }

private:
    char value;
};

namespace basalt::detail {

// The bytes of a text with a NUL behind them. Views that are handed in may look into the text itself.
class BASALT_EXPORT SharedText {
public:
    SharedText() { SetLocalSize(0); }
    explicit SharedText(std::string_view from) : SharedText() { Assign(from); }
    SharedText(const SharedText& other) noexcept : SharedText() { Share(other); }
    SharedText(SharedText&& other) noexcept {
        std::memcpy(local, other.local, sizeof local);
        other.SetLocalSize(0);
    }
    SharedText& operator=(const SharedText& other) noexcept {
        if (this == &other) return *this;
        Leave();
        Share(other);
        return *this;
    }
    SharedText& operator=(SharedText&& other) noexcept {
        if (this == &other) return *this;
        Leave();
        std::memcpy(local, other.local, sizeof local);
        other.SetLocalSize(0);
        return *this;
    }
    ~SharedText() { Leave(); }

    const char* Data() const { return IsLocal() ? local : block->Bytes(); }
    std::size_t Size() const {
        return IsLocal() ? localRoom - static_cast<std::size_t>(Spare()) : block->size;
    }
    std::string_view View() const { return {Data(), Size()}; }

    void Assign(std::string_view from) { Replace(0, Size(), from); }
    // Puts `with` in the place of the `length` bytes from `begin` on, which lie in the text.
    void Replace(std::size_t begin, std::size_t length, std::string_view with);
    // The bytes to be changed, for this text alone.
    char* Change();

private:
    struct Block {
        std::size_t holders;
        std::size_t size;
        std::size_t room;
        char* Bytes() { return reinterpret_cast<char*>(this + 1); }
    };

    static constexpr std::size_t localRoom = 15;
    static constexpr char elsewhere = 16;

    static Block* NewBlock(std::size_t room);

    // Bytes that a text in the object leaves free, so that a full one ends with its own NUL.
    char Spare() const { return local[localRoom]; }
    bool IsLocal() const { return Spare() != elsewhere; }
    void SetLocalSize(std::size_t size) {
        local[size] = '\0';
        local[localRoom] = static_cast<char>(localRoom - size);
    }
    void Adopt(Block* own) {
        block = own;
        local[localRoom] = elsewhere;
    }
    bool HasRoomOfItsOwn(std::size_t size) const {
        return IsLocal() ? size <= localRoom : block->holders == 1 && size <= block->room;
    }
    void SetSize(std::size_t size);
    // Of an empty text in the object.
    void Share(const SharedText& other) {
        std::memcpy(local, other.local, sizeof local);
        if (!IsLocal()) ++block->holders;
    }
    void Leave() {
        if (!IsLocal()) LeaveBlock();
    }
    void LeaveBlock();

    union {
        Block* block;
        char local[localRoom + 1];
    };
};

} // namespace basalt::detail

class BASALT_EXPORT NUBString {
public:
    NUBString() = default;
    NUBString(const char* from) : text(ViewOf(from)) {}
    explicit NUBString(std::string_view from) : text(UpToNul(from)) {}

    // The text with a NUL behind it; good until the text changes or dies.
    const char* CastToCharPtr() const { return text.Data(); }
    // The same as a view, with the same life.
    std::string_view View() const { return text.View(); }

    int Length() const { return static_cast<int>(text.Size()); }
    int GetLengthInChar() const { return Length(); }

    // -1, 0 or 1, as this text stands to the other one.
    int Compare(const NUBString& other) const { return SignOf(View().compare(other.View())); }
    int Compare(const char* other) const { return SignOf(View().compare(ViewOf(other))); }

    // Position of the first occurrence that begins at `from` or behind it, or -1. A negative `from` counts as
    // 0. The empty text occurs at every position up to the length.
    int FindPosition(const NUBString& what, int from = 0) const { return Find(what.View(), from); }
    int FindPosition(const char* what, int from = 0) const { return Find(ViewOf(what), from); }
    // What lies in [start, start + length); the part of it that lies within the text.
    NUBString SubString(int start, int length) const;

    NUBString& Append(const NUBString& more) { return AppendBytes(more.View()); }
    NUBString& Append(const char* more) { return AppendBytes(ViewOf(more)); }
    NUBString& Append(std::string_view more) { return AppendBytes(UpToNul(more)); }
    NUBString& operator+=(const NUBString& more) { return AppendBytes(more.View()); }
    NUBString& operator+=(const char* more) { return AppendBytes(ViewOf(more)); }
    NUBString& operator+=(std::string_view more) { return AppendBytes(UpToNul(more)); }

    // Turns a to z into A to Z, whatever the locale is.
    void ToUpper();
    // Puts `more` before the character at `pos`.
    void Insert(int pos, const NUBString& more) { InsertBytes(pos, more.View()); }
    void Insert(int pos, const char* more) { InsertBytes(pos, ViewOf(more)); }
    // Cuts up to `count` characters from `pos` on. Nothing for a position outside the text.
    void Remove(int pos, int count);
    // Replaces the first occurrence and returns its position, or -1 if there is none. The empty text occurs
    // nowhere.
    int ReplaceSubString(const NUBString& from, const NUBString& to);
    // Shortens to `n` characters, or lengthens with `fill`; a NUL to fill with lengthens nothing. The last
    // argument is accepted without effect; callers pass 1.
    void Resize(int n, NUBChar fill, int);

    friend NUBString operator+(NUBString left, const NUBString& right) {
        left.AppendBytes(right.View());
        return left;
    }
    friend NUBString operator+(NUBString left, const char* right) {
        left.AppendBytes(ViewOf(right));
        return left;
    }

    friend bool operator==(const NUBString& a, const NUBString& b) { return a.View() == b.View(); }
    friend bool operator==(const NUBString& a, const char* b) { return a.View() == ViewOf(b); }
    friend std::strong_ordering operator<=>(const NUBString& a, const NUBString& b) {
        return a.View().compare(b.View()) <=> 0;
    }
    friend std::strong_ordering operator<=>(const NUBString& a, const char* b) {
        return a.View().compare(ViewOf(b)) <=> 0;
    }

private:
    static std::string_view ViewOf(const char* from) { return from ? from : ""; }
    static std::string_view UpToNul(std::string_view from) { return from.substr(0, from.find('\0')); }
    static int SignOf(int order) { return (order > 0) - (order < 0); }

    NUBString& AppendBytes(std::string_view more) {
        text.Replace(text.Size(), 0, more);
        return *this;
    }
    void InsertBytes(int pos, std::string_view more);
    int Find(std::string_view what, int from) const;

    basalt::detail::SharedText text;
};
