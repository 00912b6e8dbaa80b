#pragma once

// Where the language is older than what these headers are written in, this file cannot be found:
// the compiler says so in one error and reads nothing else, of which each line might be another.
#if __cplusplus < 201703L
#include <qix needs C++17 or later: compile with -std=c++17>
#endif
