#include <qix/CConsoleTestRunner.h>
#include <zel/String.h>

#include "guards/posix/runNotes.h"
#include "runner/indent.h"
#include "runner/posix/logFile.h"

namespace qix
{

void CConsoleTestRunner::openLog()
{
    closeLog();
    m_log = openLogFile("testLog.txt");
}

void CConsoleTestRunner::closeLog()
{
    if (m_log != nullptr)
    {
        closeLogFile(m_log);
        m_log = nullptr;
    }
}

void CConsoleTestRunner::logNoIndent(std::string const& s)
{
    if (m_log != nullptr)
    {
        std::fputs(s.c_str(), m_log);
        noteLogText(m_log, s);
    }
}

void CConsoleTestRunner::logIndent(std::string const& s)
{
    logNoIndent(m_indent + s);
}

void CConsoleTestRunner::doTestGroupFinishLogging(std::string const& s)
{
    bool const beganNothingInside = m_beginCount == m_running.back().startCount + 1;
    if (!beganNothingInside)
    {
        logIndent(s);
    }
}

void CConsoleTestRunner::logItemOutput(ITestItem* item)
{
    std::vector<zel::String> const& lines = item->getLog();
    if (lines.empty())
    {
        return;
    }
    logIndent("Output:\n");
    for (zel::String const& line : lines)
    {
        logIndent(indentOfOneLevel + line.toCPSafe());
        logNoIndent("\n");
    }
}

std::string CConsoleTestRunner::pad(std::string s, int width)
{
    if (width > static_cast<int>(s.size()))
    {
        s.resize(static_cast<std::size_t>(width), ' ');
    }
    return s;
}

} // namespace qix
