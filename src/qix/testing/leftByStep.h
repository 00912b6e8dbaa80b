#pragma once

#include <cstddef>

namespace qix
{

/// How much a step of a test has left behind on its thread. Steps are many, and most leave nothing:
/// so these numbers are looked at first, and nothing is called.
struct LeftByStep
{
    std::size_t pendingFailures; ///< those that have begun a message and not ended it
    std::size_t infos;           ///< texts that an exception has taken along
};

/// In the initial-exec model, which costs no call.
extern __thread LeftByStep leftByStep __attribute__((tls_model("initial-exec")));

} // namespace qix
