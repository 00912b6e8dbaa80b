#pragma once

#include <zel/language.h>

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

#define QIX_DETAIL_FAILURE(Ending, text)                                                           \
    ::qix::detail::Ending& ::qix::detail::failedCheck(__FILE__, __LINE__, text)

// The message stands behind all of it, and is evaluated only where the last operand is.
#define QIX_DETAIL_CHECK(Ending, text, ...)                                                        \
    ::qix::detail::holds(QIX_DETAIL_TAKE_APART(__VA_ARGS__))                                       \
        ? ::qix::detail::notePassedCheck(__FILE__, __LINE__)                                       \
        : QIX_DETAIL_FAILURE(Ending, text)

#define QIX_DETAIL_CHECK_END(Ending, text, end, statement, ...)                                    \
    ::qix::detail::endsProcess(                                                                    \
        ::qix::detail::ProcessEnd::end, [&] { statement; }, __VA_ARGS__)                           \
        ? static_cast<void>(0)                                                                     \
        : QIX_DETAIL_FAILURE(Ending, text)

#define QIX_DETAIL_FAIL(Ending, message) QIX_DETAIL_FAILURE(Ending, nullptr) << (message)

// Begins a loop that tries a statement, and goes round once more for the message of the failure,
// which stands behind all of it.
#define QIX_DETAIL_BEGIN_ATTEMPT                                                                   \
    for (::qix::detail::CAttempt qixAttempt; qixAttempt.goesOn();)                                 \
        if (qixAttempt.begins())                                                                   \
        {

#define QIX_DETAIL_END_ATTEMPT(Ending, text)                                                       \
    qixAttempt.end(__FILE__, __LINE__);                                                            \
    }                                                                                              \
    else QIX_DETAIL_FAILURE(Ending, text)

// Tries the statement of a check of what is thrown: neither its value nor its variables are used.
// clang++ loses these pragmas where the check itself stands in an argument of another macro.
#define QIX_DETAIL_TRY(...)                                                                        \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wunused-variable\"")         \
        _Pragma("GCC diagnostic ignored \"-Wunused-value\"")                                       \
            _Pragma("GCC diagnostic ignored \"-Wunused-result\"")                                  \
    try                                                                                            \
    {                                                                                              \
        {                                                                                          \
            __VA_ARGS__;                                                                           \
        }                                                                                          \
        qixAttempt.setReturned();                                                                  \
    }

// Handles what else the statement throws. What ends a cancelled thread is no exception.
#define QIX_DETAIL_CATCH(whenThrown)                                                               \
    catch (::abi::__forced_unwind const&)                                                          \
    {                                                                                              \
        throw;                                                                                     \
    }                                                                                              \
    catch (...)                                                                                    \
    {                                                                                              \
        whenThrown;                                                                                \
    }                                                                                              \
    _Pragma("GCC diagnostic pop")

#define QIX_DETAIL_CHECK_THROWS(Ending, text, ...)                                                 \
    QIX_DETAIL_BEGIN_ATTEMPT                                                                       \
    QIX_DETAIL_TRY(__VA_ARGS__)                                                                    \
    QIX_DETAIL_CATCH(::qix::detail::forgetException())                                             \
    qixAttempt.expectThrown();                                                                     \
    QIX_DETAIL_END_ATTEMPT(Ending, text)

#define QIX_DETAIL_CHECK_THROWS_AS(Ending, text, statement, ...)                                   \
    QIX_DETAIL_BEGIN_ATTEMPT                                                                       \
    QIX_DETAIL_TRY(statement)                                                                      \
    catch (__VA_ARGS__ const&)                                                                     \
    {                                                                                              \
        ::qix::detail::forgetException();                                                          \
    }                                                                                              \
    QIX_DETAIL_CATCH(qixAttempt.failWithException())                                               \
    qixAttempt.expectThrown();                                                                     \
    QIX_DETAIL_END_ATTEMPT(Ending, text)

#define QIX_DETAIL_CHECK_THROWS_WITH(Ending, text, statement, expected)                            \
    QIX_DETAIL_BEGIN_ATTEMPT                                                                       \
    QIX_DETAIL_TRY(statement)                                                                      \
    QIX_DETAIL_CATCH(qixAttempt.expectMessage(expected))                                           \
    qixAttempt.expectThrown();                                                                     \
    QIX_DETAIL_END_ATTEMPT(Ending, text)

#define QIX_DETAIL_CHECK_THROWS_WITH_AS(Ending, text, statement, expected, ...)                    \
    QIX_DETAIL_BEGIN_ATTEMPT                                                                       \
    QIX_DETAIL_TRY(statement)                                                                      \
    catch (__VA_ARGS__ const&)                                                                     \
    {                                                                                              \
        qixAttempt.expectMessage(expected);                                                        \
    }                                                                                              \
    QIX_DETAIL_CATCH(qixAttempt.failWithException())                                               \
    qixAttempt.expectThrown();                                                                     \
    QIX_DETAIL_END_ATTEMPT(Ending, text)

#define QIX_DETAIL_CHECK_THAT(Ending, text, value, ...)                                            \
    ::qix::detail::holdsThat(value, __VA_ARGS__)                                                   \
        ? ::qix::detail::notePassedCheck(__FILE__, __LINE__)                                       \
        : QIX_DETAIL_FAILURE(Ending, text)

#define QIX_DETAIL_CHECK_NOTHROW(Ending, text, ...)                                                \
    QIX_DETAIL_BEGIN_ATTEMPT                                                                       \
    QIX_DETAIL_TRY(__VA_ARGS__)                                                                    \
    QIX_DETAIL_CATCH(qixAttempt.failWithException())                                               \
    QIX_DETAIL_END_ATTEMPT(Ending, text)

#define QIX_DETAIL_INFO(...)                                                                       \
    ::qix::detail::TInfo const QIX_DETAIL_JOIN(qixInfo_, __COUNTER__)(                             \
        (::qix::detail::TNoParts<::qix::detail::MessageStyle>(nullptr) << __VA_ARGS__))

#define QIX_DETAIL_CAPTURE(names, ...)                                                             \
    ::qix::detail::TInfo const QIX_DETAIL_JOIN(qixInfo_, __COUNTER__)(                             \
        (::qix::detail::TNoParts<::qix::detail::CaptureStyle>(names), __VA_ARGS__))

#define QIX_DETAIL_JOIN(prefix, suffix) QIX_DETAIL_JOIN_EXPANDED(prefix, suffix)
#define QIX_DETAIL_JOIN_EXPANDED(prefix, suffix) prefix##suffix

#define QIX_DETAIL_ATTRIBUTES(none, ...)                                                           \
    QIX_DETAIL_SEVENTH(none, ##__VA_ARGS__, QIX_DETAIL_FIVE, QIX_DETAIL_FOUR, QIX_DETAIL_THREE,    \
                       QIX_DETAIL_TWO, QIX_DETAIL_ONE, QIX_DETAIL_NONE, )                          \
    (__VA_ARGS__)
#define QIX_DETAIL_SEVENTH(first, second, third, fourth, fifth, sixth, seventh, ...) seventh
#define QIX_DETAIL_NONE(...) ::qix::detail::Attributes()
#define QIX_DETAIL_ONE(a) ::qix::detail::makeAttributes(::qix::attributes::a)
#define QIX_DETAIL_TWO(a, b)                                                                       \
    ::qix::detail::makeAttributes(::qix::attributes::a, ::qix::attributes::b)
#define QIX_DETAIL_THREE(a, b, c)                                                                  \
    ::qix::detail::makeAttributes(::qix::attributes::a, ::qix::attributes::b, ::qix::attributes::c)
#define QIX_DETAIL_FOUR(a, b, c, d)                                                                \
    ::qix::detail::makeAttributes(::qix::attributes::a, ::qix::attributes::b,                      \
                                  ::qix::attributes::c, ::qix::attributes::d)
#define QIX_DETAIL_FIVE(a, b, c, d, e)                                                             \
    ::qix::detail::makeAttributes(::qix::attributes::a, ::qix::attributes::b,                      \
                                  ::qix::attributes::c, ::qix::attributes::d,                      \
                                  ::qix::attributes::e)

#define QIX_DETAIL_WITHOUT_PARENTHESES(...) __VA_ARGS__

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

// In these, Members are what the class of the test consists of beside its base.
#define QIX_DETAIL_TYPED(Test, Base, Members, group, name, types, ...)                             \
    namespace                                                                                      \
    {                                                                                              \
    template <typename TypeParam>                                                                  \
    struct Test : Base                                                                             \
    {                                                                                              \
        Members                                                                                    \
    };                                                                                             \
    ::qix::detail::CRegistration const QIX_DETAIL_JOIN(Test, Registration)(                        \
        __FILE__, __LINE__, group, name,                                                           \
        &::qix::detail::listTyped<Test, QIX_DETAIL_WITHOUT_PARENTHESES types>, #types,             \
        __VA_ARGS__);                                                                              \
    }                                                                                              \
    template <typename TypeParam>                                                                  \
    void Test<TypeParam>::body()

#define QIX_DETAIL_EACH(Test, Base, Members, group, name, values, ...)                             \
    namespace                                                                                      \
    {                                                                                              \
    struct QIX_DETAIL_JOIN(Test, Values)                                                           \
    {                                                                                              \
        static decltype(auto) get() { return (values); }                                           \
    };                                                                                             \
    struct Test : Base                                                                             \
    {                                                                                              \
        using Param = ::qix::detail::EachParam<QIX_DETAIL_JOIN(Test, Values)>;                     \
        Members                                                                                    \
    };                                                                                             \
    ::qix::detail::CRegistration const QIX_DETAIL_JOIN(Test, Registration)(                        \
        __FILE__, __LINE__, group, name,                                                           \
        &::qix::detail::listEachTest<Test, QIX_DETAIL_JOIN(Test, Values)>, nullptr, __VA_ARGS__);  \
    }

#define QIX_DETAIL_TEST_TYPED(Test, ...)                                                           \
    QIX_DETAIL_TYPED(Test, ::qix::CTestScope, static void body();, __VA_ARGS__)

#define QIX_DETAIL_TEST_TYPED_F(Test, Fixture, ...)                                                \
    QIX_DETAIL_TYPED(Test, Fixture<TypeParam>, void body() override;, __VA_ARGS__)

#define QIX_DETAIL_TEST_EACH(Test, ...)                                                            \
    QIX_DETAIL_EACH(Test, ::qix::CTestScope, static void body(Param const& param);, __VA_ARGS__)   \
    void Test::body([[maybe_unused]] Param const& param)

#define QIX_DETAIL_EACH_MEMBERS(Test)                                                              \
    explicit Test(Param const& value) : param(value)                                               \
    {                                                                                              \
    }                                                                                              \
    void body() override;                                                                          \
    Param const& param;

#define QIX_DETAIL_TEST_EACH_F(Test, Fixture, ...)                                                 \
    QIX_DETAIL_EACH(Test, Fixture, QIX_DETAIL_EACH_MEMBERS(Test), __VA_ARGS__)                     \
    void Test::body()
