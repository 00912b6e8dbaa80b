#pragma once

#include "history/RunHistory.h"

#include <cstdint>

// The file: a HistoryHeader, one HistoryRecord for each test, and the ids, one behind the other.
// It stays on the machine that has written it, or goes to one like it.

namespace qix
{

constexpr char const historyMark[8] = {'q', 'i', 'x', ' ', 'r', 'u', 'n', 's'};
constexpr std::uint32_t historyVersion = 1;

struct HistoryHeader
{
    char mark[8];
    std::uint32_t version;
    std::uint32_t lastRun;
    std::uint64_t testCount;
    std::uint64_t idBytes; ///< the size of all ids together
    std::uint64_t idHash;  ///< of all ids and their ends, which do not change during a run
};

struct HistoryRecord
{
    std::uint64_t idEnd; ///< counted from the beginning of the first id
    std::uint64_t microseconds;
    std::uint32_t run;
    std::uint32_t outcome;
};

} // namespace qix
