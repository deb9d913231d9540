// Lists may lie in lists and objects in objects without an end that the stack could bear, so copies
// and comparisons keep what is left to do in a list of their own.

#include <ostraka/objects/TAPAttr.h>

#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include <ostraka/foundation/Fatal.h>
#include <ostraka/objects/Releases.h>
#include <ostraka/objects/TAPObject.h>

namespace {

using List = NUBListValTAPAttr;

template <class Held>
std::intptr_t WordOf(Held* held) {
    return reinterpret_cast<std::intptr_t>(held);
}

template <class Held>
Held* HeldBy(const TAPAttr& attr) {
    return reinterpret_cast<Held*>(attr.value);
}

template <class Counted>
Counted* Shared(Counted* object) {
    if (object != nullptr) object->AddRef();
    return object;
}

char* CopyOf(const char* text) {
    char* copy = strdup(text != nullptr ? text : "");
    if (copy == nullptr) throw std::bad_alloc();
    return copy;
}

List* CopyOf(const List& list) {
    auto* copy = new List(list.Size());
    std::vector<std::pair<const List*, List*>> open{{&list, copy}};
    while (!open.empty()) {
        const auto [from, to] = open.back();
        open.pop_back();
        for (int i = 1; i <= from->Size(); ++i) {
            const TAPAttr& element = (*from)[i];
            const bool nested = element.IsType(TAPATTR_List);
            to->Append(nested ? TAPAttr() : element);
            if (!nested) continue;
            const auto* inner = HeldBy<const List>(element);
            auto* innerCopy = new List(inner->Size());
            (*to)[i].type = TAPATTR_List;
            (*to)[i].value = WordOf(innerCopy);
            open.emplace_back(inner, innerCopy);
        }
    }
    return copy;
}

// The word of a copy.
std::intptr_t CopyOf(const TAPAttr& attr) {
    switch (attr.type) {
    case TAPATTR_String: return WordOf(CopyOf(HeldBy<const char>(attr)));
    case TAPATTR_FileName: return WordOf(new TAFileName(*HeldBy<const TAFileName>(attr)));
    case TAPATTR_Object: return WordOf(Shared(HeldBy<TAPObject>(attr)));
    case TAPATTR_List: return WordOf(CopyOf(*HeldBy<const List>(attr)));
    case TAPATTR_Path: return WordOf(Shared(HeldBy<TAPPath>(attr)));
    default: return attr.value;
    }
}

const char* TextOf(const TAPAttr& attr) {
    if (attr.IsType(TAPATTR_String)) return HeldBy<const char>(attr);
    return *HeldBy<const TAFileName>(attr);
}

// Of values of one kind, no lists.
bool Differ(const TAPAttr& a, const TAPAttr& b) {
    switch (a.type) {
    case TAPATTR_Null: return false;
    case TAPATTR_String:
    case TAPATTR_FileName: return std::strcmp(TextOf(a), TextOf(b)) != 0;
    default: return a.value != b.value;
    }
}

bool Differ(const List& left, const List& right) {
    std::vector<std::pair<const List*, const List*>> open{{&left, &right}};
    while (!open.empty()) {
        const auto [a, b] = open.back();
        open.pop_back();
        if (a->Size() != b->Size()) return true;
        for (int i = 1; i <= a->Size(); ++i) {
            const TAPAttr& x = (*a)[i];
            const TAPAttr& y = (*b)[i];
            if (x.type != y.type) return true;
            if (x.IsType(TAPATTR_List))
                open.emplace_back(HeldBy<const List>(x), HeldBy<const List>(y));
            else if (Differ(x, y))
                return true;
        }
    }
    return false;
}

union NeverDestroyed {
    TAPAttr attr;
    constexpr NeverDestroyed() : attr() {}
    ~NeverDestroyed() {} // NOLINT(modernize-use-equals-default): the default one is deleted
};

constinit NeverDestroyed null;

} // namespace

constinit const TAPAttr& TAPAttr::Null = null.attr;

TAPAttr::TAPAttr(const TAFileName& name) : value(WordOf(new TAFileName(name))), type(TAPATTR_FileName) {}

TAPAttr::TAPAttr(const char* text) : value(WordOf(CopyOf(text))), type(TAPATTR_String) {}

TAPAttr::TAPAttr(const NUBString& text) : TAPAttr(text.CastToCharPtr()) {}

TAPAttr::TAPAttr(const NUBListValTAPAttr& list) : value(WordOf(CopyOf(list))), type(TAPATTR_List) {}

TAPAttr::TAPAttr(TAPObject* object) : value(WordOf(Shared(object))), type(TAPATTR_Object) {}

TAPAttr::TAPAttr(TAPPath* path) : value(WordOf(Shared(path))), type(TAPATTR_Path) {}

TAPAttr::TAPAttr(const TAPAttr& other) : value(CopyOf(other)), type(other.type) {}

TAPAttr& TAPAttr::operator=(const TAPAttr& other) {
    if (this != &other) *this = TAPAttr(other);
    return *this;
}

TAPAttr& TAPAttr::operator=(TAPAttr&& other) noexcept {
    TAPAttr taken(std::move(other));
    std::swap(value, taken.value);
    std::swap(type, taken.type);
    return *this;
}

void TAPAttr::Release() {
    ostraka::detail::ReleaseContent(*this);
}

int TAPAttr::GetInteger() const {
    FATAL(type != TAPATTR_Integer, "TAPAttr::GetInteger : bad type for get");
    return static_cast<int>(value);
}

NUBString TAPAttr::GetString() const {
    FATAL(type != TAPATTR_String, "TAPAttr::GetString : bad type for get");
    return HeldBy<const char>(*this);
}

TAFileName TAPAttr::GetFileName() const {
    FATAL(type != TAPATTR_FileName, "TAPAttr::GetFileName : bad type for get");
    return *HeldBy<TAFileName>(*this);
}

TAPObject* TAPAttr::GetObject() const {
    FATAL(type != TAPATTR_Object, "TAPAttr::GetObject : bad type for get");
    return Shared(HeldBy<TAPObject>(*this));
}

TAPPath* TAPAttr::GetPath() const {
    FATAL(type != TAPATTR_Path, "TAPAttr::GetPath : bad type for get");
    return Shared(HeldBy<TAPPath>(*this));
}

NUBListValTAPAttr& TAPAttr::GetList() {
    return const_cast<List&>(std::as_const(*this).GetList());
}

const NUBListValTAPAttr& TAPAttr::GetList() const {
    FATAL(type != TAPATTR_List, "TAPAttr::GetList : bad type for get");
    return *HeldBy<const List>(*this);
}

int TAPAttr::GetInteger(int fallback) const {
    return IsType(TAPATTR_Integer) ? GetInteger() : fallback;
}

NUBString TAPAttr::GetString(const char* fallback) const {
    return IsType(TAPATTR_String) ? GetString() : fallback;
}

TAFileName TAPAttr::GetFileName(const TAFileName& fallback) const {
    return IsType(TAPATTR_FileName) ? GetFileName() : fallback;
}

TAPObject* TAPAttr::GetObject(TAPObject* fallback) const {
    return IsType(TAPATTR_Object) ? GetObject() : Shared(fallback);
}

TAPPath* TAPAttr::GetPath(TAPPath* fallback) const {
    return IsType(TAPATTR_Path) ? GetPath() : Shared(fallback);
}

NUBListValTAPAttr& TAPAttr::GetList(NUBListValTAPAttr& fallback) {
    return IsType(TAPATTR_List) ? GetList() : fallback;
}

const NUBListValTAPAttr& TAPAttr::GetList(const NUBListValTAPAttr& fallback) const {
    return IsType(TAPATTR_List) ? GetList() : fallback;
}

int TAPAttr::operator!=(const TAPAttr& other) const {
    if (type != other.type) return 1;
    return IsType(TAPATTR_List) ? Differ(GetList(), other.GetList()) : Differ(*this, other);
}

int TAPAttr::operator<(const TAPAttr& other) const {
    if (type != other.type) return type < other.type;
    switch (type) {
    case TAPATTR_String:
    case TAPATTR_FileName: return std::strcmp(TextOf(*this), TextOf(other)) < 0;
    case TAPATTR_Integer: return value < other.value;
    case TAPATTR_Object:
    case TAPATTR_Path: return static_cast<std::uintptr_t>(value) < static_cast<std::uintptr_t>(other.value);
    default: return 0;
    }
}
