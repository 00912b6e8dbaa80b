#pragma once

#include <zel/String.h>

#include <string_view>

namespace qix
{

/// Bytes that a test's author wrote as text: UTF-8 if that is what they are, which a source file
/// mostly is, and ISO-8859-1 otherwise, so that nothing is lost.
zel::String decodedText(std::string_view bytes);

} // namespace qix
