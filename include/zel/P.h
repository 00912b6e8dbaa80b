#pragma once

#include <zel/language.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace zel
{

/// An owning pointer to a reference-counted object, or null.
///
/// It is one raw pointer wide: the count lives in the object. Copying takes a reference, moving
/// passes one on, destruction gives it back. T needs addRef() and release(), as zel::IBase has.
/// Different P objects to one target may be used on different threads; one P object may not.
template <typename T>
class P
{
public:
    /// Null.
    P() noexcept = default;

    /// Null.
    P(std::nullptr_t) noexcept {}

    /// Adopts a reference that the caller owns, such as the one a new object is born with.
    explicit P(T* adopted) noexcept : m_object(adopted) {}

    /// Takes a reference of its own to an object that somebody else owns.
    static P share(T* object)
    {
        if (object != nullptr)
        {
            object->addRef();
        }
        return P(object);
    }

    /// Takes a reference of its own.
    P(P const& other) : P(share(other.m_object)) {}

    /// Takes over the reference; \p other is null afterwards.
    P(P&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}

    /// Copies from a pointer to a derived class.
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    P(P<U> const& other) : P(share(other.get()))
    {
    }

    /// Moves from a pointer to a derived class.
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    P(P<U>&& other)
    noexcept : m_object(std::exchange(other.m_object, nullptr))
    {
    }

    /// Takes over the reference of a copy and gives its own back.
    P& operator=(P other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    ~P()
    {
        if (m_object != nullptr)
        {
            m_object->release();
        }
    }

    /// The object, still owned by this pointer.
    T* get() const noexcept { return m_object; }

    /// The object; the pointer must not be null.
    T* operator->() const noexcept { return m_object; }

    /// The object; the pointer must not be null.
    T& operator*() const noexcept { return *m_object; }

    /// True when the pointer is not null.
    explicit operator bool() const noexcept { return m_object != nullptr; }

private:
    template <typename U>
    friend class P;

    T* m_object = nullptr;
};

/// @{
/// Compares the objects' addresses.
template <typename T, typename U>
bool operator==(P<T> const& left, P<U> const& right) noexcept
{
    return left.get() == right.get();
}

template <typename T, typename U>
bool operator!=(P<T> const& left, P<U> const& right) noexcept
{
    return left.get() != right.get();
}

template <typename T>
bool operator==(P<T> const& left, std::nullptr_t) noexcept
{
    return left.get() == nullptr;
}

template <typename T>
bool operator==(std::nullptr_t, P<T> const& right) noexcept
{
    return right.get() == nullptr;
}

template <typename T>
bool operator!=(P<T> const& left, std::nullptr_t) noexcept
{
    return left.get() != nullptr;
}

template <typename T>
bool operator!=(std::nullptr_t, P<T> const& right) noexcept
{
    return right.get() != nullptr;
}

/// @}

/// Creates a T and returns the owner of its first reference.
/// Throws what the constructor throws, and std::bad_alloc.
template <typename T, typename... Args>
P<T> newObj(Args&&... args)
{
    return P<T>(new T(std::forward<Args>(args)...));
}

} // namespace zel
