#pragma once

#include <qix/detail/subTest.h>

#include <string>

namespace qix
{

/// How a child process has ended in which a statement was run.
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

/// Calls the statement in a forked child, and waits for its end. In the child, standard input and
/// output are /dev/null, signals of errors have their default action, and exit() calls no handlers
/// of the parent. Throws zel::CError when no child can be made.
ChildEnd callInChildProcess(detail::CFunctionRef statement);

} // namespace qix
