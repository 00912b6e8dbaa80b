#pragma once

#include <qix/CheckFailure.h>
#include <qix/export.h>
#include <zel/CError.h>

#include <cstddef>
#include <string>
#include <vector>

namespace qix
{

/// Thrown by a test that has failed: by a requirement that does not hold, and at the end of a
/// test some of whose checks failed.
class QIX_EXPORT CTestFailedException : public zel::CError
{
public:
    /// \param text  what failed, in bytes that are shown as they are
    explicit CTestFailedException(std::string const& text);

    /// \param failures  what failed: all of it, or the first ones; at least one
    /// \param count     how many failures there were, when not all of them are given
    explicit CTestFailedException(std::vector<CheckFailure> const& failures, std::size_t count = 0);

    /// \param text      what failed, in bytes that are shown as they are
    /// \param failures  the same as data; at least one
    CTestFailedException(std::string const& text, std::vector<CheckFailure> const& failures);
    ~CTestFailedException() override;

    /// The text given, unchanged, or that of the failures; getMessage() has it decoded.
    char const* what() const noexcept override;

    /// What failed, the first of many failures. A text that was given is one failure.
    std::vector<CheckFailure> const& getFailures() const noexcept { return m_failures; }

    zel::P<zel::CError> clone() const override;
    [[noreturn]] void throwClone() const override;

private:
    std::string m_text;
    std::vector<CheckFailure> m_failures;
};

} // namespace qix
