#include "text/decodedText.h"

#include <wx/strconv.h>

#include <string>

namespace qix
{

zel::String decodedText(std::string_view bytes)
{
    wxString const text(bytes.data(), wxMBConvUTF8(), bytes.size());
    // wxWidgets returns an empty text for bytes that are not valid in the encoding.
    if (text.empty() && !bytes.empty())
    {
        return zel::String(std::string(bytes));
    }
    return zel::String(text);
}

} // namespace qix
