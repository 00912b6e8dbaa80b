#pragma once

#include <chrono>
#include <string>

namespace qix
{

/// One line on the terminal of standard error that is rewritten in place. It stands below the line
/// that standard output has come to, if that is the same terminal. Without a terminal there is
/// none.
class CStatusLine
{
public:
    CStatusLine() noexcept;
    CStatusLine(CStatusLine const&) = delete;
    CStatusLine& operator=(CStatusLine const&) = delete;
    ~CStatusLine() { hide(); }

    /// True when a new text is worth the time of showing it.
    bool isDue() const noexcept;

    bool isShown() const noexcept { return m_isShown; }

    /// As much of the text as fits into the line. Nothing while the terminal belongs to another
    /// job.
    void show(std::string const& text);

    /// To be called before anything is printed.
    void hide() noexcept;

private:
    using Clock = std::chrono::steady_clock;

    bool m_isPossible;
    bool m_isBelow; ///< the line that standard output has come to
    bool m_isShown = false;
    Clock::time_point m_lastShown;
};

} // namespace qix
