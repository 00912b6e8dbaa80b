#include "localeText.h"

#include <wx/strconv.h>

#include <system_error>

namespace zel
{

namespace
{

String decode(std::string const& bytes)
{
    return wxString(bytes.data(), wxConvLocal, bytes.size());
}

} // namespace

std::optional<String> decodeLocaleText(std::string const& bytes)
{
    String text = decode(bytes);
    if (text.toCPSafe() != bytes)
    {
        return std::nullopt;
    }
    return text;
}

std::optional<std::string> encodeLocaleText(String const& text)
{
    std::string bytes = text.toCPSafe();
    if (decode(bytes) != text)
    {
        return std::nullopt;
    }
    return bytes;
}

String decodeForMessage(std::string const& bytes)
{
    return decodeLocaleText(bytes).value_or(String(bytes));
}

String messageOfError(int error)
{
    return decodeForMessage(std::generic_category().message(error));
}

} // namespace zel
