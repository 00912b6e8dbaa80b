#pragma once

#include <csignal>

namespace qix
{

/// While this lives, a write beyond the limit on file sizes is an error like any other, and the
/// signal SIGXFSZ does not end the process. Programs that are started meanwhile get the signal as
/// ever. An action that somebody else has chosen for the signal stays.
class CFileSizeLimit
{
public:
    CFileSizeLimit() noexcept;
    ~CFileSizeLimit();
    CFileSizeLimit(CFileSizeLimit const&) = delete;
    CFileSizeLimit& operator=(CFileSizeLimit const&) = delete;

private:
    struct sigaction m_oldAction = {};
};

} // namespace qix
