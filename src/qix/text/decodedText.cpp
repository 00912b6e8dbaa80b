#include "text/decodedText.h"

#include <wx/strconv.h>

#include <string>

namespace qix
{

zel::String decodedText(std::string_view bytes)
{
    wxString const text(bytes.data(), wxMBConvUTF8(), bytes.size());
    // wxWidgets gives an empty text for bytes that the encoding does not know.
    if (text.empty() && !bytes.empty())
    {
        return zel::String(std::string(bytes));
    }
    return zel::String(text);
}

} // namespace qix
