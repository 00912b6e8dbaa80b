#pragma once

#include <cstddef>
#include <string_view>

namespace qix
{

/// A character of UTF-8.
struct Utf8Character
{
    char32_t code = 0;
    std::size_t size = 0; ///< in bytes; 0 when the bytes are no valid UTF-8
};

/// The character that begins at \p position, which is inside the text. Surrogates, codes beyond
/// Unicode and sequences that are longer than needed are not valid.
Utf8Character utf8CharacterAt(std::string_view text, std::size_t position) noexcept;

/// True for letters and decimal digits of all scripts, except for those of ASCII, in every locale,
/// by one version of Unicode that never changes.
bool isLetterOrDigitBeyondAscii(char32_t code) noexcept;

} // namespace qix
