#pragma once

#include <qix/detail/groupFixture.h>
#include <qix/detail/macros.h>

namespace qix
{

/// The object of this type that QIX_GROUP_FIXTURE has made for the group of the running test, or
/// for a group around it; the innermost one if there are several. Throws zel::CError when there is
/// none. Safe to call on threads that the test has started.
template <typename T>
T& groupFixture()
{
    return detail::TGroupFixture<T>::get();
}

} // namespace qix

/// \def QIX_GROUP_FIXTURE(group, Type)
/// Gives a group an object that its tests share, and which they get by qix::groupFixture<Type>().
///
/// The object is made without arguments before the first test of the group, or of one in it, is
/// run, and released behind the last one, also when some fail; not at all when none is run. What
/// goes wrong in its constructor, a failed check too, fails the group; the tests are aborted then,
/// not failed. When the constructor skips or aborts, the tests do. What goes wrong in the
/// destructor fails the group. The objects of one group are made in their order and released in
/// reverse.
#define QIX_GROUP_FIXTURE(group, ...)                                                              \
    static ::qix::detail::CGroupFixtureRegistration const QIX_DETAIL_JOIN(                         \
        qixGroupFixture, __COUNTER__)(__FILE__, __LINE__, #group, #__VA_ARGS__,                    \
                                      &::qix::detail::TGroupFixture<__VA_ARGS__>::make,            \
                                      &::qix::detail::TGroupFixture<__VA_ARGS__>::release)
