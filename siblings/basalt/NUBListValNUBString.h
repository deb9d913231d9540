#pragma once

// The list of texts. It owns its elements. Positions count from 1; a reference to an element, and an
// iterator, is good until the list changes. A text handed to a call that changes the list may be an element
// of that list.

#include <cassert>
#include <cstddef>
#include <vector>

#include <basalt/Export.h>
#include <basalt/NUBCollec.h>
#include <basalt/NUBString.h>

class BASALT_EXPORT NUBListValNUBString : public NUBCollecRoot {
public:
    NUBListValNUBString() = default;
    // Empty, with room for so many.
    explicit NUBListValNUBString(int room);
    NUBListValNUBString(const NUBListValNUBString&) = default;
    NUBListValNUBString(NUBListValNUBString&&) = default;
    NUBListValNUBString& operator=(const NUBListValNUBString&) = default;
    NUBListValNUBString& operator=(NUBListValNUBString&&) = default;
    ~NUBListValNUBString() override;

    int Size() const { return static_cast<int>(elements.size()); }
    NUBString& operator[](int i) { return elements[IndexOf(i)]; }
    const NUBString& operator[](int i) const { return elements[IndexOf(i)]; }

    void Append(const NUBString& text) { elements.push_back(text); }
    void Append(NUBString&& text) { elements.push_back(static_cast<NUBString&&>(text)); }
    // Every element of the other list, which may be this one, at the end.
    void Append(const NUBListValNUBString& list);
    // Position `i` is one that holds an element.
    void InsertBefore(int i, const NUBString& text);
    void InsertAfter(int i, const NUBString& text);
    // Nothing for a position that holds no element.
    void RemovePosition(int i);
    void RemoveAll(NUBCollec::MemoryHandling mode);

    // Sorts by the sign of `order`; elements that it holds for equal keep their order.
    void QuickSort(int (*order)(NUBString*, NUBString*));

    auto begin() { return elements.begin(); }
    auto end() { return elements.end(); }
    auto begin() const { return elements.begin(); }
    auto end() const { return elements.end(); }

private:
    std::size_t IndexOf(int i) const {
        assert(i >= 1 && i <= Size());
        return static_cast<std::size_t>(i) - 1;
    }

    std::vector<NUBString> elements;
};
