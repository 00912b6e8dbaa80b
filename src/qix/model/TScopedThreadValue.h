#pragma once

#include <utility>

namespace qix
{

/// Passes a value to functions that are called on this thread while it lives, for which the
/// virtual operations in between have no argument.
template <typename T>
class TScopedThreadValue
{
public:
    /// \param value  not owned; null hides that of an outer scope
    explicit TScopedThreadValue(T const* value) noexcept : m_outer(std::exchange(t_value, value)) {}
    ~TScopedThreadValue() { t_value = m_outer; }
    TScopedThreadValue(TScopedThreadValue const&) = delete;
    TScopedThreadValue& operator=(TScopedThreadValue const&) = delete;

    /// That of the innermost scope, or null.
    static T const* get() noexcept { return t_value; }

private:
    static inline thread_local T const* t_value = nullptr;

    T const* m_outer;
};

} // namespace qix
