#include <qix/CTestFailedException.h>
#include <qix/CheckFailure.h>
#include <qix/detail/failure.h>
#include <qix/noteFailure.h>

#include "testing/CTestContext.h"
#include "testing/capturedText.h"
#include "testing/infos.h"
#include "testing/leftByStep.h"
#include "testing/pendingFailures.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qix
{

namespace
{

void addLines(std::string& text, std::string_view lines)
{
    lines = lines.substr(0, lines.find_last_not_of('\n') + 1);
    text += text.empty() || lines.empty() ? "" : "\n";
    text += lines;
}

class CPendingFailure : public detail::CFailedCheck
{
public:
    explicit CPendingFailure(CheckFailure failure) : m_failure(std::move(failure)) {}

    detail::CMessageWriter& message()
    {
        if (!m_message)
        {
            m_message.emplace();
        }
        return *m_message;
    }

    /// The failure with its message.
    CheckFailure complete() const
    {
        CheckFailure failure = m_failure;
        std::string const text = m_message ? m_message->written() : "";
        addLines(failure.values, text);
        addLines(failure.values, infosOfThisThread());
        return failure;
    }

private:
    CheckFailure m_failure;
    std::optional<detail::CMessageWriter> m_message = {};
};

/// The failures of a thread whose messages are incomplete, as a stack: the message of one may call
/// a function in which the next one fails.
class CPendingFailures
{
public:
    CPendingFailures() = default;
    CPendingFailures(CPendingFailures const&) = delete;
    CPendingFailures& operator=(CPendingFailures const&) = delete;
    ~CPendingFailures() { noteFrom(0); }

    CPendingFailure& begin(CheckFailure failure)
    {
        m_failures.push_back(std::make_unique<CPendingFailure>(std::move(failure)));
        leftByStep.pendingFailures = m_failures.size();
        return *m_failures.back();
    }

    CheckFailure end(detail::CFailedCheck const& failed)
    {
        std::size_t i = m_failures.size() - 1;
        while (m_failures[i].get() != &failed)
        {
            --i;
        }
        CheckFailure failure = m_failures[i]->complete();
        m_failures.erase(m_failures.begin() + static_cast<std::ptrdiff_t>(i));
        leftByStep.pendingFailures = m_failures.size();
        return failure;
    }

    void noteFrom(std::size_t first)
    {
        for (std::size_t i = first; i < m_failures.size(); ++i)
        {
            CTestContext::noteInCurrent(m_failures[i]->complete());
        }
        m_failures.resize(first);
        leftByStep.pendingFailures = first;
    }

private:
    std::vector<std::unique_ptr<CPendingFailure>> m_failures = {};
};

thread_local CPendingFailures pendingFailures;

void noteOrThrow(CheckFailure failure)
{
    if (CTestContext::noteInCurrent(failure))
    {
        return;
    }
    bool const isBelow = !failure.check.empty() && failure.values.empty();
    failure.values += isBelow ? "" : "\n";
    failure.values += "outside of any running test";
    throw CTestFailedException({failure});
}

} // namespace

void notePendingFailures(std::size_t outer)
{
    pendingFailures.noteFrom(outer);
}

void noteFailure(char const* file, int line, std::string_view message)
{
    CheckFailure const failure = {file == nullptr ? "" : file, line, "", ""};
    CPendingFailure pending(failure);
    pending.message().text(message);
    noteOrThrow(pending.complete());
}

namespace detail
{

CMessageWriter& CFailedCheck::message()
{
    return static_cast<CPendingFailure&>(*this).message();
}

CFailedCheck&& failedCheck(char const* file, int line, char const* check)
{
    return std::move(
        pendingFailures.begin({file, line, check == nullptr ? "" : check, takeCapturedText()}));
}

void operator&(NotesFailure, CFailedCheck&& failed)
{
    noteOrThrow(pendingFailures.end(failed));
    forgetLeftInfos();
}

void operator&(EndsTest, CFailedCheck&& failed)
{
    CheckFailure const failure = pendingFailures.end(failed);
    noteOrThrow(failure);
    throw CRequirementFailedException({failure});
}

} // namespace detail

} // namespace qix
