#pragma once

#include <optional>
#include <string>

namespace test
{

/// Sets an environment variable, or removes it, while it lives.
class CScopedEnvVar
{
public:
    /// \param value  the value; none removes the variable
    CScopedEnvVar(std::string name, std::optional<std::string> const& value);
    CScopedEnvVar(CScopedEnvVar const&) = delete;
    CScopedEnvVar& operator=(CScopedEnvVar const&) = delete;
    ~CScopedEnvVar();

private:
    std::string m_name;
    std::optional<std::string> m_oldValue;
};

} // namespace test
