#include <ostraka/objects/Releases.h>

#include <cstdlib>
#include <utility>
#include <vector>

#include <ostraka/foundation/Ref.h>
#include <ostraka/foundation/ReleaseQueue.h>

namespace ostraka::detail {

namespace {

// The content of an attribute, which is left null. It goes when this is destroyed.
class Content {
public:
    explicit Content(TAPAttr& attr)
        : value(std::exchange(attr.value, 0)), type(std::exchange(attr.type, TAPATTR_Null)) {}
    explicit Content(TAPPath* path) : value(reinterpret_cast<std::intptr_t>(path)), type(TAPATTR_Path) {}
    Content(Content&& other) noexcept : value(other.value), type(std::exchange(other.type, TAPATTR_Null)) {}
    Content& operator=(Content&&) = delete;
    ~Content() { End(); }

private:
    void End() const;

    template <class Held>
    Held* As() const {
        return reinterpret_cast<Held*>(value);
    }

    std::intptr_t value;
    int type;
};

// Each call has a frame for what it ends and one for what that hands over, so this is about half as many
// destructors above each other.
constexpr int deepest = 200;

constinit ReleaseQueue<Content, deepest> releases;

// The elements go from the last to the first.
void DeleteList(NUBListValTAPAttr* list) {
    releases.Release([list](auto& waiting) {
        for (int i = 1; i <= list->Size(); ++i) waiting.emplace_back((*list)[i]);
        delete list;
    });
}

void Content::End() const {
    switch (type) {
    case TAPATTR_String: return std::free(As<char>());
    case TAPATTR_FileName: delete As<TAFileName>(); return;
    case TAPATTR_Object: Ref<TAPObject>::Adopt(As<TAPObject>()); return;
    case TAPATTR_List: return DeleteList(As<NUBListValTAPAttr>());
    case TAPATTR_Path: Ref<TAPPath>::Adopt(As<TAPPath>()); return;
    default: return;
    }
}

// Whether what goes may take more with it. A path takes names only.
bool MayEndMore(const TAPAttr& attr) {
    if (attr.IsType(TAPATTR_List)) return true;
    return attr.IsType(TAPATTR_Object) && attr.value != 0 &&
           reinterpret_cast<TAPObject*>(attr.value)->count == 1;
}

bool IsShared(const TAPAttr& attr) {
    return attr.IsType(TAPATTR_Object) || attr.IsType(TAPATTR_Path);
}

} // namespace

void ReleaseContent(TAPAttr& attr) {
    if (MayEndMore(attr))
        releases.Release([&attr](auto& waiting) { waiting.emplace_back(attr); });
    else
        const Content content(attr);
}

// Texts and numbers go at once, since nobody sees when.
void ReleaseAttributesAndPath(TAIndex& attributes, TAPPath* path) {
    releases.Release([&attributes, path](auto& waiting) {
        waiting.emplace_back(path);
        for (int i = attributes.size - 1; i >= 0; --i) {
            auto* attr = static_cast<TAPAttr*>(attributes.values[i]);
            if (IsShared(*attr) || MayEndMore(*attr)) waiting.emplace_back(*attr);
            delete attr;
        }
    });
}

} // namespace ostraka::detail
