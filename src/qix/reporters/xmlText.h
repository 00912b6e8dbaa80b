#pragma once

#include <string>
#include <string_view>

namespace qix
{

/// Adds the text as the content of an XML element or as the value of an attribute: ASCII only,
/// without question marks. What is no valid UTF-8 becomes "[NON-UTF-8-BYTE-0xFF]", and characters
/// that XML 1.0 forbids become "[NON-XML-CHAR-0x1]".
void appendXmlText(std::string& xml, std::string_view text);

} // namespace qix
