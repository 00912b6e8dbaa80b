#pragma once

namespace qix
{

constexpr int exitAllPassed = 0;

/// A test failed, the selection was rejected, or the working directory could not be entered.
constexpr int exitNotAllPassed = 1;

/// Nothing was run, or the run was not finished, or its output was lost.
constexpr int exitNoVerdict = 2;

} // namespace qix
