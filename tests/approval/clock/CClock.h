#pragma once

#include <ctime>

/// The clock of the process: it stands still until somebody moves it. The executable that has
/// CClock.cpp in it answers every call of time(), those of the libraries too.
class CClock
{
public:
    static void advance(std::time_t seconds) noexcept;
};
