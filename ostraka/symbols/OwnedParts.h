#pragma once

#include <cstdlib>
#include <cstring>
#include <new>

#include <ostraka/syntax/TAPSyntaxe.h>
#include <ostraka/syntax/TAPSyntaxePath.h>

// How the records hold what is theirs: counted objects, addresses of nodes, and copies of texts.
namespace ostraka::detail {

template <class Counted>
void ReleaseIfAny(Counted* object) {
    if (object != nullptr) object->Release();
}

// A path with its one reference; null for a null node.
inline TAPSyntaxePath* PathTo(const TAPSyntaxe* node) {
    return node != nullptr ? new TAPSyntaxePath(node) : nullptr;
}

// Lets `held` share `path`. The reference comes first, since the two may be one.
inline void SharePath(TAPSyntaxePath*& held, TAPSyntaxePath* path) {
    if (path != nullptr) path->AddRef();
    ReleaseIfAny(held);
    held = path;
}

// A copy for `free`; null stays null.
inline char* CopyOf(const char* text) {
    if (text == nullptr) return nullptr;
    char* copy = strdup(text);
    if (copy == nullptr) throw std::bad_alloc();
    return copy;
}

// Appends an object, which may be null, with one reference more.
template <class List, class Counted>
void AppendShared(List& list, Counted* object) {
    if (object != nullptr) object->AddRef();
    list.Append(object);
}

// Gives back the list's reference on each object, from the last to the first.
template <class List>
void ReleaseAll(List& list) {
    while (list.size > 0) {
        auto* last = list[list.size];
        list.RemovePosition(list.size);
        ReleaseIfAny(last);
    }
}

} // namespace ostraka::detail
