#pragma once

#include <qix/export.h>

#include <string_view>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// A function reference: calls something without arguments that it does not own.
class CFunctionRef
{
public:
    template <typename Row,
              typename = std::enable_if_t<!std::is_same_v<std::decay_t<Row>, CFunctionRef>>>
    CFunctionRef(Row&& row) noexcept : m_call(&call<std::remove_reference_t<Row>>)
    {
        if constexpr (std::is_function_v<std::remove_reference_t<Row>>)
        {
            m_row = reinterpret_cast<void*>(&row);
        }
        else
        {
            m_row = const_cast<void*>(static_cast<void const*>(std::addressof(row)));
        }
    }

    void operator()() const { m_call(m_row); }

private:
    template <typename Row>
    static void call(void* row)
    {
        (*reinterpret_cast<Row*>(row))();
    }

    void* m_row = nullptr;
    void (*m_call)(void*);
};

/// What qix::subTest() does.
QIX_EXPORT void runSubTest(std::string_view name, CFunctionRef row, char const* file, int line);

} // namespace qix::detail
