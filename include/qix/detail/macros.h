#pragma once

// A variadic macro whose last argument is left out is standard from C++20 on only; both compilers
// have always taken it, and tell so under -Wpedantic unless the macro comes from the system.
#pragma GCC system_header

// Both operators bind less tightly than whatever may stand in front of a comparison, and TOperand
// hands on what << takes too much. Each compiler warns of one of the two beside a comparison.
#ifdef __clang__
#define QIX_DETAIL_TAKE_APART(...) (::qix::detail::CDecomposer() <= __VA_ARGS__)
#else
#define QIX_DETAIL_TAKE_APART(...) (::qix::detail::CDecomposer() << __VA_ARGS__)
#endif

#define QIX_DETAIL_CHECK(onFailure, text, ...)                                                     \
    (static_cast<bool>(QIX_DETAIL_TAKE_APART(__VA_ARGS__))                                         \
         ? static_cast<void>(0)                                                                    \
         : ::qix::detail::onFailure(__FILE__, __LINE__, text))

// The end of the checks of what is thrown, behind their own handlers.
#define QIX_DETAIL_CATCH_OTHERS(whenThrown, onFailure, text)                                       \
    catch (...)                                                                                    \
    {                                                                                              \
        whenThrown;                                                                                \
    }                                                                                              \
    if (!qixHolds)                                                                                 \
    {                                                                                              \
        ::qix::detail::onFailure(__FILE__, __LINE__, text);                                        \
    }

#define QIX_DETAIL_CHECK_THROWS(onFailure, text, ...)                                              \
    do                                                                                             \
    {                                                                                              \
        bool qixHolds = false;                                                                     \
        try                                                                                        \
        {                                                                                          \
            static_cast<void>(__VA_ARGS__);                                                        \
            ::qix::detail::keepNothingThrown();                                                    \
        }                                                                                          \
        QIX_DETAIL_CATCH_OTHERS(qixHolds = true, onFailure, text)                                  \
    } while (false)

#define QIX_DETAIL_CHECK_THROWS_AS(onFailure, text, expression, ...)                               \
    do                                                                                             \
    {                                                                                              \
        bool qixHolds = false;                                                                     \
        try                                                                                        \
        {                                                                                          \
            static_cast<void>(expression);                                                         \
            ::qix::detail::keepNothingThrown();                                                    \
        }                                                                                          \
        catch (__VA_ARGS__ const&)                                                                 \
        {                                                                                          \
            qixHolds = true;                                                                       \
        }                                                                                          \
        QIX_DETAIL_CATCH_OTHERS(::qix::detail::keepException(), onFailure, text)                   \
    } while (false)

#define QIX_DETAIL_CHECK_NOTHROW(onFailure, text, ...)                                             \
    do                                                                                             \
    {                                                                                              \
        bool qixHolds = false;                                                                     \
        try                                                                                        \
        {                                                                                          \
            static_cast<void>(__VA_ARGS__);                                                        \
            qixHolds = true;                                                                       \
        }                                                                                          \
        QIX_DETAIL_CATCH_OTHERS(::qix::detail::keepException(), onFailure, text)                   \
    } while (false)

#define QIX_DETAIL_JOIN(prefix, suffix) QIX_DETAIL_JOIN_EXPANDED(prefix, suffix)
#define QIX_DETAIL_JOIN_EXPANDED(prefix, suffix) prefix##suffix

#define QIX_DETAIL_ATTRIBUTES(none, ...)                                                           \
    QIX_DETAIL_FOURTH(none, ##__VA_ARGS__, QIX_DETAIL_TWO, QIX_DETAIL_ONE, QIX_DETAIL_NONE, )      \
    (__VA_ARGS__)
#define QIX_DETAIL_FOURTH(first, second, third, fourth, ...) fourth
#define QIX_DETAIL_NONE(...)                                                                       \
    {                                                                                              \
    }
#define QIX_DETAIL_ONE(attribute)                                                                  \
    {                                                                                              \
        ::qix::attributes::attribute                                                               \
    }
#define QIX_DETAIL_TWO(first, second)                                                              \
    {                                                                                              \
        ::qix::attributes::first, ::qix::attributes::second                                        \
    }

#define QIX_DETAIL_TEST(Test, group, name, ...)                                                    \
    namespace                                                                                      \
    {                                                                                              \
    struct Test : ::qix::CTestScope                                                                \
    {                                                                                              \
        static void body();                                                                        \
    };                                                                                             \
    ::qix::detail::CRegistration const QIX_DETAIL_JOIN(Test, Registration)(__FILE__, __LINE__,     \
                                                                           group, name,            \
                                                                           &Test::body,            \
                                                                           __VA_ARGS__);           \
    }                                                                                              \
    void Test::body()

#define QIX_DETAIL_TEST_F(Test, Fixture, group, name, ...)                                         \
    namespace                                                                                      \
    {                                                                                              \
    struct Test : Fixture                                                                          \
    {                                                                                              \
        void body() override;                                                                      \
    };                                                                                             \
    ::qix::detail::CRegistration const                                                             \
        QIX_DETAIL_JOIN(Test, Registration)(__FILE__, __LINE__, group, name,                       \
                                            &::qix::detail::makeTest<Test>, __VA_ARGS__);          \
    }                                                                                              \
    void Test::body()

/// \def QIX_TEST(group, name, attributes...)
/// Defines a test and registers it; its body follows in braces.
///
/// \p group is the dotted path of its group, \p name an identifier. The attributes are one of
/// Short (which it is without any), Long, VeryLong, Hours and None, and Interactive, in any order.
/// Tests are run in the order in which they stand in the file. The body can call log() and
/// subTest() as they stand.
///
/// Two tests of one name in a group, and a name for a group that is empty or contains a "%", are
/// refused: nothing is run, and the message tells where they are.
#define QIX_TEST(group, name, ...)                                                                 \
    QIX_DETAIL_TEST(QIX_DETAIL_JOIN(QixTest_##name##_, __COUNTER__), #group, #name,                \
                    QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))

/// \def QIX_TEST_F(Fixture, group, name, attributes...)
/// Defines a test as QIX_TEST does, in a class derived from \p Fixture, which is a class derived
/// from qix::CTestItem that can be constructed without arguments. Each test gets an object of its
/// own; the hooks of the fixture are called around the body.
#define QIX_TEST_F(Fixture, group, name, ...)                                                      \
    QIX_DETAIL_TEST_F(QIX_DETAIL_JOIN(QixTest_##name##_, __COUNTER__), Fixture, #group, #name,     \
                      QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))
