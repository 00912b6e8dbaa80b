#include "localeText.h"

#include <wx/strconv.h>

namespace zel
{

std::optional<String> decodeLocaleText(std::string const& bytes)
{
    String text(wxString(bytes.data(), wxConvLocal, bytes.size()));
    if (text.toCPSafe() != bytes)
    {
        return std::nullopt;
    }
    return text;
}

} // namespace zel
