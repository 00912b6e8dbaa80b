#include "CScopedEnvVar.h"

#include <cstdlib>
#include <utility>

namespace test
{

namespace
{

void assign(std::string const& name, std::optional<std::string> const& value)
{
    if (value)
    {
        setenv(name.c_str(), value->c_str(), 1);
    }
    else
    {
        unsetenv(name.c_str());
    }
}

} // namespace

CScopedEnvVar::CScopedEnvVar(std::string name, std::optional<std::string> const& value)
    : m_name(std::move(name))
{
    if (char const* const oldValue = std::getenv(m_name.c_str()))
    {
        m_oldValue = oldValue;
    }
    assign(m_name, value);
}

CScopedEnvVar::~CScopedEnvVar()
{
    assign(m_name, m_oldValue);
}

} // namespace test
