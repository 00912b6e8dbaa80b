// GoogleMock and GoogleTest in the body of a test, by a listener that notes their failures as those
// of checks. Nothing is thrown for these, so that expectations that are never met are reported,
// too: by the destructor of the mock. GTEST_SKIP skips the test, and death tests run.

#include <qix/main.h>
#include <qix/test.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace
{

/// Notes each failure in the qix test that is running, and lets it end when it is skipped.
class CFailureListener : public testing::EmptyTestEventListener
{
public:
    void OnTestPartResult(testing::TestPartResult const& result) override
    {
        if (result.skipped())
        {
            // Some versions of GoogleTest end it with a line end.
            std::string const reason = result.message();
            QIX_SKIP(reason.substr(0, reason.find_last_not_of('\n') + 1));
        }
        if (result.failed())
        {
            qix::noteFailure(result.file_name(), result.line_number(), result.message());
        }
    }
};

class IMailer
{
public:
    virtual ~IMailer() = default;
    virtual bool send(std::string const& address, std::string const& text) = 0;
};

class CMockMailer : public IMailer
{
public:
    MOCK_METHOD(bool, send, (std::string const& address, std::string const& text), (override));
};

/// What main() passes to the test in which all others run, and gets back.
int argumentCount = 0;
char** arguments = nullptr;
int exitStatus = 2;

/// Writes to everybody who owes money.
void remind(IMailer& mailer, int debt)
{
    if (debt > 0)
    {
        mailer.send("debtor@example.org", "You owe " + std::to_string(debt));
    }
}

} // namespace

QIX_TEST(reminder, writesToDebtors)
{
    CMockMailer mailer;
    EXPECT_CALL(mailer, send("debtor@example.org", "You owe 100"));
    remind(mailer, 100);
}

// Wrong on purpose: nobody who owes nothing gets a letter.
QIX_TEST(reminder, failsByAnExpectationThatIsNotMet)
{
    CMockMailer mailer;
    EXPECT_CALL(mailer, send);
    remind(mailer, 0);
}

// Wrong on purpose.
QIX_TEST(reminder, failsByAssertions)
{
    EXPECT_EQ(2 + 2, 5);
    ASSERT_EQ(2 + 2, 6);
}

QIX_TEST(reminder, isSkipped)
{
    GTEST_SKIP() << "there is no mail server";
}

QIX_TEST(reminder, diesWithoutAMailer)
{
    EXPECT_DEATH(std::abort(), "");
}

// Death tests have to be inside of a test of GoogleTest's: this one is all of them.
TEST(all, run)
{
    exitStatus = qix::runMain(argumentCount, arguments);
}

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    argumentCount = argc;
    arguments = argv;
    // The listener takes the place of the one that prints.
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    listeners.Append(new CFailureListener);
    // What GoogleTest makes of it has been told already.
    [[maybe_unused]] int const ofGoogleTest = RUN_ALL_TESTS();
    return exitStatus;
}
