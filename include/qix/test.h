#pragma once

/// \file
/// What a test file includes: the macros by which tests are written.

#include <qix/CTestItem.h>
#include <qix/CTestScope.h>
#include <qix/approx.h>
#include <qix/attributes.h>
#include <qix/detail/attempt.h>
#include <qix/detail/check.h>
#include <qix/detail/death.h>
#include <qix/detail/each.h>
#include <qix/detail/failure.h>
#include <qix/detail/info.h>
#include <qix/detail/macros.h>
#include <qix/detail/matching.h>
#include <qix/detail/reason.h>
#include <qix/detail/registration.h>
#include <qix/detail/section.h>
#include <qix/detail/typed.h>
#include <qix/groupFixture.h>
#include <qix/log.h>
#include <qix/noteFailure.h>
#include <qix/subTest.h>
#include <qix/values.h>

/// Checks that the expression is true: a comparison, whose two values a failure shows, or whatever
/// else converts to bool. It is evaluated once. A failure is noted, and the test goes on and fails
/// at its end.
///
/// Checks may stand in functions that a test calls, and on threads that it has started; what
/// fails there counts for the innermost sub-test that is running. A check that fails while no
/// test is running throws CTestFailedException. A passing check allocates nothing.
///
/// A message may follow behind each of the checks, and is evaluated only when that has failed:
/// `QIX_CHECK(a == b) << "for " << name`. Whatever has a `<<` for streams or can be shown by a
/// failed check can be a part of it.
#define QIX_CHECK(...) QIX_DETAIL_CHECK(notesFailure, "QIX_CHECK(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that the expression is true, as QIX_CHECK does. A failure ends the test, or the
/// sub-test around it, by throwing CTestFailedException. On a thread of the test's own it is
/// thrown there: catch it at the end of the thread, the failure has been noted.
#define QIX_REQUIRE(...) QIX_DETAIL_CHECK(endsTest, "QIX_REQUIRE(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws something. A failure is noted.
#define QIX_CHECK_THROWS(...)                                                                      \
    QIX_DETAIL_CHECK_THROWS(notesFailure, "QIX_CHECK_THROWS(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws something. A failure ends the test.
#define QIX_REQUIRE_THROWS(...)                                                                    \
    QIX_DETAIL_CHECK_THROWS(endsTest, "QIX_REQUIRE_THROWS(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws an exception of the type that follows, or of one
/// derived from it. An expression with commas needs parentheses. A failure is noted.
#define QIX_CHECK_THROWS_AS(expression, ...)                                                       \
    QIX_DETAIL_CHECK_THROWS_AS(notesFailure,                                                       \
                               "QIX_CHECK_THROWS_AS(" #expression ", " #__VA_ARGS__ ")",           \
                               expression, __VA_ARGS__)

/// Checks the type of what is thrown, as QIX_CHECK_THROWS_AS does. A failure ends the test.
#define QIX_REQUIRE_THROWS_AS(expression, ...)                                                     \
    QIX_DETAIL_CHECK_THROWS_AS(endsTest,                                                           \
                               "QIX_REQUIRE_THROWS_AS(" #expression ", " #__VA_ARGS__ ")",         \
                               expression, __VA_ARGS__)

/// Checks that evaluating the expression throws nothing. A failure is noted.
#define QIX_CHECK_NOTHROW(...)                                                                     \
    QIX_DETAIL_CHECK_NOTHROW(notesFailure, "QIX_CHECK_NOTHROW(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws nothing. A failure ends the test.
#define QIX_REQUIRE_NOTHROW(...)                                                                   \
    QIX_DETAIL_CHECK_NOTHROW(endsTest, "QIX_REQUIRE_NOTHROW(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws something whose message, what() or the text that is
/// thrown, equals a text or is matched by a matcher of qix/matchers.h. An expression with commas
/// needs parentheses. A failure is noted.
#define QIX_CHECK_THROWS_WITH(expression, ...)                                                     \
    QIX_DETAIL_CHECK_THROWS_WITH(notesFailure,                                                     \
                                 "QIX_CHECK_THROWS_WITH(" #expression ", " #__VA_ARGS__ ")",       \
                                 expression, (__VA_ARGS__))

/// Checks the message of what is thrown, as QIX_CHECK_THROWS_WITH does. A failure ends the test.
#define QIX_REQUIRE_THROWS_WITH(expression, ...)                                                   \
    QIX_DETAIL_CHECK_THROWS_WITH(endsTest,                                                         \
                                 "QIX_REQUIRE_THROWS_WITH(" #expression ", " #__VA_ARGS__ ")",     \
                                 expression, (__VA_ARGS__))

/// Checks the message of what is thrown, as QIX_CHECK_THROWS_WITH does, and its type, which
/// follows, as QIX_CHECK_THROWS_AS does. A message with commas outside of parentheses needs some. A
/// failure is noted.
#define QIX_CHECK_THROWS_WITH_AS(expression, message, ...)                                         \
    QIX_DETAIL_CHECK_THROWS_WITH_AS(                                                               \
        notesFailure, "QIX_CHECK_THROWS_WITH_AS(" #expression ", " #message ", " #__VA_ARGS__ ")", \
        expression, message, __VA_ARGS__)

/// Checks message and type of what is thrown, as QIX_CHECK_THROWS_WITH_AS does. A failure ends the
/// test.
#define QIX_REQUIRE_THROWS_WITH_AS(expression, message, ...)                                       \
    QIX_DETAIL_CHECK_THROWS_WITH_AS(                                                               \
        endsTest, "QIX_REQUIRE_THROWS_WITH_AS(" #expression ", " #message ", " #__VA_ARGS__ ")",   \
        expression, message, __VA_ARGS__)

/// Checks that a matcher matches the value: one of qix/matchers.h or of your own, or a value that
/// it has to equal. A value with commas outside of parentheses needs some. A failure is noted, with
/// what was expected and what is different.
#define QIX_CHECK_THAT(value, ...)                                                                 \
    QIX_DETAIL_CHECK_THAT(notesFailure, "QIX_CHECK_THAT(" #value ", " #__VA_ARGS__ ")", value,     \
                          __VA_ARGS__)

/// Checks that a matcher matches the value, as QIX_CHECK_THAT does. A failure ends the test.
#define QIX_REQUIRE_THAT(value, ...)                                                               \
    QIX_DETAIL_CHECK_THAT(endsTest, "QIX_REQUIRE_THAT(" #value ", " #__VA_ARGS__ ")", value,       \
                          __VA_ARGS__)

/// Notes a failure with the message. The test goes on and fails at its end.
#define QIX_NOTE_FAILURE(message) QIX_DETAIL_FAIL(notesFailure, message)

/// Ends the test, which fails with the message.
#define QIX_FAIL(message) QIX_DETAIL_FAIL(endsTest, message)

/// Tells what a failure, or an exception that leaves the scope, is to be read with:
/// `QIX_INFO("row " << i)`. All that stand in scopes around a failed check on the same thread are
/// told, the innermost last. Allocates nothing as long as nothing fails: the text is made then, of
/// the values that the variables have then, except for numbers and pointers, which are copied. Of
/// what is computed for it the result is kept, as text where it may refer to something else.
#define QIX_INFO(...) QIX_DETAIL_INFO(__VA_ARGS__)

/// Tells the values of expressions with their source texts, each on a line of its own, as QIX_INFO
/// does: `QIX_CAPTURE(i, name.size())`.
#define QIX_CAPTURE(...) QIX_DETAIL_CAPTURE(#__VA_ARGS__, __VA_ARGS__)

/// Checks that the statement ends the process by a signal: `QIX_CHECK_DIES(f(), SIGABRT)`.
///
/// It is run in a forked process, so that nothing that it does is seen here; standard input and
/// output lead nowhere there. With a third argument, what the statement has written to standard
/// error has to contain that text, or to be matched by that matcher. A statement with commas needs
/// parentheses. A failure is noted, and tells how the statement ended instead. As in every process
/// that is forked from several threads, the statement must not need what another thread may hold.
/// Throws zel::CError when there can be no process.
#define QIX_CHECK_DIES(statement, ...)                                                             \
    QIX_DETAIL_CHECK_END(notesFailure, "QIX_CHECK_DIES(" #statement ", " #__VA_ARGS__ ")",         \
                         BySignal, statement, __VA_ARGS__)

/// Checks that the statement ends the process by a signal, as QIX_CHECK_DIES does. A failure ends
/// the test.
#define QIX_REQUIRE_DIES(statement, ...)                                                           \
    QIX_DETAIL_CHECK_END(endsTest, "QIX_REQUIRE_DIES(" #statement ", " #__VA_ARGS__ ")", BySignal, \
                         statement, __VA_ARGS__)

/// Checks that the statement ends the process with a status: `QIX_CHECK_EXITS(f(), 2)`. It is run
/// as that of QIX_CHECK_DIES. Functions that the statement registers for the end of the process are
/// called; those that were registered before are not.
#define QIX_CHECK_EXITS(statement, ...)                                                            \
    QIX_DETAIL_CHECK_END(notesFailure, "QIX_CHECK_EXITS(" #statement ", " #__VA_ARGS__ ")",        \
                         WithStatus, statement, __VA_ARGS__)

/// Checks that the statement ends the process with a status, as QIX_CHECK_EXITS does. A failure
/// ends the test.
#define QIX_REQUIRE_EXITS(statement, ...)                                                          \
    QIX_DETAIL_CHECK_END(endsTest, "QIX_REQUIRE_EXITS(" #statement ", " #__VA_ARGS__ ")",          \
                         WithStatus, statement, __VA_ARGS__)

/// Ends the test, which does not apply here. QIX_SKIP(reason) tells why, which goes to the log
/// file; more of the reason may follow: `QIX_SKIP("no ") << device`.
#define QIX_SKIP(...) ::qix::detail::skipsTest& ::qix::detail::makeReason(__VA_ARGS__)

/// Ends the test without a verdict. The message goes to the log file; more of it may follow, as
/// behind QIX_SKIP.
#define QIX_ABORT(message) ::qix::detail::abortsTest& ::qix::detail::makeReason(message)

// A variadic macro whose last argument is left out is standard from C++20 on only; both compilers
// have always taken it, and tell so under -Wpedantic unless the macro comes from the system.
#pragma GCC system_header

/// Begins a section, a part of a test that shares the code in front of it; its block follows.
///
/// The test is run from its beginning once for each innermost section, with everything made anew,
/// also the object of its fixture: each time it runs one more of them and passes the others by.
/// Sections may stand in each other, in loops, in functions that the test calls and in rows of
/// subTest(). A section is a sub-test with an outcome of its own: when it fails, the others run
/// nevertheless, and the run fails, but not what is around the section.
///
/// The name is any text; it may be made as the test runs, and the same in each pass. Throws
/// zel::CError on a thread that runs no test.
#define QIX_SECTION(name)                                                                          \
    if (::qix::detail::CSectionVisit const QIX_DETAIL_JOIN(qixSection,                             \
                                                           __COUNTER__){name, __FILE__, __LINE__})

/// \def QIX_TEST(group, name, attributes...)
/// Defines a test and registers it; its body follows in braces.
///
/// \p group is the dotted path of its group, \p name an identifier or any text in quotes. The
/// attributes are at most one of each kind, in any order: Short (which a test is without any),
/// Long, VeryLong, Hours or None; Interactive; `Disabled("why")`; ShouldFail; `Tags("net",
/// "slow")`. Tests are run in the order in which they stand in the file. The body can call log()
/// and subTest() as they stand.
///
/// Two tests of one name in a group, and a name for a group that is empty or contains a "%", are
/// invalid: nothing is run, and the message says where they are.
#define QIX_TEST(group, name, ...)                                                                 \
    QIX_DETAIL_TEST(QIX_DETAIL_JOIN(QixTest_, __COUNTER__), #group, #name,                         \
                    QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))

/// \def QIX_TEST_F(Fixture, group, name, attributes...)
/// Defines a test as QIX_TEST does, in a class derived from \p Fixture, which is a class derived
/// from qix::CTestItem that can be constructed without arguments. Each run of the test gets an
/// object of its own, which is released behind it; the hooks of the fixture are called around the
/// body. What the constructor and the destructor check, log or throw belongs to the test.
#define QIX_TEST_F(Fixture, group, name, ...)                                                      \
    QIX_DETAIL_TEST_F(QIX_DETAIL_JOIN(QixTest_, __COUNTER__), Fixture, #group, #name,              \
                      QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))

/// \def QIX_TEST_TYPED(group, name, types, attributes...)
/// Defines one test for each of the types, which stand in parentheses: `(int, std::string)`. The
/// body sees the type as TypeParam. The tests are called after the types: `name[int]`.
#define QIX_TEST_TYPED(group, name, types, ...)                                                    \
    QIX_DETAIL_TEST_TYPED(QIX_DETAIL_JOIN(QixTest_, __COUNTER__), #group, #name, types,            \
                          QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))

/// \def QIX_TEST_TYPED_F(Fixture, group, name, types, attributes...)
/// Defines one test for each of the types as QIX_TEST_TYPED does. \p Fixture is the name of a class
/// template, whose class for the type is the fixture of the test. As in every such class, what the
/// fixture has is named by `this->`.
#define QIX_TEST_TYPED_F(Fixture, group, name, types, ...)                                         \
    QIX_DETAIL_TEST_TYPED_F(QIX_DETAIL_JOIN(QixTest_, __COUNTER__), Fixture, #group, #name, types, \
                            QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))

/// \def QIX_TEST_EACH(group, name, values, attributes...)
/// Defines one test for each value of a range, which the body sees as \p param.
///
/// The range is an expression: a variable, qix::values(1, 2, 3), qix::combine(range, range) of
/// qix/combine.h, or the call of a function. It is evaluated once, when the group is first asked
/// for its tests; what it throws fails a test of that name. The values live as long as the program.
/// A test is called after its value, `name[3]`, where that is written as text of at most 60 bytes,
/// and otherwise by its number from 1, `name[#3]`; then its failures show the value.
#define QIX_TEST_EACH(group, name, values, ...)                                                    \
    QIX_DETAIL_TEST_EACH(QIX_DETAIL_JOIN(QixTest_, __COUNTER__), #group, #name, values,            \
                         QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))

/// \def QIX_TEST_EACH_F(Fixture, group, name, values, attributes...)
/// Defines one test for each value as QIX_TEST_EACH does, with a fixture as QIX_TEST_F does.
#define QIX_TEST_EACH_F(Fixture, group, name, values, ...)                                         \
    QIX_DETAIL_TEST_EACH_F(QIX_DETAIL_JOIN(QixTest_, __COUNTER__), Fixture, #group, #name, values, \
                           QIX_DETAIL_ATTRIBUTES(, ##__VA_ARGS__))
