#include <zel/CBase.h>

namespace zel
{

CBase::CBase() noexcept = default;

CBase::CBase(CBase const&) noexcept : CBase()
{
}

CBase& CBase::operator=(CBase const&) noexcept // NOLINT(bugprone-unhandled-self-assignment)
{
    return *this;
}

CBase::~CBase() = default;

void CBase::deleteThis()
{
    delete this;
}

} // namespace zel
