#pragma once

#include <qix/detail/check.h>
#include <qix/detail/message.h>

#include <iosfwd>

namespace qix::detail
{

/// Why a test ends, while that is put together.
/// \tparam T  what comes first; void when nothing does
template <typename T>
class TReason
{
public:
    explicit TReason(T const* first) noexcept : m_first(first) {}
    TReason(TReason const&) = delete;
    TReason& operator=(TReason const&) = delete;
    ~TReason() = default;

    template <typename U>
    TReason&& operator<<(U const& value) &&
    {
        writeMessage(message(), value);
        return static_cast<TReason&&>(*this);
    }

    TReason&& operator<<(std::ostream& (*manipulator)(std::ostream&)) &&
    {
        message().manipulate(manipulator);
        return static_cast<TReason&&>(*this);
    }

    TReason&& operator<<(std::ios_base& (*manipulator)(std::ios_base&)) &&
    {
        message().manipulate(manipulator);
        return static_cast<TReason&&>(*this);
    }

    [[noreturn]] void skip() const
    {
        if (m_hasMore)
        {
            skipWithBytes(m_message.written());
        }
        if constexpr (std::is_void_v<T>)
        {
            detail::skip();
        }
        else
        {
            detail::skip(*m_first);
        }
    }

    [[noreturn]] void abort() const
    {
        if (m_hasMore)
        {
            abortWithBytes(m_message.written());
        }
        if constexpr (std::is_void_v<T>)
        {
            abortWithBytes("");
        }
        else
        {
            detail::abort(*m_first);
        }
    }

private:
    CMessageWriter& message()
    {
        if constexpr (!std::is_void_v<T>)
        {
            m_hasMore ? void() : writeMessage(m_message, *m_first);
        }
        m_hasMore = true;
        return m_message;
    }

    T const* m_first;
    CMessageWriter m_message = {};
    bool m_hasMore = false; ///< something follows
};

inline TReason<void> makeReason() noexcept
{
    return TReason<void>(nullptr);
}

template <typename T>
TReason<T> makeReason(T const& first) noexcept
{
    return TReason<T>(std::addressof(first));
}

// What QIX_SKIP and QIX_ABORT do when the reason is complete, for which & binds less tightly than
// <<.
enum SkipsTest
{
    skipsTest
};
enum AbortsTest
{
    abortsTest
};

template <typename T>
[[noreturn]] void operator&(SkipsTest, TReason<T> const& reason)
{
    reason.skip();
}

template <typename T>
[[noreturn]] void operator&(AbortsTest, TReason<T> const& reason)
{
    reason.abort();
}

} // namespace qix::detail
