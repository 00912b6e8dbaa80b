#pragma once

#include <zel/export.h>

#include <typeinfo>

namespace zel
{

/// The root of all shared objects: what zel::P needs to hold one.
///
/// Interfaces derive from it virtually, so that a class that implements several of them and
/// derives from zel::CBase still has one reference count.
class ZEL_EXPORT IBase
{
protected:
    // Protected, since shared objects go by release() and never by delete. It is the first virtual
    // member: declared later, its slots would stand behind the others in every derived class.
    virtual ~IBase() = default;

public:
    /// Takes one more reference. Safe to call from any thread.
    virtual void addRef() const = 0;

    /// Gives one reference back; the last one destroys the object. Safe to call from any thread.
    virtual void release() const = 0;

    /// True when a caller may use this object as \p type.
    virtual bool checkCastAllowed(std::type_info const& type) const = 0;

protected:
    IBase() = default;

    /// A copy is an object of its own.
    IBase(IBase const&) = default;

    /// Leaves the references alone: they belong to the object, not to its value.
    IBase& operator=(IBase const&) = default;
};

} // namespace zel
