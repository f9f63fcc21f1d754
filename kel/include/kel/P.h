/// @file kel/P.h
/// Intrusive reference-counting pointers: `P<T>` to a mutable object, `PC<T>` to a const one.
#pragma once

#include "kel/Base.h"

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace kel {

/// Holds one reference to an object derived from IBase, or null. Converts to a plain pointer, which is valid
/// as long as somebody holds a reference.
///
/// Thread safety: different P<T> to one object may be used from different threads; one P<T> may not.
template <class T>
class P {
public:
    constexpr P() noexcept = default;
    /// Holds nothing.
    constexpr P(std::nullptr_t) noexcept {}
    /// Takes a reference to the object, which may be null. The first P to an object made with `new` owns it.
    P(T* object) noexcept : object_(object) {
        if (object_) object_->addRef();
    }
    P(const P& other) noexcept : P(other.object_) {}
    P(P&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    /// @{
    /// From a pointer to a derived class.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    P(const P<U>& other)
    noexcept : P(other.get()) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    P(P<U>&& other)
    noexcept : object_(other.detach()) {}
    /// @}
    ~P() {
        if (object_) object_->release();
    }

    /// Takes over a reference and gives back the one held so far, in this order.
    P& operator=(P other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// @{
    /// The object; null when none is held, and then not to be dereferenced.
    [[nodiscard]] T* get() const noexcept { return object_; }
    operator T*() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    /// @}

    /// Hands the reference to the caller, who must release() it; this pointer becomes null.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

private:
    T* object_ = nullptr;
};

/// A pointer to an object that is only read.
template <class T>
using PC = P<const T>;

} // namespace kel

template <class T>
struct std::hash<kel::P<T>> {
    std::size_t operator()(const kel::P<T>& pointer) const noexcept { return std::hash<T*>()(pointer.get()); }
};
