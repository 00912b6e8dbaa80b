#pragma once

#include <functional>
#include <string>

namespace test
{

/// Lets one call of a function of the C library fail, or do something first, as other processes and
/// broken disks do. Knows the calls of its own thread, wherever they stand, to open(), openat(),
/// fstat(), fstatat(), unlinkat(), fchmodat(), fdopendir(), readdir() and mkdir().
///
/// Several may live at once.
class CBeforeCall
{
public:
    static constexpr int everyCall = 0;

    /// \param function  its name
    /// \param number    which call from now on it is, counted from 1
    /// \param action    is called before. The error that it returns is what the call fails with; 0
    ///                  lets the call be made. Calls that it makes itself are not counted.
    CBeforeCall(std::string function, int number, std::function<int()> action);

    /// A call that does nothing but fail.
    CBeforeCall(std::string function, int number, int error);

    CBeforeCall(CBeforeCall const&) = delete;
    CBeforeCall& operator=(CBeforeCall const&) = delete;
    ~CBeforeCall();

    /// Whether the call has come.
    bool hasHappened() const noexcept { return m_hasHappened; }

    /// What a call of the function fails with now, or 0.
    int errorOf(std::string const& function);

private:
    std::string m_function;
    int m_number;
    std::function<int()> m_action;
    int m_count = 0;
    bool m_hasHappened = false;
};

} // namespace test
