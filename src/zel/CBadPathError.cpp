#include <zel/CBadPathError.h>

namespace zel
{

CBadPathError::CBadPathError(TPathImpl<CUnixPathTraits> const& path)
    : CError("Invalid path: " + path.getText(), String(), -1, CProps(), nullptr)
{
}

P<CError> CBadPathError::clone() const
{
    return newObj<CBadPathError>(*this);
}

void CBadPathError::throwClone() const
{
    throw CBadPathError(*this);
}

} // namespace zel
