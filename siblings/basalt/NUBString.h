#pragma once

// NUBString, the value class of all narrow text, and NUBChar, one character of it.
//
// A text is a run of bytes without a NUL and owns its memory; short texts need none beyond the object, and a
// growing one doubles its room, so that adding n characters one by one costs n steps. Positions count from 0
// and are clamped to the text, so no call reads or writes outside of it. A null `const char*` counts as the
// empty text, and a view counts up to its first NUL. Order is that of the bytes as unsigned numbers.

#include <basalt/Export.h>

#include <compare>
#include <string>
#include <string_view>

// A character to fill with.
class NUBChar {
public:
    constexpr NUBChar(char character) : value(character) {}
    constexpr char Get() const { return value; }

private:
    char value;
};

class BASALT_EXPORT NUBString {
public:
    NUBString() = default;
    NUBString(const char* from) : text(viewOf(from)) {}
    explicit NUBString(std::string_view from) : text(upToNul(from)) {}

    // The text with a NUL behind it; good until the text changes or dies.
    const char* CastToCharPtr() const { return text.c_str(); }
    // The same as a view, with the same life.
    std::string_view View() const { return text; }

    int Length() const { return static_cast<int>(text.size()); }
    int GetLengthInChar() const { return Length(); }

    // -1, 0 or 1, as this text stands to the other one.
    int Compare(const NUBString& other) const { return signOf(text.compare(other.text)); }
    int Compare(const char* other) const { return signOf(text.compare(viewOf(other))); }

    // Position of the first occurrence that begins at `from` or behind it, or -1. A negative `from` counts as
    // 0. The empty text occurs at every position up to the length.
    int FindPosition(const NUBString& what, int from = 0) const { return find(what.text, from); }
    int FindPosition(const char* what, int from = 0) const { return find(viewOf(what), from); }
    // What lies in [start, start + length); the part of it that lies within the text.
    NUBString SubString(int start, int length) const;

    NUBString& Append(const NUBString& more) { return append(more.text); }
    NUBString& Append(const char* more) { return append(viewOf(more)); }
    NUBString& Append(std::string_view more) { return append(upToNul(more)); }
    NUBString& operator+=(const NUBString& more) { return append(more.text); }
    NUBString& operator+=(const char* more) { return append(viewOf(more)); }
    NUBString& operator+=(std::string_view more) { return append(upToNul(more)); }

    // Turns a to z into A to Z, whatever the locale is.
    void ToUpper();
    // Puts `more` before the character at `pos`.
    void Insert(int pos, const NUBString& more) { insert(pos, more.text); }
    void Insert(int pos, const char* more) { insert(pos, viewOf(more)); }
    // Cuts up to `count` characters from `pos` on. Nothing for a position outside the text.
    void Remove(int pos, int count);
    // Replaces the first occurrence and returns its position, or -1 if there is none. The empty text occurs
    // nowhere.
    int ReplaceSubString(const NUBString& from, const NUBString& to);
    // Shortens to `n` characters, or lengthens with `fill`; a NUL to fill with lengthens nothing. The last
    // argument is accepted without effect; callers pass 1.
    void Resize(int n, NUBChar fill, int);

    friend NUBString operator+(NUBString left, const NUBString& right) {
        left.append(right.text);
        return left;
    }
    friend NUBString operator+(NUBString left, const char* right) {
        left.append(viewOf(right));
        return left;
    }

    friend bool operator==(const NUBString& a, const NUBString& b) { return a.text == b.text; }
    friend bool operator==(const NUBString& a, const char* b) { return a.text == viewOf(b); }
    friend std::strong_ordering operator<=>(const NUBString& a, const NUBString& b) {
        return a.text.compare(b.text) <=> 0;
    }
    friend std::strong_ordering operator<=>(const NUBString& a, const char* b) {
        return a.text.compare(viewOf(b)) <=> 0;
    }

private:
    static std::string_view viewOf(const char* from) { return from ? from : ""; }
    static std::string_view upToNul(std::string_view from) { return from.substr(0, from.find('\0')); }
    static int signOf(int order) { return (order > 0) - (order < 0); }

    NUBString& append(std::string_view more) {
        text.append(more);
        return *this;
    }
    void insert(int pos, std::string_view more);
    int find(std::string_view what, int from) const;

    std::string text;
};
