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
            ::qix::detail::captureNothingThrown();                                                 \
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
            ::qix::detail::captureNothingThrown();                                                 \
        }                                                                                          \
        catch (__VA_ARGS__ const&)                                                                 \
        {                                                                                          \
            qixHolds = true;                                                                       \
        }                                                                                          \
        QIX_DETAIL_CATCH_OTHERS(::qix::detail::captureException(), onFailure, text)                \
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
        QIX_DETAIL_CATCH_OTHERS(::qix::detail::captureException(), onFailure, text)                \
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
