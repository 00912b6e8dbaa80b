#include <qix/CValueWriter.h>
#include <qix/approx.h>
#include <zel/CInvalidArgError.h>

#include <algorithm>
#include <cmath>

namespace qix
{

namespace
{

void expectTolerance(char const* where, double tolerance)
{
    if (!(tolerance >= 0))
    {
        throw zel::CInvalidArgError(where, "the tolerance must not be negative", zel::CProps());
    }
}

} // namespace

CApprox& CApprox::relative(double tolerance)
{
    expectTolerance("CApprox::relative", tolerance);
    m_relative = tolerance;
    m_isRelativeSet = true;
    return *this;
}

CApprox& CApprox::absolute(double tolerance)
{
    expectTolerance("CApprox::absolute", tolerance);
    m_absolute = tolerance;
    m_relative = m_isRelativeSet ? m_relative : 0;
    return *this;
}

bool CApprox::equals(double other) const noexcept
{
    if (std::isinf(m_value) || std::isinf(other))
    {
        return std::isinf(m_value) && std::isinf(other) &&
               std::signbit(m_value) == std::signbit(other);
    }
    return std::abs(other - m_value) <= bound();
}

double CApprox::bound() const noexcept
{
    return std::max(m_relative * std::abs(m_value), m_absolute);
}

void CApprox::describe(CValueWriter& out) const
{
    out.text("approx(");
    out.floating(m_value);
    if (m_relative > 0 || m_absolute <= 0)
    {
        out.text(", relative ");
        out.floating(m_relative);
    }
    if (m_absolute > 0)
    {
        out.text(", absolute ");
        out.floating(m_absolute);
    }
    out.text(")");
}

} // namespace qix
