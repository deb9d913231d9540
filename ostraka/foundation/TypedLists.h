#pragma once

// The lists of the system's own types, from two templates. Positions count from 1.
//
// A pointer list, NUBListPtrX, owns nothing. It is declared in one line, beside its element X, which may
// still be incomplete; the kind says which of the further members it has, and a complete list needs no word
// for it:
//
//     class Call;
//     using NUBListPtrCall = ostraka::detail::PointerList<Call>;
//     using NUBListPtrTAPSyntaxe =
//         ostraka::detail::PointerList<TAPSyntaxe, ostraka::detail::ListKind::WithoutDuplicates>;
//     using NUBListPtrTAPSyntaxePath =
//         ostraka::detail::PointerList<TAPSyntaxePath, ostraka::detail::ListKind::Plain>;
//
// A value list, NUBListValX, owns a heap copy of each element, so that a reference to an element stays good
// until that element is removed, whatever happens to the others. It is declared in the same way, and X is
// complete where the list is used:
//
//     using NUBListValTAPAttr = ostraka::detail::ValueList<TAPAttr>;

#include <utility>

#include <basalt/NUBRawColl.h>
#include <ostraka/Export.h>

namespace ostraka::detail {

// Each kind has the members of the one before it and some more.
enum class ListKind {
    Plain,
    WithoutDuplicates, // RemoveDuplicates
    Complete,          // Compare, and the constructor from an array
};

template <class X, ListKind kind = ListKind::Complete>
class OSTRAKA_EXPORT PointerList : public NUBRawCollPV {
public:
    // Empty, with room for so many.
    explicit PointerList(int room = 0) : NUBRawCollPV(room) {}

    // The first `n` pointers of the array.
    PointerList(X** array, int n) requires(kind == ListKind::Complete) : NUBRawCollPV(n) {
        for (int i = 0; i < n; ++i) Append(array[i]);
    }

    // The element as it stands in the list, to be read or replaced. Both compilers let an access through
    // `void*` meet one through any other pointer type, which is what this cast needs.
    X*& operator[](int i) { return reinterpret_cast<X*&>(NUBRawCollPV::operator[](i)); }
    X* operator[](int i) const { return static_cast<X*>(NUBRawCollPV::operator[](i)); }

    void Append(X* element) { NUBRawCollPV::Append(element); }

    // Keeps the first of equal pointers; the others are added to `removed`, which may be null.
    void RemoveDuplicates(PointerList* removed) requires(kind != ListKind::Plain) {
        NUBRawCollPV::RemoveDuplicates(removed);
    }

    // The order of the first pair of elements that differ by `order`; else the shorter list comes first.
    static int Compare(const PointerList& a, const PointerList& b,
                       int (*order)(X*, X*)) requires(kind == ListKind::Complete) {
        return NUBRawCollPV::Compare(a, b, order);
    }

    // Sorts; elements that `order` holds for equal keep their order.
    void QuickSort(int (*order)(X*, X*)) { NUBRawCollPV::QuickSort(order); }
    using NUBRawCollPV::QuickSort;
};

// Elements differ where `!=` says so.
template <class X>
class OSTRAKA_EXPORT ValueList : public NUBCollecRoot {
public:
    ValueList() : elements(0) {}
    // Empty, with room for so many; the second argument has no effect.
    explicit ValueList(int room) : elements(room) {}
    ValueList(int room, int) : elements(room) {}
    ValueList(const ValueList& other) : NUBCollecRoot(other), elements(other.Size()) { AppendAll(other); }
    // The other list may lie within an element of this one.
    ValueList& operator=(const ValueList& other) {
        if (this == &other) return *this;
        ValueList copy(other);
        std::swap(elements, copy.elements);
        return *this;
    }
    ~ValueList() override { DeleteAll(); }

    int Size() const { return elements.size; }
    X& operator[](int i) { return *static_cast<X*>(elements[i]); }
    const X& operator[](int i) const { return *static_cast<const X*>(elements[i]); }

    // Adds a copy at the end.
    void Append(const X& element) { elements.Append(new X(element)); }

    // Deletes every element, from the last to the first.
    void RemoveAll(NUBCollec::MemoryHandling mode) {
        DeleteAll();
        elements.RemoveAll(mode);
    }

    // Deletes element `i`; later ones move down by one. Nothing for a position that holds no element.
    void RemovePosition(int i) {
        if (i < 1 || i > Size()) return;
        X* element = &(*this)[i];
        elements.RemovePosition(i);
        delete element;
    }

    int operator==(const ValueList& other) const { return !(*this != other); }
    int operator!=(const ValueList& other) const {
        if (this == &other) return 0;
        if (Size() != other.Size()) return 1;
        for (int i = 1; i <= Size(); ++i)
            if ((*this)[i] != other[i]) return 1;
        return 0;
    }

    // Sorts; elements that `order` holds for equal keep their order.
    void QuickSort(int (*order)(X*, X*)) { elements.QuickSort(order); }

private:
    void AppendAll(const ValueList& other) {
        for (int i = 1; i <= other.Size(); ++i) Append(other[i]);
    }
    void DeleteAll() {
        for (int i = Size(); i >= 1; --i) delete &(*this)[i];
    }

    NUBRawCollPV elements;
};

} // namespace ostraka::detail
