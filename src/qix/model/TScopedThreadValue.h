#pragma once

#include <utility>

namespace qix
{

/// Passes a value down the stack of this thread, past virtual operations whose fixed signatures
/// have no argument for it.
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
