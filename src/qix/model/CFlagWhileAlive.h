#pragma once

namespace qix
{

/// Keeps a flag set as long as it lives. The flag outlives it.
class CFlagWhileAlive
{
public:
    explicit CFlagWhileAlive(bool& flag) noexcept : m_flag(flag) { m_flag = true; }
    ~CFlagWhileAlive() { m_flag = false; }
    CFlagWhileAlive(CFlagWhileAlive const&) = delete;
    CFlagWhileAlive& operator=(CFlagWhileAlive const&) = delete;

private:
    bool& m_flag;
};

} // namespace qix
