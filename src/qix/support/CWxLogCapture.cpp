#include "support/CWxLogCapture.h"

#include "guards/posix/CForkLock.h"

#include <wx/debug.h>
#include <wx/log.h>
#include <wx/thread.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace qix
{

namespace
{

/// The number behind the first "line " in a message about a line of the file, which has no name; 0
/// in other messages, since a number in those may be a part of a quoted value.
unsigned long lineNumberOf(wxString const& message)
{
    static constexpr char const mark[] = "line ";
    std::size_t const found = message.find(mark);
    if (!message.StartsWith("file ''") || found == wxString::npos)
    {
        return 0;
    }
    return std::strtoul(message.substr(found + sizeof(mark) - 1).utf8_str(), nullptr, 10);
}

wxAssertHandler_t assertHandler() noexcept
{
#if wxDEBUG_LEVEL
    return wxTheAssertHandler;
#else
    return nullptr;
#endif
}

/// Captures the messages and assertions of one thread and forwards those of others.
class CCapturingLog : public wxLog
{
public:
    void begin()
    {
        m_diagnostic.clear();
        m_isMain = wxThread::IsMain();
        m_thread = wxThread::GetCurrentId();
        m_oldTarget = m_isMain ? SetActiveTarget(this) : SetThreadActiveTarget(this);
        m_oldHandler = assertHandler();
        // Where assertions are disabled they stay so: wxWidgets reads the handler twice, and
        // another thread may be between the two reads when this one is removed.
        if (m_oldHandler != nullptr)
        {
            wxSetAssertHandler(&CCapturingLog::onAssert);
        }
    }

    void end()
    {
        if (assertHandler() == &CCapturingLog::onAssert)
        {
            wxSetAssertHandler(m_oldHandler);
        }
        if (m_isMain)
        {
            SetActiveTarget(m_oldTarget);
        }
        else
        {
            SetThreadActiveTarget(m_oldTarget);
        }
    }

    std::string const& getDiagnostic() const noexcept { return m_diagnostic; }

protected:
    void DoLogRecord(wxLogLevel level, wxString const& message,
                     wxLogRecordInfo const& info) override
    {
        if (isCapturedThread())
        {
            note(message);
            return;
        }
        if (wxLog* const target = m_oldTarget)
        {
            target->LogRecord(level, message, info);
            return;
        }
        wxLogStderr().LogRecord(level, message, info);
    }

private:
    static void onAssert(wxString const& file, int line, wxString const& function,
                         wxString const& condition, wxString const& message);

    bool isCapturedThread() const { return m_thread == wxThread::GetCurrentId(); }

    void note(wxString const& message)
    {
        if (m_diagnostic.empty())
        {
            unsigned long const line = lineNumberOf(message);
            m_diagnostic = "it is not well-formed" +
                           (line == 0 ? std::string() : " in line " + std::to_string(line));
        }
    }

    std::atomic<wxThreadIdType> m_thread{};
    std::atomic<wxLog*> m_oldTarget{nullptr};
    std::atomic<wxAssertHandler_t> m_oldHandler{nullptr};
    bool m_isMain = false;
    std::string m_diagnostic;
};

/// Never destroyed: another thread may be logging through it when a call ends.
CCapturingLog& capturingLog()
{
    alignas(CCapturingLog) static unsigned char storage[sizeof(CCapturingLog)];
    static CCapturingLog* const instance = new (storage) CCapturingLog();
    return *instance;
}

void CCapturingLog::onAssert(wxString const& file, int line, wxString const& function,
                             wxString const& condition, wxString const& message)
{
    CCapturingLog& self = capturingLog();
    if (self.isCapturedThread())
    {
        self.note(message);
        return;
    }
    if (wxAssertHandler_t const handler = self.m_oldHandler)
    {
        handler(file, line, function, condition, message);
    }
}

std::mutex capturingMutex;
CForkLock const lockedWhileForking(capturingMutex);

} // namespace

CWxLogCapture::CWxLogCapture() : m_lock(capturingMutex)
{
    capturingLog().begin();
}

CWxLogCapture::~CWxLogCapture()
{
    capturingLog().end();
}

std::optional<std::string> CWxLogCapture::getDiagnostic() const
{
    std::string const& diagnostic = capturingLog().getDiagnostic();
    return diagnostic.empty() ? std::nullopt : std::optional<std::string>(diagnostic);
}

} // namespace qix
