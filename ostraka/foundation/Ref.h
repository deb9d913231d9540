#pragma once

#include <utility>

namespace ostraka::detail {

// Holds one reference on a counted object, or nothing.
template <class T>
class Ref {
public:
    Ref() = default;
    // Takes over the caller's reference, such as that of a new object.
    static Ref Adopt(T* object) { return Ref(object); }
    // Adds a reference.
    static Ref Retain(T* object) {
        if (object != nullptr) object->AddRef();
        return Ref(object);
    }
    Ref(const Ref& other) : Ref(Retain(other.held)) {}
    Ref(Ref&& other) noexcept : held(other.HandOver()) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(held, other.held);
        return *this;
    }
    ~Ref() {
        if (held != nullptr) held->Release();
    }

    T* Get() const { return held; }
    T* operator->() const { return held; }
    T& operator*() const { return *held; }
    explicit operator bool() const { return held != nullptr; }

    // Makes the reference the caller's.
    T* HandOver() { return std::exchange(held, nullptr); }

private:
    explicit Ref(T* object) : held(object) {}

    T* held = nullptr;
};

} // namespace ostraka::detail
