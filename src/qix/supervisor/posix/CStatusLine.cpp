#include "supervisor/posix/CStatusLine.h"

#include "supervisor/fitToColumns.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qix
{

namespace
{

constexpr std::chrono::milliseconds betweenTexts(100);

/// Tests that take less would keep the terminal busy with a line that nobody can read.
constexpr std::chrono::milliseconds betweenLines(2);

// How terminals of the kind VT100, and all that came after them, are controlled.
#define QIX_ESCAPE "\x1b"
constexpr char const makeRoomBelow[] = QIX_ESCAPE "D" QIX_ESCAPE "M";
constexpr char const saveAndGoBelow[] = QIX_ESCAPE "7" QIX_ESCAPE "D";
constexpr char const eraseLine[] = "\r" QIX_ESCAPE "[K";
constexpr char const eraseRest[] = QIX_ESCAPE "[K";
constexpr char const comeBack[] = QIX_ESCAPE "8";
constexpr char const eraseBelow[] = QIX_ESCAPE "7" QIX_ESCAPE "D\r" QIX_ESCAPE "[K" QIX_ESCAPE "8";
#undef QIX_ESCAPE

bool isCapable() noexcept
{
    char const* const kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

bool isOutputOnSameTerminal() noexcept
{
    struct stat out = {};
    struct stat err = {};
    return isatty(STDOUT_FILENO) == 1 && fstat(STDOUT_FILENO, &out) == 0 &&
           fstat(STDERR_FILENO, &err) == 0 && out.st_rdev == err.st_rdev;
}

/// A terminal that is not the one of this process belongs to nobody in particular.
bool isInForeground() noexcept
{
    pid_t const owner = tcgetpgrp(STDERR_FILENO);
    return owner == -1 || owner == getpgrp();
}

/// The last column stays free, since terminals differ in what comes behind it.
std::size_t usableColumns() noexcept
{
    constexpr std::size_t usual = 80;
    winsize size = {};
    bool const isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return (isKnown ? size.ws_col : usual) - 1;
}

/// In one piece, so that nothing comes between.
void writeToTerminal(std::string_view text) noexcept
{
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
}

} // namespace

CStatusLine::CStatusLine() noexcept
    : m_isPossible(isCapable()), m_isBelow(m_isPossible && isOutputOnSameTerminal())
{
}

bool CStatusLine::isDue() const noexcept
{
    return m_isPossible &&
           Clock::now() - m_lastShown >= (m_isShown ? Clock::duration(betweenTexts) : betweenLines);
}

void CStatusLine::show(std::string const& text)
{
    if (!m_isPossible || !isInForeground())
    {
        return;
    }
    std::string line;
    line += m_isBelow && !m_isShown ? makeRoomBelow : "";
    line += m_isBelow ? saveAndGoBelow : "";
    line += '\r';
    line += fitToColumns(text, usableColumns());
    line += eraseRest;
    line += m_isBelow ? comeBack : "\r";
    writeToTerminal(line);
    m_isShown = true;
    m_lastShown = Clock::now();
}

void CStatusLine::hide() noexcept
{
    if (m_isShown)
    {
        writeToTerminal(m_isBelow ? eraseBelow : eraseLine);
        m_isShown = false;
    }
}

} // namespace qix
