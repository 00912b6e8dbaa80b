#include <zel/CInvalidArgError.h>

namespace zel
{

CInvalidArgError::CInvalidArgError(String const& where, String const& text, CProps const& props)
    : CError("Invalid argument passed to '" + where + "': " + text + ".", String(), -1, props,
             nullptr)
{
}

P<CError> CInvalidArgError::clone() const
{
    return newObj<CInvalidArgError>(*this);
}

void CInvalidArgError::throwClone() const
{
    throw CInvalidArgError(*this);
}

} // namespace zel
