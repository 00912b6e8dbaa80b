#pragma once

#include <qix/export.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <utility>

namespace qix::detail
{

/// Registers an object that the tests of a group share, while its module is loaded.
class QIX_EXPORT CGroupFixtureRegistration
{
public:
    /// \param type     the object's type, for messages
    /// \param make     makes the object
    /// \param release  releases the object that was made last
    CGroupFixtureRegistration(char const* file, int line, char const* group, char const* type,
                              void (*make)(), void (*release)());
};

[[noreturn]] QIX_EXPORT void throwNoGroupFixture();

/// The objects of one type, for groups in each other.
template <typename T>
class TGroupFixture
{
public:
    static void make()
    {
        auto made = zel::newObj<Made>();
        made->outer = std::move(s_innermost);
        s_innermost = std::move(made);
    }

    static void release()
    {
        zel::P<Made> const released = std::move(s_innermost);
        s_innermost = std::move(released->outer);
    }

    static T& get()
    {
        if (s_innermost == nullptr)
        {
            throwNoGroupFixture();
        }
        return s_innermost->object;
    }

private:
    struct Made : zel::CBase
    {
        T object = T();
        zel::P<Made> outer = nullptr;
    };

    static inline zel::P<Made> s_innermost;
};

} // namespace qix::detail
