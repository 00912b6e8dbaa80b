#include <qix/detail/typed.h>

namespace qix::detail
{

namespace
{

std::string_view withoutBlanksAround(std::string_view text)
{
    std::size_t const first = text.find_first_not_of(' ');
    std::size_t const last = text.find_last_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, last - first + 1);
}

int depthChange(char character) noexcept
{
    return std::string_view("(<[{").find(character) != std::string_view::npos   ? 1
           : std::string_view(")>]}").find(character) != std::string_view::npos ? -1
                                                                                : 0;
}

/// Where the comma stands that ends the first type, or the end.
std::size_t findEndOfType(std::string_view types) noexcept
{
    int depth = 0;
    std::size_t i = 0;
    for (; i < types.size() && !(types[i] == ',' && depth == 0); ++i)
    {
        depth += depthChange(types[i]);
    }
    return i;
}

} // namespace

std::string_view nameOfType(char const* types, std::size_t number)
{
    std::string_view rest = withoutBlanksAround(types);
    rest = rest.substr(1, rest.size() - 2);
    for (; number > 0; --number)
    {
        std::size_t const end = findEndOfType(rest);
        rest.remove_prefix(end == rest.size() ? end : end + 1);
    }
    return withoutBlanksAround(rest.substr(0, findEndOfType(rest)));
}

} // namespace qix::detail
