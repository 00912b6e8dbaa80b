#pragma once

#include <string>

namespace qix
{

/// What a test has printed on both streams.
struct PrintedText
{
    std::string out;
    std::string err;

    /// Writes it to the standard streams.
    void print() const;
};

} // namespace qix
