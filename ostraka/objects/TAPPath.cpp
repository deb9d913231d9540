#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include <ostraka/foundation/Ref.h>
#include <ostraka/objects/TAPObject.h>

using ostraka::detail::Ref;

namespace {

constexpr int longPath = 256;

} // namespace

TAPName::TAPName(const char* text) : name(strdup(text != nullptr ? text : "")) {
    if (name == nullptr) throw std::bad_alloc();
}

TAPName::~TAPName() {
    std::free(name);
}

// The names of one path; or of a long path and of others that each go on where the one before ends, as long
// as there is room. No two paths of a row have the same size. The row ends with its longest path.
struct TAPPath::Row {
    std::vector<TAPName*> held;
    std::vector<bool> ends; // for each name, whether it is the last of a path

    Row(const TAPPath* path, std::size_t room) {
        held.reserve(room);
        for (int i = 0; path != nullptr && i < path->size; ++i) Add(path->names[i]);
    }
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    void Add(TAPName* name) {
        held.push_back(Ref<TAPName>::Retain(name).HandOver());
        ends.push_back(false);
    }
    bool CanGoOn(int end) const {
        return end >= longPath && held.size() == static_cast<std::size_t>(end) &&
               held.size() < held.capacity();
    }
    // Gives back the names that no path reaches any more. The row is empty when the last one has gone.
    void Leave(int end) {
        ends[static_cast<std::size_t>(end) - 1] = false;
        while (!ends.empty() && !ends.back()) {
            const auto last = Ref<TAPName>::Adopt(held.back());
            held.pop_back();
            ends.pop_back();
        }
    }
};

TAPPath::TAPPath(TAPName* name) : TAPPath(nullptr, name) {}

TAPPath::TAPPath(const TAPPath& other)
    : size(other.size), row(new Row(&other, static_cast<std::size_t>(other.size))) {
    names = row->held.data();
    row->ends.back() = true;
}

TAPPath::TAPPath(const TAPPath* parent, TAPName* name) : size(parent != nullptr ? parent->size + 1 : 1) {
    if (parent != nullptr && parent->row->CanGoOn(parent->size)) {
        row = parent->row;
    } else {
        const auto room = static_cast<std::size_t>(size);
        row = new Row(parent, size < longPath ? room : 2 * room);
    }
    row->Add(name);
    row->ends.back() = true;
    names = row->held.data();
}

TAPPath::~TAPPath() {
    row->Leave(size);
    if (row->held.empty()) delete row;
}

TAPName* TAPPath::operator[](int i) const {
    FATAL(i < 1 || i > size, "TAPPath::[] : bad index");
    return Ref<TAPName>::Retain(names[i - 1]).HandOver();
}
