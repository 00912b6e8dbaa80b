#pragma once

#include <zel/String.h>

#include <string_view>

namespace qix
{

/// Decodes text from test sources: as UTF-8 if it is valid, otherwise as ISO-8859-1, so that no
/// byte is lost.
zel::String decodedText(std::string_view bytes);

} // namespace qix
