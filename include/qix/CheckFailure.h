#pragma once

#include <zel/language.h>

#include <string>

namespace qix
{

/// One thing that went wrong in a test: a check that failed, a message, or what was thrown.
///
/// The texts are bytes as the test's author wrote them, without the indentation of a report. They
/// may have several lines.
struct CheckFailure
{
    std::string file;   ///< where, as the compiler names it; empty when it is not known
    int line = 0;       ///< from 1; 0 when it is not known
    std::string check;  ///< such as "QIX_CHECK(a == b)"; empty when it was no check
    std::string values; ///< what the check saw, such as "with 1 == 2", or the message
};

} // namespace qix
