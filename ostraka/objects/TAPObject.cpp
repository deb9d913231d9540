#include <ostraka/objects/TAPObject.h>

#include <utility>

#include <ostraka/foundation/Ref.h>
#include <ostraka/objects/Releases.h>

using ostraka::detail::Ref;

namespace {

// Of an attribute that may be missing; null when it holds none.
TAPObject* ObjectIn(const TAPAttr* attr) {
    if (attr == nullptr || !attr->IsType(TAPATTR_Object)) return nullptr;
    return reinterpret_cast<TAPObject*>(attr->value);
}

int WrappedSum(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

} // namespace

TAPObject::~TAPObject() {
    ostraka::detail::ReleaseAttributesAndPath(attributes, path);
}

void TAPObject::SetPath(TAPPath* newPath) {
    const auto former = Ref<TAPPath>::Adopt(path);
    path = Ref<TAPPath>::Retain(newPath).HandOver();
}

TAPPath* TAPObject::GetPath() const {
    return Ref<TAPPath>::Retain(path).HandOver();
}

int TAPObject::HasAttribute(const char* name) const {
    return attributes.Holds(name);
}

TAPAttr TAPObject::GetAttribute(const char* name) const {
    const TAPAttr* attr = Find(name);
    return attr != nullptr ? *attr : TAPAttr::Null;
}

// An attribute is replaced in its place, so that the name may be the one that the table holds, and a walk
// through the attributes goes on.
void TAPObject::SetAttribute(const char* name, TAPAttr value) {
    if (TAPObject* child = ObjectIn(&value)) GivePlace(child, name);
    if (TAPAttr* attr = Find(name))
        *attr = std::move(value);
    else
        attributes.Append(name, new TAPAttr(std::move(value)), 0);
}

void TAPObject::GivePlace(TAPObject* child, const char* name) const {
    const auto last = Ref<TAPName>::Adopt(new TAPName(name));
    const auto place = Ref<TAPPath>::Adopt(new TAPPath(path, last.Get()));
    child->SetPath(place.Get());
}

int TAPObject::RemoveAttribute(const char* name) {
    const int position = attributes.IsIn(name);
    if (position < 0) return 1;
    const TAPAttr* attr = Find(name);
    attributes.RemovePosition(position);
    delete attr;
    return 0;
}

int TAPObject::AppendToAttribute(const char* name, const TAPAttr& value) {
    if (Find(name) == nullptr) SetAttribute(name, NUBListValTAPAttr());
    TAPAttr& attr = *Find(name);
    switch (attr.type) {
    case TAPATTR_List: attr.GetList().Append(value); return 0;
    case TAPATTR_String: SetAttribute(name, attr.GetString() + value.GetString()); return 0;
    case TAPATTR_Integer: attr = WrappedSum(attr.GetInteger(), value.GetInteger()); return 0;
    default: return 1;
    }
}

TAPAttr TAPObject::GetNextAttribute(int& position) const {
    const char* name = nullptr;
    return GetNextAttribute(position, name);
}

TAPAttr TAPObject::GetNextAttribute(int& position, const char*& name) const {
    const int i = position - 1;
    const bool within = i >= 0 && i < attributes.size;
    position = within && position < attributes.size ? position + 1 : 0;
    name = within ? attributes.keys[i] : nullptr;
    return within ? *static_cast<const TAPAttr*>(attributes.values[i]) : TAPAttr::Null;
}

TAPObject* TAPObject::GetObject(const TAPPath* way) const {
    TAPObject* reached = nullptr;
    const TAPObject* from = this;
    for (int i = 0; way != nullptr && i < way->Size() && from != nullptr; ++i)
        from = reached = ObjectIn(from->Find(way->names[i]->GetName()));
    return Ref<TAPObject>::Retain(reached).HandOver();
}
