#pragma once

namespace qix
{

/// A number that this process has and none of its ancestors, whatever it was forked by. The same
/// for the whole life of the process. It costs no system call.
unsigned processGeneration() noexcept;

} // namespace qix
