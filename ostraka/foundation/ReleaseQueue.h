#pragma once

#include <utility>
#include <vector>

// Releases that cost no machine stack in proportion to a structure's depth. What dies may hold more of its
// kind, which dies with it; were each destructor to end the next thing itself, a long chain would need a
// frame for every link. So a destructor hands over what it holds, and the outermost one ends it all.
namespace ostraka::detail {

// `T` gives back what it holds when it is destroyed. Up to `deepest` calls may stand above each other on the
// machine stack, each of which ends its own things before it returns; with 1, only the outermost does. What
// is handed over deeper down waits until the destructor that hands it over has returned.
template <class T, int deepest = 1>
class ReleaseQueue {
public:
    // `add` appends to the vector it is given what shall go, in reverse: the last one goes first, and with it
    // all that it holds, before the next.
    template <class Add>
    void Release(Add add) {
        if (depth == deepest) return add(*waiting);
        std::vector<T> own;
        std::vector<T>* const outer = std::exchange(waiting, &own);
        ++depth;
        add(own);
        while (!own.empty()) {
            const T next = std::move(own.back());
            own.pop_back();
        }
        --depth;
        waiting = outer;
    }

private:
    std::vector<T>* waiting = nullptr; // of the innermost call
    int depth = 0;
};

} // namespace ostraka::detail
