#pragma once

/// \file
/// What a test file includes: the macros by which tests are written.

#include <qix/CTestItem.h>
#include <qix/approx.h>
#include <qix/detail/check.h>
#include <qix/detail/macros.h>
#include <qix/detail/registration.h>
#include <qix/detail/subTest.h>

/// Checks that the expression is true: a comparison, whose two values a failure shows, or whatever
/// else converts to bool. It is evaluated once. A failure is noted, and the test goes on and fails
/// at its end.
///
/// Checks may stand in functions that a test calls, and on threads that it has started; what
/// fails there counts for the innermost sub-test that is running. A check that fails while no
/// test is running throws CTestFailedException. A passing check allocates nothing.
#define QIX_CHECK(...) QIX_DETAIL_CHECK(noteFailure, "QIX_CHECK(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that the expression is true, as QIX_CHECK does. A failure ends the test, or the
/// sub-test around it, by throwing CTestFailedException. On a thread of the test's own it is
/// thrown there: catch it at the end of the thread, the failure has been noted.
#define QIX_REQUIRE(...)                                                                           \
    QIX_DETAIL_CHECK(failRequirement, "QIX_REQUIRE(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws something. A failure is noted.
#define QIX_CHECK_THROWS(...)                                                                      \
    QIX_DETAIL_CHECK_THROWS(noteFailure, "QIX_CHECK_THROWS(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws something. A failure ends the test.
#define QIX_REQUIRE_THROWS(...)                                                                    \
    QIX_DETAIL_CHECK_THROWS(failRequirement, "QIX_REQUIRE_THROWS(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws an exception of the type that follows, or of one
/// derived from it. An expression with commas needs parentheses. A failure is noted.
#define QIX_CHECK_THROWS_AS(expression, ...)                                                       \
    QIX_DETAIL_CHECK_THROWS_AS(noteFailure,                                                        \
                               "QIX_CHECK_THROWS_AS(" #expression ", " #__VA_ARGS__ ")",           \
                               expression, __VA_ARGS__)

/// Checks the type of what is thrown, as QIX_CHECK_THROWS_AS does. A failure ends the test.
#define QIX_REQUIRE_THROWS_AS(expression, ...)                                                     \
    QIX_DETAIL_CHECK_THROWS_AS(failRequirement,                                                    \
                               "QIX_REQUIRE_THROWS_AS(" #expression ", " #__VA_ARGS__ ")",         \
                               expression, __VA_ARGS__)

/// Checks that evaluating the expression throws nothing. A failure is noted.
#define QIX_CHECK_NOTHROW(...)                                                                     \
    QIX_DETAIL_CHECK_NOTHROW(noteFailure, "QIX_CHECK_NOTHROW(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Checks that evaluating the expression throws nothing. A failure ends the test.
#define QIX_REQUIRE_NOTHROW(...)                                                                   \
    QIX_DETAIL_CHECK_NOTHROW(failRequirement, "QIX_REQUIRE_NOTHROW(" #__VA_ARGS__ ")", __VA_ARGS__)

/// Ends the test, which fails with the message.
#define QIX_FAIL(message) ::qix::detail::fail(__FILE__, __LINE__, message)

/// Ends the test, which does not apply here.
#define QIX_SKIP() ::qix::detail::skip()

/// Ends the test without a verdict. The message goes to the log file.
#define QIX_ABORT(message) ::qix::detail::abort(message)
