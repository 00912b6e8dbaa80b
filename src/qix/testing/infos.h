#pragma once

#include <string>

namespace qix
{

/// The texts of the QIX_INFO scopes of this thread for a failure: at least a line for each, the
/// innermost last, followed by those of the scopes that the last exception has left.
std::string infosOfThisThread();

/// Drops the texts of the scopes that an exception has left: it was reported, or was expected.
void forgetLeftInfos() noexcept;

/// Hides the scopes of this thread from a test that is run within them.
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
