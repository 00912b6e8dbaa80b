#pragma once

#include <zel/IBase.h>

#include <atomic>
#include <cstdint>

namespace zel
{

/// The one implementation of reference counting: every shared class derives from it.
///
/// An object is born with the count 1, which the creator owns and normally hands to a zel::P.
/// An object may also live as a local variable; then nobody releases its first reference.
class ZEL_EXPORT CBase : public virtual IBase
{
public:
    /// Starts with the count 1.
    CBase() noexcept;

    /// A copy is an object of its own: its count starts at 1, whatever the other's is.
    CBase(CBase const& other) noexcept;

    /// Keeps the own count: references belong to the object, not to its value.
    CBase& operator=(CBase const& other) noexcept;

    ~CBase() override;

    // Inline, as the two below: a class that names an interface before CBase needs virtual thunks
    // to these operations, which compilers make only where they see the definitions.
    void addRef() const override { m_refCount.fetch_add(1); }

    /// Gives one reference back and calls deleteThis() with the last one.
    ///
    /// While the object is being destroyed its count is -1073741824 or near it, so a reference
    /// taken and given back by a destructor does not destroy the object a second time.
    void release() const override
    {
        if (m_refCount.fetch_sub(1) != 1)
        {
            return;
        }
        // So far below zero that no pair of addRef and release in a destructor reaches zero again.
        constexpr std::int32_t destructionOffset = 0x40000000;
        m_refCount.fetch_sub(destructionOffset);
        const_cast<CBase*>(this)->deleteThis();
    }

    /// Always true.
    bool checkCastAllowed(std::type_info const& /*type*/) const override { return true; }

    /// Destroys the object with `delete`. A class whose objects come from elsewhere overrides it.
    virtual void deleteThis();

    /// The number of references, for tests and diagnostics: another thread may change it at once.
    std::int32_t getRefCount() const noexcept { return m_refCount.load(); }

private:
    mutable std::atomic<std::int32_t> m_refCount{1};
};

} // namespace zel
