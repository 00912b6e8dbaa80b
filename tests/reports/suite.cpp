// A suite of many small tests, and some that fail in each way.
#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/log.h>
#include <qix/subTest.h>
#include <qix/test.h>

#include <zel/P.h>

#include <filesystem>
#include <string>

namespace
{

class CNumberedTest : public qix::CTestItem
{
public:
    explicit CNumberedTest(int number)
        : CTestItem("number " + std::to_string(number), qix::ITestItem::Short, false)
    {
    }

protected:
    void body() override {}
};

class CManyTests : public qix::CTestItemGroup
{
public:
    CManyTests() : CTestItemGroup("Many")
    {
        for (int number = 0; number < 3000; ++number)
        {
            addSubItem(zel::newObj<CNumberedTest>(number));
        }
    }
};

struct ManyTestsAdded
{
    ManyTestsAdded() { qix::CTestItemGroup::global()->addSubItem(zel::newObj<CManyTests>()); }
};

ManyTestsAdded const manyTestsAdded;

/// A run inside a test, in a folder of its own, since each run has a log.
bool runInside(zel::P<qix::ITestItem> const& item)
{
    auto const root = zel::newObj<qix::CTestItemGroup>("");
    root->addSubItem(item);
    std::filesystem::path const folder = std::filesystem::current_path();
    std::filesystem::create_directory("inside");
    std::filesystem::current_path("inside");
    qix::CConsoleTestRunner runner(root.get());
    runner.toggleAll();
    bool const passed = runner.go();
    std::filesystem::current_path(folder);
    return passed;
}

} // namespace

QIX_TEST(Results, passes)
{
    QIX_CHECK(1 == 1);
}

QIX_TEST(Results, fails)
{
    qix::log("a line of <output> ]]> ?>");
    QIX_CHECK(1 == 2);
    QIX_CHECK(2 == 3);
}

QIX_TEST(Results, talksALot)
{
    qix::log(std::string(200000, 'o') + "\xff\x01");
    QIX_FAIL(std::string(100000, 'm') + "\xff\x01\xEF\xBF\xBE ]]>");
}

QIX_TEST(Results, runsTestsItself)
{
    QIX_CHECK(runInside(zel::newObj<CNumberedTest>(-1)));
}

QIX_TEST(Results, isSkipped)
{
    QIX_SKIP("not on this machine");
}

QIX_TEST(Results, isAborted)
{
    QIX_ABORT("no verdict");
}

QIX_TEST(Results, hasRows)
{
    qix::subTest("first", [] { QIX_CHECK(true); });
    qix::subTest("second", [] { QIX_CHECK(false); });
}
