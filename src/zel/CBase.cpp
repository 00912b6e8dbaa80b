#include <zel/CBase.h>

namespace zel
{

namespace
{

/// So far below zero that no pair of addRef and release in a destructor reaches zero again.
constexpr std::int32_t destructionOffset = 0x40000000;

} // namespace

CBase::CBase() noexcept = default;

CBase::CBase(CBase const&) noexcept : CBase()
{
}

CBase& CBase::operator=(CBase const&) noexcept // NOLINT(bugprone-unhandled-self-assignment)
{
    return *this;
}

CBase::~CBase() = default;

void CBase::addRef() const
{
    m_refCount.fetch_add(1);
}

void CBase::release() const
{
    if (m_refCount.fetch_sub(1) != 1)
    {
        return;
    }
    m_refCount.fetch_sub(destructionOffset);
    const_cast<CBase*>(this)->deleteThis();
}

bool CBase::checkCastAllowed(std::type_info const&) const
{
    return true;
}

void CBase::deleteThis()
{
    delete this;
}

} // namespace zel
