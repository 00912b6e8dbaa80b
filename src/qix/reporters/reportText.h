#pragma once

#include <qix/TestOutcome.h>
#include <zel/String.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qix
{

/// The text in UTF-8, in every locale.
std::string toUtf8(zel::String const& text);

/// Whole microseconds.
std::uint64_t inMicroseconds(std::chrono::nanoseconds time) noexcept;

/// Seconds with six digits behind a point, in every locale.
std::string formatSeconds(std::chrono::nanoseconds time);

/// The current time as "2026-01-31T23:59:59Z".
std::string formatUtcNow();

/// The text with as much left out of its middle as is needed to fit, and a word about that.
std::string cutInTheMiddle(std::string const& text, std::size_t size);

} // namespace qix
