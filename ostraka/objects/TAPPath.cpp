#include <ostraka/objects/TAPObject.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

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
// as there is room. No two paths of a row have the same size.
struct TAPPath::Row {
    int holders = 1;
    std::vector<TAPName*> held;

    Row(const TAPPath* path, std::size_t room) {
        held.reserve(room);
        for (int i = 0; path != nullptr && i < path->size; ++i) add(path->names[i]);
    }
    ~Row() {
        while (!held.empty()) dropLast();
    }
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    void add(TAPName* name) {
        name->AddRef();
        held.push_back(name);
    }
    void dropLast() {
        held.back()->Release();
        held.pop_back();
    }
    bool canGoOn(int end) const {
        return end >= longPath && held.size() == static_cast<std::size_t>(end) &&
               held.size() < held.capacity();
    }
};

TAPPath::TAPPath(TAPName* name) : TAPPath(nullptr, name) {}

TAPPath::TAPPath(Row* ownRow, int ofSize) : size(ofSize), names(ownRow->held.data()), row(ownRow) {}

TAPPath::TAPPath(const TAPPath& other)
    : TAPPath(new Row(&other, static_cast<std::size_t>(other.size)), other.size) {}

TAPPath::TAPPath(const TAPPath* parent, TAPName* name) : size(parent != nullptr ? parent->size + 1 : 1) {
    if (parent != nullptr && parent->row->canGoOn(parent->size)) {
        row = parent->row;
        ++row->holders;
    } else {
        const auto room = static_cast<std::size_t>(size);
        row = new Row(parent, size < longPath ? room : 2 * room);
    }
    row->add(name);
    names = row->held.data();
}

TAPPath::~TAPPath() {
    if (--row->holders == 0)
        delete row;
    else if (row->held.size() == static_cast<std::size_t>(size))
        row->dropLast();
}

TAPName* TAPPath::operator[](int i) const {
    FATAL(i < 1 || i > size, "TAPPath::[] : bad index");
    names[i - 1]->AddRef();
    return names[i - 1];
}
