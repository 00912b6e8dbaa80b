#include "supervisor/outcomeMessages.h"

#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedWithReasonException.h>

#include <utility>

namespace qix
{

namespace
{

/// An exception of another process, whose message is kept byte for byte.
template <typename Base>
class TToldException : public Base
{
public:
    template <typename Cause>
    TToldException(Cause const& cause, std::string message)
        : Base(cause), m_message(std::move(message))
    {
    }

    char const* what() const noexcept override { return m_message.c_str(); }
    zel::P<zel::CError> clone() const override { return zel::newObj<TToldException>(*this); }
    [[noreturn]] void throwClone() const override { throw TToldException(*this); }

private:
    std::string m_message;
};

} // namespace

void addOutcome(CMessageWriter& message, TestOutcome const& outcome)
{
    message.add(outcome.kind);
    if (outcome.kind == TestOutcome::Ok)
    {
        return;
    }
    message.add(std::string_view(outcome.message)).add(outcome.reason);
    message.add(outcome.failures.size());
    for (CheckFailure const& failure : outcome.failures)
    {
        message.add(std::string_view(failure.file))
            .add(static_cast<std::uint64_t>(failure.line))
            .add(std::string_view(failure.check))
            .add(std::string_view(failure.values));
    }
}

TestOutcome readOutcome(CMessageReader& message)
{
    TestOutcome outcome;
    outcome.kind = static_cast<TestOutcome::Kind>(message.number());
    if (outcome.kind == TestOutcome::Ok)
    {
        return outcome;
    }
    outcome.message = message.text();
    outcome.reason = message.string();
    for (std::uint64_t left = message.number(); left > 0; --left)
    {
        CheckFailure failure;
        failure.file = message.text();
        failure.line = static_cast<int>(message.number());
        failure.check = message.text();
        failure.values = message.text();
        outcome.failures.push_back(failure);
    }
    return outcome;
}

void addUsage(CMessageWriter& message, ProcessUsage const& usage)
{
    message.add(usage.peakMemory).add(static_cast<std::uint64_t>(usage.processorTime.count()));
}

std::optional<ProcessUsage> readUsage(CMessageReader& message)
{
    if (message.isAtEnd())
    {
        return std::nullopt;
    }
    ProcessUsage usage;
    usage.peakMemory = message.number();
    usage.processorTime = std::chrono::nanoseconds(static_cast<std::int64_t>(message.number()));
    return usage;
}

void throwOutcome(TestOutcome const& outcome)
{
    switch (outcome.kind)
    {
    case TestOutcome::Ok:
        return;
    case TestOutcome::Failed:
        throw TToldException<CTestFailedException>(outcome.failures, outcome.message);
    case TestOutcome::Aborted:
        throw TToldException<CTestAbortedException>(outcome.reason, outcome.message);
    case TestOutcome::Skipped:
        throw TToldException<CTestSkippedWithReasonException>(outcome.reason, outcome.message);
    }
}

void withException(TestOutcome const& outcome,
                   std::function<void(std::exception const&)> const& function)
{
    try
    {
        throwOutcome(outcome);
    }
    catch (std::exception const& e)
    {
        function(e);
    }
}

} // namespace qix
