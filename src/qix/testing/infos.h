#pragma once

#include <string>

namespace qix
{

/// What the scopes on this thread tell with a failure: a line or more for each, the innermost last,
/// and behind them what the last exception has taken along.
std::string infosOfThisThread();

/// Forgets what an exception has taken along that has been told or that nobody asks for.
void forgetLeftInfos() noexcept;

/// Hides the scopes of this thread from a test that runs inside them.
class CHiddenInfos
{
public:
    CHiddenInfos() noexcept;
    CHiddenInfos(CHiddenInfos const&) = delete;
    CHiddenInfos& operator=(CHiddenInfos const&) = delete;
    ~CHiddenInfos();

private:
    void const* m_hidden;
};

} // namespace qix
