#pragma once

#include <zel/CError.h>

namespace zel
{

/// An operation was called with an argument that it cannot take.
class ZEL_EXPORT CInvalidArgError : public CError
{
public:
    /// \param where  the operation that got the argument
    /// \param text   what is wrong with it, without a full stop
    /// \param props  named details
    CInvalidArgError(String const& where, String const& text, CProps const& props);

    P<CError> clone() const override;
    [[noreturn]] void throwClone() const override;
};

} // namespace zel
