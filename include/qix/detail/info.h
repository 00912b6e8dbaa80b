#pragma once

#include <qix/detail/message.h>
#include <qix/export.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// A scope whose text is added to the failures on its thread. The text is made when one occurs, or
/// when an exception leaves the scope.
class QIX_EXPORT CInfoScope
{
public:
    using Write = void(CMessageWriter& out, void const* parts);

    /// \param parts  what \p write makes the text of; not owned
    CInfoScope(Write* write, void const* parts) noexcept;
    CInfoScope(CInfoScope const&) = delete;
    CInfoScope& operator=(CInfoScope const&) = delete;
    ~CInfoScope();

    /// The scope around it, or null.
    CInfoScope const* getOuter() const noexcept { return m_outer; }

    std::string makeText() const;

private:
    Write* m_write;
    void const* m_parts;
    CInfoScope const* m_outer;
    int m_exceptions; ///< std::uncaught_exceptions() when it began
};

/// The source text of one of the \p count values in \p names, which commas separate.
QIX_EXPORT std::string_view nameOfCapture(std::string_view names, std::size_t index,
                                          std::size_t count);

/// A part of a text, converted already.
struct MadeText
{
    std::string text;

    void describe(CValueWriter& out) const { out.text(text); }
};

template <typename T>
constexpr bool isPointerToCharacters =
    std::is_pointer_v<T>&& isCharacter<std::remove_cv_t<std::remove_pointer_t<T>>>;

/// Temporaries that may refer to other temporaries, which are destroyed before the text is made.
template <typename T>
constexpr bool isMadeAtOnce =
    !std::is_reference_v<T> &&
    (isPointerToCharacters<T> || (std::is_class_v<T> && std::is_trivially_copyable_v<T>));

/// The type by which a variable is captured until the text is made: a reference, or a scalar.
template <typename T>
using KeptVariable = std::conditional_t<std::is_scalar_v<std::remove_reference_t<T>> ||
                                            std::is_function_v<std::remove_reference_t<T>>,
                                        std::decay_t<T>, std::remove_reference_t<T> const&>;

/// The type by which a part is captured until the text is made. A \p T that is no reference is a
/// temporary.
template <typename T>
using KeptPart = std::conditional_t<
    isMadeAtOnce<T>, MadeText,
    std::conditional_t<std::is_reference_v<T>, KeptVariable<T>, std::decay_t<T>>>;

/// A list of the parts of a message, in order.
struct MessageStyle
{
    template <typename T>
    static void write(CMessageWriter& out, T const& part, char const*, std::size_t, std::size_t)
    {
        if constexpr (std::is_same_v<T, std::ostream& (*)(std::ostream&)> ||
                      std::is_same_v<T, std::ios_base& (*)(std::ios_base&)>)
        {
            out.manipulate(part);
        }
        else
        {
            writeMessage(out, part);
        }
    }
};

/// A line for each value, with its name.
struct CaptureStyle
{
    template <typename T>
    static void write(CMessageWriter& out, T const& part, char const* names, std::size_t index,
                      std::size_t count)
    {
        out.text(std::string_view(index == 0 ? "" : "\n"));
        out.text(nameOfCapture(names, index, count));
        out.text(std::string_view(" = "));
        out.described({std::addressof(part), &describeValue<T>});
    }
};

template <typename Style, typename Front, typename Part>
class TParts;

template <typename Style, typename T>
MadeText makeText(T const& value)
{
    CMessageWriter out;
    if constexpr (std::is_same_v<Style, CaptureStyle>)
    {
        out.described({std::addressof(value), &describeValue<T>});
    }
    else
    {
        writeMessage(out, value);
    }
    return {out.written()};
}

// -Weffc++ warns of overloading the comma: nobody relies on the built-in one between two parts.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Weffc++"

#define QIX_DETAIL_APPEND(...)                                                                     \
    template <typename T, std::enable_if_t<!std::is_scalar_v<std::remove_reference_t<T>> ||        \
                                               isPointerToCharacters<std::decay_t<T>>,             \
                                           int> = 0>                                               \
    auto operator __VA_ARGS__(T&& part)&&                                                          \
    {                                                                                              \
        return append<KeptPart<T>>(static_cast<T&&>(part));                                        \
    }                                                                                              \
    template <typename T,                                                                          \
              std::enable_if_t<std::is_scalar_v<T> && !isPointerToCharacters<T>, int> = 0>         \
    auto operator __VA_ARGS__(T const& part)&&                                                     \
    {                                                                                              \
        return append<T>(part);                                                                    \
    }

/// Appends a part.
template <typename Style, typename Parts>
class TAppends
{
public:
    QIX_DETAIL_APPEND(<<)
    QIX_DETAIL_APPEND(, )

    auto operator<<(std::ostream& (*manipulator)(std::ostream&)) &&
    {
        return append<std::ostream& (*)(std::ostream&)>(manipulator);
    }

    auto operator<<(std::ios_base& (*manipulator)(std::ios_base&)) &&
    {
        return append<std::ios_base& (*)(std::ios_base&)>(manipulator);
    }

private:
    template <typename Kept, typename T>
    TParts<Style, Parts, Kept> append(T&& part)
    {
        Parts&& parts = static_cast<Parts&&>(*this);
        if constexpr (std::is_same_v<Kept, MadeText>)
        {
            return {static_cast<Parts&&>(parts), makeText<Style>(part)};
        }
        else
        {
            return {static_cast<Parts&&>(parts), static_cast<T&&>(part)};
        }
    }
};

#undef QIX_DETAIL_APPEND
#pragma GCC diagnostic pop

/// The empty list of parts.
template <typename Style>
class TNoParts : public TAppends<Style, TNoParts<Style>>
{
public:
    // As operations of this class they match better than those by which users write everything.
    using TAppends<Style, TNoParts<Style>>::operator<<;
    using TAppends<Style, TNoParts<Style>>::operator, ;

    static constexpr std::size_t count = 0;

    explicit TNoParts(char const* names) noexcept : m_names(names) {}

    char const* getNames() const noexcept { return m_names; }
    void write(CMessageWriter&, std::size_t) const noexcept {}

private:
    char const* m_names;
};

/// The captured parts of a text, which is made on demand.
template <typename Style, typename Front, typename Part>
class TParts : public TAppends<Style, TParts<Style, Front, Part>>
{
public:
    using TAppends<Style, TParts>::operator<<;
    using TAppends<Style, TParts>::operator, ;

    static constexpr std::size_t count = Front::count + 1;

    template <typename T>
    TParts(Front&& front, T&& part)
        : m_front(static_cast<Front&&>(front)), m_part(static_cast<T&&>(part))
    {
    }

    TParts(TParts&&) = default;
    TParts(TParts const&) = delete;
    TParts& operator=(TParts const&) = delete;

    char const* getNames() const noexcept { return m_front.getNames(); }

    /// \param total  how many parts there will be
    void write(CMessageWriter& out, std::size_t total) const
    {
        m_front.write(out, total);
        Style::write(out, m_part, getNames(), count - 1, total);
    }

private:
    Front m_front;
    Part m_part;
};

/// The captured parts of a text and the scope that adds it to failures.
template <typename Parts>
class TInfo
{
public:
    explicit TInfo(Parts&& parts) : m_parts(static_cast<Parts&&>(parts)) {}

private:
    static void write(CMessageWriter& out, void const* parts)
    {
        static_cast<Parts const*>(parts)->write(out, Parts::count);
    }

    Parts m_parts;
    CInfoScope m_scope{&write, &m_parts}; ///< goes first: the text may be made then
};

} // namespace qix::detail
