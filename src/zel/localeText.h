#pragma once

#include <zel/String.h>

#include <optional>
#include <string>

namespace zel
{

/// Decodes bytes of the system with the locale's encoding. Returns nothing when encoding the text
/// would not give the same bytes again: it would name something else.
std::optional<String> decodeLocaleText(std::string const& bytes);

/// Encodes text for the system with the locale's encoding. Returns nothing when decoding the bytes
/// would not give the same text again.
std::optional<std::string> encodeLocaleText(String const& text);

/// Decodes bytes for a message: with the locale's encoding or, where they are not valid in it, as
/// ISO-8859-1.
String decodeForMessage(std::string const& bytes);

/// The system's message for the errno value \p error, without a full stop.
String messageOfError(int error);

} // namespace zel
