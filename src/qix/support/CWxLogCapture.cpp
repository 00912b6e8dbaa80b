#include "support/CWxLogCapture.h"

#include "guards/posix/CForkLock.h"

#include <wx/debug.h>
#include <wx/log.h>
#include <wx/thread.h>

#include <atomic>
#include <new>

namespace qix
{

namespace
{

struct Diagnostic
{
    char const* theirs; ///< part of the untranslated message
    char const* ours;
};

constexpr Diagnostic diagnostics[] = {
    {"Failed to read config options", "its bytes are not valid in its encoding"},
    {"ignored after group header", "there is text behind a group header"},
    {"'=' expected", "a line has no '='"},
    {"was first found at line", "a key stands in its group twice"},
    {"unexpected character", "a group header has no ']'"},
    {"Environment variables expansion failed", "a value has a '${' or '$(' that is not closed"},
    {"trailing backslash", "a value ends in a backslash"},
    {"unexpected \" at position", "there is text behind a quoted value"},
    {"immutable key", "a value for an immutable key is ignored"},
    {"has extra '..'", "'..' climbs above the outermost group"},
    {"changing line for a non-root group", "a group stands in it twice"},
};

char const* inOurWords(wxString const& message)
{
    for (Diagnostic const& diagnostic : diagnostics)
    {
        if (message.Contains(diagnostic.theirs))
        {
            return diagnostic.ours;
        }
    }
    return nullptr;
}

/// The number behind the first "line ", which stands before anything that is quoted; 0 for none.
unsigned long lineNumberOf(wxString const& message)
{
    static constexpr char const mark[] = "line ";
    unsigned long number = 0;
    for (auto i = message.find(mark); i != wxString::npos && i + 5 < message.length(); ++i)
    {
        wxUniChar const digit = message[i + 5];
        if (digit < '0' || digit > '9')
        {
            break;
        }
        number = number * 10 + (digit.GetValue() - '0');
    }
    return number;
}

/// Notes what one thread logs and asserts, and passes on what others do.
class CWithholder : public wxLog
{
public:
    void begin()
    {
        m_diagnostic.clear();
        m_isMain = wxThread::IsMain();
        m_thread = wxThread::GetCurrentId();
        m_oldTarget = m_isMain ? SetActiveTarget(this) : SetThreadActiveTarget(this);
        m_oldHandler = wxSetAssertHandler(&CWithholder::onAssert);
    }

    void end()
    {
        wxSetAssertHandler(m_oldHandler);
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
        if (isOfThisCall())
        {
            note(message, "something in it is not understood");
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

    bool isOfThisCall() const { return m_thread == wxThread::GetCurrentId(); }

    /// \param otherwise  for messages that are not known; null notes nothing of them
    void note(wxString const& message, char const* otherwise)
    {
        char const* const known = inOurWords(message);
        char const* const words = known == nullptr ? otherwise : known;
        if (words == nullptr || !m_diagnostic.empty())
        {
            return;
        }
        unsigned long const line = known == nullptr ? 0 : lineNumberOf(message);
        m_diagnostic = (line == 0 ? "" : "line " + std::to_string(line) + ": ") + words;
    }

    std::atomic<wxThreadIdType> m_thread{};
    std::atomic<wxLog*> m_oldTarget{nullptr};
    std::atomic<wxAssertHandler_t> m_oldHandler{nullptr};
    bool m_isMain = false;
    std::string m_diagnostic;
};

/// Never destroyed: another thread may be logging through it when a call ends.
CWithholder& withholder()
{
    alignas(CWithholder) static unsigned char storage[sizeof(CWithholder)];
    static CWithholder* const instance = new (storage) CWithholder();
    return *instance;
}

void CWithholder::onAssert(wxString const& file, int line, wxString const& function,
                           wxString const& condition, wxString const& message)
{
    CWithholder& self = withholder();
    if (self.isOfThisCall())
    {
        self.note(message, nullptr);
        return;
    }
    if (wxAssertHandler_t const handler = self.m_oldHandler)
    {
        handler(file, line, function, condition, message);
    }
}

std::mutex withholderMutex;
CForkLock const withholderLockedWhileForking(withholderMutex);

} // namespace

CWxLogCapture::CWxLogCapture() : m_lock(withholderMutex)
{
    withholder().begin();
}

CWxLogCapture::~CWxLogCapture()
{
    withholder().end();
}

std::optional<std::string> CWxLogCapture::getDiagnostic() const
{
    std::string const& diagnostic = withholder().getDiagnostic();
    return diagnostic.empty() ? std::nullopt : std::optional<std::string>(diagnostic);
}

} // namespace qix
