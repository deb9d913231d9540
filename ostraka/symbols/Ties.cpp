// Classes and their ties are a graph. Two classes lie on a circle if each can be reached from the other, that
// is, if they are in one strongly connected component; Tarjan's walk finds these in one pass.

#include <ostraka/symbols/Ties.h>

#include <algorithm>
#include <unordered_map>

#include <ostraka/foundation/Ref.h>
#include <ostraka/foundation/ReleaseQueue.h>

namespace ostraka::detail {

namespace {

class CircleSearch {
public:
    // Tells the components of all classes that can be reached from this one.
    void WalkFrom(TAPDefClass* root) {
        if (visits.contains(root)) return;
        Enter(root);
        while (!walk.empty()) {
            Step& step = walk.back();
            if (step.next < step.cls->tied.size) {
                Follow(step, step.cls->tied[++step.next]);
            } else {
                Leave();
            }
        }
    }

    bool LieOnOneCircle(TAPDefClass* a, TAPDefClass* b) const {
        return visits.at(a).lowest == visits.at(b).lowest;
    }

private:
    struct Visit {
        std::size_t number; // in the order of the walk
        std::size_t lowest; // number of an open class that can be reached; of a closed one, its component
        bool open = true;   // its component isn't known yet
    };
    struct Step {
        TAPDefClass* cls;
        Visit* visit;
        int next = 0; // the tie that was followed last
    };

    void Enter(TAPDefClass* cls) {
        Visit& visit = visits.emplace(cls, Visit{visits.size(), visits.size()}).first->second;
        open.push_back(&visit);
        walk.push_back({cls, &visit});
    }

    void Follow(Step& step, TAPDefClass* target) {
        if (target == nullptr) return;
        const auto known = visits.find(target);
        if (known == visits.end()) {
            Enter(target);
        } else if (known->second.open) {
            step.visit->lowest = std::min(step.visit->lowest, known->second.number);
        }
    }

    void Leave() {
        Visit* const left = walk.back().visit;
        walk.pop_back();
        if (left->lowest == left->number) Close(left);
        if (!walk.empty()) walk.back().visit->lowest = std::min(walk.back().visit->lowest, left->lowest);
    }

    void Close(Visit* first) {
        Visit* member = nullptr;
        while (member != first) {
            member = open.back();
            open.pop_back();
            member->open = false;
            member->lowest = first->number;
        }
    }

    std::unordered_map<TAPDefClass*, Visit> visits;
    std::vector<Visit*> open;
    std::vector<Step> walk;
};

std::vector<TAPDefClass*> TiedClassesOf(const std::vector<TAPDefSource*>& sources) {
    std::vector<TAPDefClass*> classes;
    for (const TAPDefSource* source : sources)
        for (int i = 1; i <= source->classes.size; ++i)
            if (source->classes[i] != nullptr && source->classes[i]->tied.size > 0)
                classes.push_back(source->classes[i]);
    return classes;
}

constinit ReleaseQueue<Ref<TAPDefClass>> releases;

} // namespace

void BreakCirclesOfTies(const std::vector<TAPDefSource*>& sources) {
    const std::vector<TAPDefClass*> classes = TiedClassesOf(sources);
    CircleSearch search;
    for (TAPDefClass* cls : classes) search.WalkFrom(cls);
    std::vector<Ref<TAPDefClass>> untied; // which go when no tie is looked at any more
    for (TAPDefClass* cls : classes) {
        for (int i = cls->tied.size; i >= 1; --i) {
            TAPDefClass* target = cls->tied[i];
            if (target == nullptr || !search.LieOnOneCircle(cls, target)) continue;
            cls->tied.RemovePosition(i);
            untied.push_back(Ref<TAPDefClass>::Adopt(target));
        }
    }
}

void ReleaseTies(NUBListPtrTAPDefClass& tied) {
    if (tied.size == 0) return;
    releases.Release([&tied](auto& waiting) {
        for (int i = 1; i <= tied.size; ++i) waiting.push_back(Ref<TAPDefClass>::Adopt(tied[i]));
        tied.RemoveAll(0);
    });
}

} // namespace ostraka::detail
