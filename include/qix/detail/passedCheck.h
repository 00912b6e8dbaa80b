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

/// The last one. In the initial-exec model it costs two stores and no call.
extern QIX_EXPORT __thread PassedCheck lastPassedCheck __attribute__((tls_model("initial-exec")));

/// \param file  lives as long as the process
inline void notePassedCheck(char const* file, int line) noexcept
{
    lastPassedCheck.file = file;
    lastPassedCheck.line = line;
}

} // namespace qix::detail
