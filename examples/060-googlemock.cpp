// GoogleMock and GoogleTest in the body of a test. Told to throw on failure, they fail the test as
// any std::exception does.
//
// What a mock itself finds wrong, it reports where nothing can be thrown without ending the
// process, in its destructor say: the next example shows how such failures are told. It also shows
// what GTEST_SKIP and death tests need, which do not do what they say here.

#include <qix/main.h>
#include <qix/test.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace
{

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

/// Writes to everybody who owes money.
void remind(IMailer& mailer, int debt)
{
    if (debt > 0)
    {
        mailer.send("debtor@example.org", "You owe " + std::to_string(debt));
    }
}

} // namespace

using testing::DoAll;
using testing::HasSubstr;
using testing::Return;
using testing::SaveArg;

QIX_TEST(reminder, writesToDebtors)
{
    CMockMailer mailer;
    EXPECT_CALL(mailer, send("debtor@example.org", HasSubstr("100"))).WillOnce(Return(true));
    remind(mailer, 100);
}

// Wrong on purpose: the mock has kept a text that the assertion refuses.
QIX_TEST(reminder, failsByAnAssertion)
{
    testing::NiceMock<CMockMailer> mailer;
    std::string sent;
    ON_CALL(mailer, send).WillByDefault(DoAll(SaveArg<1>(&sent), Return(true)));
    remind(mailer, 8);
    EXPECT_THAT(sent, HasSubstr("7"));
}

int main(int argc, char** argv)
{
    GTEST_FLAG_SET(throw_on_failure, true);
    testing::InitGoogleMock(&argc, argv);
    return qix::runMain(argc, argv);
}
