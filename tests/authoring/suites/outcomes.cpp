// How tests end, beside success.

#include <qix/test.h>

#include <stdexcept>

namespace
{

/// Logs what is called, and throws where it is told to.
class CHooks : public qix::CTestItem
{
protected:
    void clean() override { call("clean"); }
    void setUp() override { call("setUp"); }
    void tearDown() override { call("tearDown"); }

    void call(std::string const& hook)
    {
        log(hook);
        if (hook == throwing())
        {
            throw std::runtime_error("thrown by " + hook);
        }
    }

    virtual std::string throwing() const { return "nothing"; }
};

class CFailingClean : public CHooks
{
    std::string throwing() const override { return "clean"; }
};

class CFailingSetUp : public CHooks
{
    std::string throwing() const override { return "setUp"; }
};

class CFailingTearDown : public CHooks
{
    std::string throwing() const override { return "tearDown"; }
};

} // namespace

QIX_TEST_F(CHooks, hooks, succeeds)
{
    log("body");
}

QIX_TEST_F(CHooks, hooks, bodyThrows)
{
    throw std::runtime_error("thrown by the body");
}

QIX_TEST_F(CFailingClean, hooks, cleanThrows)
{
    log("body");
}

QIX_TEST_F(CFailingSetUp, hooks, setUpThrows)
{
    log("body");
}

QIX_TEST_F(CFailingTearDown, hooks, tearDownThrows)
{
    log("body");
}

QIX_TEST_F(CFailingTearDown, hooks, bodyAndTearDownThrow)
{
    throw std::logic_error("thrown by the body,\nin two lines");
}

QIX_TEST_F(CFailingTearDown, hooks, checkAndTearDownFail)
{
    QIX_CHECK(1 + 1 == 3);
}

QIX_TEST_F(CFailingTearDown, hooks, skippedAndTearDownThrows)
{
    QIX_SKIP();
}

QIX_TEST(ends, skipped)
{
    QIX_SKIP();
}

QIX_TEST(ends, aborted)
{
    QIX_ABORT("no server: caf\xc3\xa9");
}

QIX_TEST(ends, skippedAfterAFailure)
{
    QIX_CHECK(false);
    QIX_SKIP();
}

QIX_TEST(ends, abortedAfterAFailure)
{
    QIX_CHECK(false);
    QIX_ABORT("no server");
}

QIX_TEST(ends, throwsANumber)
{
    throw 7;
}

QIX_TEST(ends, logsBytes)
{
    log("UTF-8: caf\xc3\xa9");
    log("ISO-8859-1: caf\xe9");
    log(static_cast<char const*>(nullptr));
}

QIX_TEST(rows, endInEveryWay)
{
    subTest("succeeds", [] {});
    subTest("fails", [] { QIX_CHECK(1 == 2); });
    subTest("isSkipped", [] { QIX_SKIP(); });
    subTest("isAborted", [] { QIX_ABORT("no server"); });
    subTest("throws", [] { throw std::runtime_error("boom"); });
    subTest("throwsANumber", [] { throw 42; });
    subTest("hasRows",
            []
            {
                qix::subTest("fails", [] { QIX_REQUIRE(false); });
                qix::subTest("succeeds", [] {});
            });
    QIX_CHECK(2 == 3);
}

QIX_TEST(rows, failNobodyWhenSkipped)
{
    subTest("isSkipped", [] { QIX_SKIP(); });
}

QIX_TEST(rows, ofLongTestsHaveNoDuration, None)
{
    subTest("row", [] {});
}
