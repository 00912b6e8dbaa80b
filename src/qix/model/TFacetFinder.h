#pragma once

#include <qix/ITestItem.h>

#include <cstddef>
#include <optional>
#include <typeinfo>

namespace qix
{

/// Finds an interface that an item may have beside ITestItem, as a dynamic_cast does. Where it
/// stands in a class is remembered for the last class: the tests of a suite have few classes, and
/// searching one costs more than all else that is told of a test.
///
/// Not used for longer than the items live: the next class may have the address of one that is
/// gone.
template <typename Interface>
class TFacetFinder
{
public:
    /// Null when the item does not have the interface.
    /// \param item  may be null
    Interface const* find(ITestItem const* item)
    {
        if (item == nullptr)
        {
            return nullptr;
        }
        std::type_info const& type = typeid(*item);
        char const* const whole = static_cast<char const*>(dynamic_cast<void const*>(item));
        if (&type != m_type)
        {
            search(*item, whole);
            m_type = &type;
        }
        return m_offset ? reinterpret_cast<Interface const*>(whole + *m_offset) : nullptr;
    }

private:
    void search(ITestItem const& item, char const* whole)
    {
        m_offset.reset();
        if (auto const* const found = dynamic_cast<Interface const*>(&item))
        {
            m_offset = reinterpret_cast<char const*>(found) - whole;
        }
    }

    std::type_info const* m_type = nullptr;
    std::optional<std::ptrdiff_t> m_offset; ///< nothing when the class does not have it
};

} // namespace qix
