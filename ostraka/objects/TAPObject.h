#pragma once

// Objects with named attributes, and their places. An attribute that holds an object makes a tree, in which
// each object knows its place as a path: the names of the attributes that lead to it from the root.
//
// Names, paths and objects are counted: whoever makes one holds its one reference, and the last `Release`
// destroys it. Getters that hand one out add a reference for the caller to release. An object owns its
// attributes, and holds its path; a child doesn't hold its parent.

#include <ostraka/Export.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/objects/TAPAttr.h>

class OSTRAKA_EXPORT TAPName : public TARefCounter {
public:
    char* name; // a copy of its own

    explicit TAPName(const char* text);
    ~TAPName() override;

    // Good as long as the object.
    const char* GetName() const { return name; }
};

// The names from the root down; at least one. A path never changes.
//
// It holds one reference to each of its names. A path that adds to one of 256 names or more may share the
// row of names with that one, and one reference to each name, so that a chain of n objects costs n names and
// not the square. Either way a name goes with the last path that has it.
class OSTRAKA_EXPORT TAPPath : public TARefCounter {
public:
    int size;
    TAPName** names; // `size` of them

    explicit TAPPath(TAPName* name);
    // A new path of the same names.
    TAPPath(const TAPPath& other);
    // The names of `parent`, which may be null, and then `name`.
    TAPPath(const TAPPath* parent, TAPName* name);
    ~TAPPath() override;

    int Size() const { return size; }
    // Name `i`, from 1, with a reference for the caller. FATAL when there is none.
    TAPName* operator[](int i) const;

private:
    struct Row;

    Row* row;
};

class OSTRAKA_EXPORT TAPObject : public TARefCounter {
public:
    TAIndex attributes;      // from names to TAPAttr*, owned
    TAPPath* path = nullptr; // one reference held; null for a root

    TAPObject() = default;
    ~TAPObject() override;

    // Takes a reference to the path, which may be null, and gives back the one on the former path.
    void SetPath(TAPPath* newPath);
    // With a reference for the caller; null for a root.
    TAPPath* GetPath() const;

    // 1 or 0.
    int HasAttribute(const char* name) const;
    // A copy; of `TAPAttr::Null` when there is no such attribute.
    TAPAttr GetAttribute(const char* name) const;
    // Sets or replaces. An object is given its path: that of this object and then `name`, even if it has one
    // from another parent. The paths of what lies below it stay.
    void SetAttribute(const char* name, TAPAttr value);
    // 0, or 1 when there is no such attribute. The path of a removed object stays.
    int RemoveAttribute(const char* name);
    // Adds to the end of a list, to the end of a text or to a number, which wraps around; a missing attribute
    // is an empty list. A text takes only texts and a number only numbers, FATAL otherwise. 0, or 1 when the
    // attribute is of another kind, which then stays as it is.
    int AppendToAttribute(const char* name, const TAPAttr& value);

    // The table itself. The attributes and their names are good until they are removed.
    TAIndex& GetAttributeList() { return attributes; }

    // Walks through the attributes by ascending name:
    //     for (int position = object->GetFirstAttributePosition(); position != 0;)
    //         TAPAttr attribute = object->GetNextAttribute(position, name);
    // The first position, 1, or 0 without attributes.
    int GetFirstAttributePosition() const { return attributes.size > 0; }
    // A copy of the attribute at `position`, which moves on, or to 0 after the last one. The name is the one
    // that the table holds. Null with a null name for a position without an attribute.
    TAPAttr GetNextAttribute(int& position) const;
    TAPAttr GetNextAttribute(int& position, const char*& name) const;

    // The object reached from this one along the path, with a reference for the caller; null when a name on
    // the way leads to no object, and for a null path.
    TAPObject* GetObject(const TAPPath* way) const;

private:
    TAPAttr* Find(const char* name) const { return static_cast<TAPAttr*>(attributes[name]); }
    void GivePlace(TAPObject* child, const char* name) const;
};
