#pragma once

#include <qix/export.h>

namespace qix::detail
{

/// A check of this thread that has passed. Volatile, since the handler of a fatal signal reads it.
struct PassedCheck
{
    char const* volatile file; ///< null while there is none
    int volatile line;
};

/// The last check that has passed. The initial-exec model makes it two stores without a call.
extern QIX_EXPORT __thread PassedCheck lastPassedCheck __attribute__((tls_model("initial-exec")));

/// \param file  lives as long as the process
inline void notePassedCheck(char const* file, int line) noexcept
{
    lastPassedCheck.file = file;
    lastPassedCheck.line = line;
}

} // namespace qix::detail
