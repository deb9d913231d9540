#pragma once

namespace ostraka::detail {

// Notices that a walk from class to class has come back to where it was, by remembering one class at a time,
// each for twice as many steps as the one before.
class CircleWatch {
public:
    bool IsBackAt(const void* reached) {
        if (reached == remembered) return true;
        if (++steps < patience) return false;
        remembered = reached;
        steps = 0;
        patience *= 2;
        return false;
    }

private:
    const void* remembered = nullptr;
    long steps = 0;
    long patience = 1;
};

} // namespace ostraka::detail
