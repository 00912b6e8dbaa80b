#pragma once

#include <qix/detail/subTest.h>

#include <string>

namespace qix
{

/// What became of a statement that was run in a child process.
struct ChildEnd
{
    enum Kind
    {
        Returned, ///< the statement was left in the ordinary way
        Threw,
        Exited,
        Killed,
        Unknown ///< somebody else has waited for the child
    };

    Kind kind;
    int number;          ///< the status, or the number of the signal
    std::string thrown;  ///< what it threw
    std::string written; ///< what it wrote to standard error
};

/// Calls the statement in a forked process, and waits for its end. There, standard input and output
/// lead nowhere, a signal for an error ends the process without handlers, and exit() does not touch
/// what the caller would release at its end. Throws zel::CError when there can be no such process.
ChildEnd callInChildProcess(detail::CFunctionRef statement);

} // namespace qix
