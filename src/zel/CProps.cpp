#include <zel/CProps.h>

namespace zel
{

CProps::CProps() = default;

CProps::CProps(CProps const& other) = default;

CProps::~CProps() = default;

void CProps::set(String const& name, String const& value)
{
    m_values[name] = value;
}

String CProps::get(String const& name, String const& defaultValue) const
{
    auto const found = m_values.find(name);
    return found == m_values.end() ? defaultValue : found->second;
}

} // namespace zel
