#include <qix/CTestFailedException.h>

#include "text/decodedText.h"

namespace qix
{

CTestFailedException::CTestFailedException(std::string const& text)
    : zel::CError(decodedText(text), zel::String(), -1, zel::CProps(), nullptr), m_text(text)
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
