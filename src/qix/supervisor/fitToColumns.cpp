#include "supervisor/fitToColumns.h"

#include <cwchar>

namespace qix
{

namespace
{

/// Some bytes that are shown together.
struct Character
{
    std::size_t size = 1;
    int columns = -1; ///< negative when it cannot be shown
};

Character characterAt(char const* text, std::size_t size)
{
    std::mbstate_t state = {};
    wchar_t character = L'\0';
    std::size_t const used = std::mbrtowc(&character, text, size, &state);
    return used == 0 || used > size ? Character() : Character{used, wcwidth(character)};
}

} // namespace

std::string fitToColumns(std::string const& text, std::size_t columns)
{
    std::string shown;
    std::size_t left = columns;
    for (std::size_t i = 0; i < text.size();)
    {
        Character const character = characterAt(text.data() + i, text.size() - i);
        std::size_t const needed =
            character.columns < 0 ? 1 : static_cast<std::size_t>(character.columns);
        if (needed > left)
        {
            break;
        }
        shown += character.columns < 0 ? "?" : text.substr(i, character.size);
        left -= needed;
        i += character.size;
    }
    return shown;
}

} // namespace qix
