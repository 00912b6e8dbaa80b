#pragma once

#include <qix/export.h>
#include <zel/CError.h>

#include <string>

namespace qix
{

/// Thrown by a test that has failed: by a requirement that does not hold, and at the end of a
/// test some of whose checks failed.
class QIX_EXPORT CTestFailedException : public zel::CError
{
public:
    /// \param text  what failed, in bytes that are shown as they are
    explicit CTestFailedException(std::string const& text);
    ~CTestFailedException() override;

    /// The text given, unchanged; getMessage() has it decoded.
    char const* what() const noexcept override;

    zel::P<zel::CError> clone() const override;
    [[noreturn]] void throwClone() const override;

private:
    std::string m_text;
};

} // namespace qix
