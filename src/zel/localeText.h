#pragma once

#include <zel/String.h>

#include <optional>
#include <string>

namespace zel
{

/// Decodes bytes that came from the system with the locale's encoding. Nothing is returned when
/// the text would not give the same bytes again, as it names something else then.
std::optional<String> decodeLocaleText(std::string const& bytes);

} // namespace zel
