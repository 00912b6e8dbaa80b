// Tests that are not run, that should fail, and that have tags; and an object that tests share.

#include <qix/test.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

QIX_TEST(server, answers, Disabled("waits for the new server"), Tags("net"))
{
    QIX_FAIL("never run");
}

// It tells when the known bug is gone: then it fails.
QIX_TEST(server, "does not add up", ShouldFail)
{
    QIX_CHECK(0.1 + 0.2 == 0.3);
}

namespace
{

/// Takes long to make, so that the tests of the group share it.
class CDatabase
{
public:
    std::string const& find(int /*number*/) const { return m_row; }

private:
    std::string m_row = "Smith";
};

} // namespace

// It is made before the first test of the group is run, and released behind the last one.
QIX_GROUP_FIXTURE(database, CDatabase);

QIX_TEST(database, findsRows)
{
    QIX_CHECK(qix::groupFixture<CDatabase>().find(1) == "Smith");
}

namespace
{

void complainAndLeave(std::string const& name)
{
    std::fprintf(stderr, "%s: no such file\n", name.c_str());
    std::exit(2);
}

} // namespace

// The statements are run in processes of their own. The last check is wrong on purpose.
QIX_TEST(process, "ends as it should")
{
    QIX_CHECK_EXITS(complainAndLeave("notes.txt"), 2, "no such file");
    QIX_CHECK_DIES(std::abort(), SIGABRT);
    QIX_CHECK_DIES(complainAndLeave("notes.txt"), SIGSEGV);
}

QIX_TEST(printer, prints)
{
    int const number = 7;
    QIX_SKIP("there is no printer ") << number;
}
