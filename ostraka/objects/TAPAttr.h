#pragma once

// A tagged value: null, a text, a file name, an object, a list of such values, a number or a path; and the
// list of them.
//
// A value owns what it holds and copies it with itself, but for objects and paths, which it shares by one
// reference. What a getter gives is the caller's: a copy, or an object or path with a reference of the
// caller's own to release. Only `GetList` gives the list itself, which is good until the value is assigned
// another content or dies.
//
// Lists may nest, and objects may hold each other, as deep as memory allows: copying, comparing and releasing
// need no deeper stack for it. What a release takes with it goes before the call ends: the attributes of an
// object in their order and then its path, the elements of a list from the last to the first, each with all
// that it holds before the next. Only where about a hundred of their destructors stand above each other on
// the machine stack does what the innermost one lets go of wait until that one has returned.

#include <cstdint>
#include <utility>

#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/foundation/TypedLists.h>

class TAPAttr;
class TAPObject;
class TAPPath;

using NUBListValTAPAttr = ostraka::detail::ValueList<TAPAttr>;

// Kinds of values, as TAPAttr::IsType takes them.
enum : int {
    TAPATTR_Null = 0,
    TAPATTR_String = 1,
    TAPATTR_FileName = 2,
    TAPATTR_Object = 3,
    TAPATTR_List = 4,
    TAPATTR_Integer = 5,
    TAPATTR_Path = 6,
};

class OSTRAKA_EXPORT TAPAttr {
public:
    // Read according to `type`: a number, a `char*` for `free`, or a pointer to one TAFileName, TAPObject,
    // NUBListValTAPAttr or TAPPath.
    std::intptr_t value = 0;
    int type = TAPATTR_Null;

    // The answer for what is missing. Good before the first static of a client and after the last.
    static const TAPAttr& Null;

    constexpr TAPAttr() = default;
    TAPAttr(const TAFileName& name);
    // A null text counts as the empty one.
    TAPAttr(const char* text);
    TAPAttr(const NUBString& text);
    TAPAttr(int number) : value(number), type(TAPATTR_Integer) {}
    TAPAttr(const NUBListValTAPAttr& list);
    // Each adds a reference. A null pointer keeps its kind.
    TAPAttr(TAPObject* object);
    TAPAttr(TAPPath* path);
    TAPAttr(const TAPAttr& other);
    // Leaves the other one null.
    TAPAttr(TAPAttr&& other) noexcept
        : value(std::exchange(other.value, 0)), type(std::exchange(other.type, TAPATTR_Null)) {}
    ~TAPAttr() {
        if (type != TAPATTR_Null) Release();
    }

    // The other value may be this one, or lie within its list.
    TAPAttr& operator=(const TAPAttr& other);
    TAPAttr& operator=(TAPAttr&& other) noexcept;

    // 1 or 0.
    int IsType(int code) const { return type == code; }

    // The content of a value that is of the kind asked for; FATAL otherwise. Objects and paths come with a
    // reference for the caller, unless they are null.
    int GetInteger() const;
    NUBString GetString() const;
    TAFileName GetFileName() const;
    TAPObject* GetObject() const;
    TAPPath* GetPath() const;
    NUBListValTAPAttr& GetList();
    const NUBListValTAPAttr& GetList() const;

    // The content, or the fallback when the value is of another kind. Either way an object or path comes with
    // a reference for the caller, unless it is null.
    int GetInteger(int fallback) const;
    NUBString GetString(const char* fallback) const;
    TAFileName GetFileName(const TAFileName& fallback) const;
    TAPObject* GetObject(TAPObject* fallback) const;
    TAPPath* GetPath(TAPPath* fallback) const;
    NUBListValTAPAttr& GetList(NUBListValTAPAttr& fallback);
    const NUBListValTAPAttr& GetList(const NUBListValTAPAttr& fallback) const;

    // 1 or 0. Values of one kind are equal by their text, by their number, by being the same object or path,
    // or element by element.
    int operator==(const TAPAttr& other) const { return !(*this != other); }
    int operator!=(const TAPAttr& other) const;

    // 1 or 0. By kind first, in the order of the codes, then by the bytes of the text, the number or the
    // address. Null values and lists are never less than their like, whether they are equal or not.
    int operator<(const TAPAttr& other) const;
    int operator>(const TAPAttr& other) const { return other < *this; }

private:
    void Release();
};
