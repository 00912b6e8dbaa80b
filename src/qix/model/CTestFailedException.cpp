#include <qix/CTestFailedException.h>

#include "model/formatFailure.h"
#include "text/decodedText.h"

namespace qix
{

CTestFailedException::CTestFailedException(std::string const& text)
    : CTestFailedException(text, {{"", 0, "", text}})
{
}

CTestFailedException::CTestFailedException(std::vector<CheckFailure> const& failures,
                                           std::size_t count)
    : CTestFailedException(formatFailures(failures, count), failures)
{
}

CTestFailedException::CTestFailedException(std::string const& text,
                                           std::vector<CheckFailure> const& failures)
    : zel::CError(decodedText(text), zel::String(), -1, zel::CProps(), nullptr),
      m_text(text),
      m_failures(failures)
{
}

CTestFailedException::~CTestFailedException() = default;

char const* CTestFailedException::what() const noexcept
{
    return m_text.c_str();
}

zel::P<zel::CError> CTestFailedException::clone() const
{
    return zel::newObj<CTestFailedException>(*this);
}

void CTestFailedException::throwClone() const
{
    throw CTestFailedException(*this);
}

} // namespace qix
