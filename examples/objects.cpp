// Builds a small tree of objects, prints it, and asks for an object and its place by path.

#include <cstdio>
#include <initializer_list>

#include <ostraka/ostraka.h>

namespace {

// A new object with one attribute, held by `parent` alone.
TAPObject* Add(TAPObject* parent, const char* place, const char* name, const TAPAttr& value) {
    auto* child = new TAPObject;
    child->SetAttribute(name, value);
    parent->SetAttribute(place, child);
    child->Release();
    return child;
}

void Print(const TAPObject* object, int depth);

void Print(const char* name, const TAPAttr& attribute, int depth) {
    std::printf("%*s%s", 2 * depth, "", name);
    switch (attribute.type) {
    case TAPATTR_String: std::printf(" %s\n", attribute.GetString().CastToCharPtr()); break;
    case TAPATTR_Integer: std::printf(" %d\n", attribute.GetInteger()); break;
    case TAPATTR_List:
        std::printf("\n");
        for (int i = 1; i <= attribute.GetList().Size(); ++i) Print("-", attribute.GetList()[i], depth + 1);
        break;
    case TAPATTR_Object: {
        std::printf("\n");
        TAPObject* child = attribute.GetObject();
        Print(child, depth + 1);
        child->Release();
        break;
    }
    default: std::printf("\n");
    }
}

void Print(const TAPObject* object, int depth) {
    const char* name = nullptr;
    for (int position = object->GetFirstAttributePosition(); position != 0;) {
        const TAPAttr attribute = object->GetNextAttribute(position, name);
        Print(name, attribute, depth);
    }
}

TAPPath* PathOf(std::initializer_list<const char*> names) {
    TAPPath* path = nullptr;
    for (const char* text : names) {
        auto* name = new TAPName(text);
        auto* longer = new TAPPath(path, name);
        name->Release();
        if (path != nullptr) path->Release();
        path = longer;
    }
    return path;
}

void PrintPath(const TAPPath* path) {
    for (int i = 1; i <= path->Size(); ++i) {
        TAPName* name = (*path)[i];
        std::printf("%s%s", i > 1 ? "/" : "", name->GetName());
        name->Release();
    }
}

} // namespace

int main() {
    auto* harbour = new TAPObject;
    TAPObject* north = Add(harbour, "north", "depth", 12);
    TAPObject* berth = Add(north, "berth", "ship", "Gull");
    berth->AppendToAttribute("cargo", "salt");
    berth->AppendToAttribute("cargo", 40);
    Print(harbour, 0);

    TAPPath* way = PathOf({"north", "berth"});
    if (TAPObject* found = harbour->GetObject(way)) {
        PrintPath(found->path);
        std::printf(" holds %s\n", found->GetAttribute("ship").GetString("nothing").CastToCharPtr());
        found->Release();
    }
    way->Release();
    harbour->Release();
}
