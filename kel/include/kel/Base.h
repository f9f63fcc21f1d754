/// @file kel/Base.h
/// Reference counting: the interface `IBase` and its usual implementation `CBase`.
///
///     class CThing : public kel::CBase { ... };
///     kel::P<CThing> thing = new CThing(); // deleted when the last P<CThing> lets go
#pragma once

#include "kel/Export.h"

#include <atomic>

namespace kel {

/// What every reference-counted object offers. Interfaces derive from it virtually, so that one object that
/// implements several of them still has a single count.
///
/// Thread safety: addRef and release may be called from any thread.
class KEL_API IBase {
public:
    /// Takes a reference, which release() gives back.
    virtual void addRef() const noexcept = 0;

    /// Gives a reference back; the object destroys itself with the last one.
    virtual void release() const noexcept = 0;

protected:
    IBase() = default;
    IBase(const IBase&) = default;
    IBase& operator=(const IBase&) = default;
    virtual ~IBase();

    /// Called by release() when no reference is left.
    virtual void deleteThis() noexcept = 0;
};

/// Reference count for objects made with `new`. The count starts at zero; the first P<T> takes it to one.
/// An object with automatic storage may be used as long as nobody takes a reference to it, or after an
/// addRef() of its own that is never released.
class KEL_API CBase : public virtual IBase {
public:
    CBase() = default;
    /// A copy is a new object: it starts without references.
    CBase(const CBase&) noexcept : IBase() {} // NOLINT(readability-redundant-member-init): GCC asks for it
    CBase& operator=(const CBase&) noexcept { return *this; } // NOLINT(bugprone-unhandled-self-assignment)
    ~CBase() override;

    void addRef() const noexcept override { refCount_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept override {
        if (refCount_.fetch_sub(1, std::memory_order_acq_rel) == 1) const_cast<CBase*>(this)->deleteThis();
    }

protected:
    void deleteThis() noexcept override;

private:
    mutable std::atomic<int> refCount_{0};
};

} // namespace kel
