#include "registration/CSpecialTest.h"

#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedWithReasonException.h>

#include "model/outcomes.h"
#include "registration/CGroupRun.h"
#include "registration/CTestMaker.h"
#include "testing/CTestContext.h"
#include "text/decodedText.h"

#include <utility>

namespace qix::detail
{

CSpecialTest::CSpecialTest(RegisteredSpecial const& test, std::string const& name,
                           std::string about, Body const& body)
    : CTestItem(name, test.attributes.duration, test.attributes.interactive),
      m_test(test),
      m_about(std::move(about)),
      m_body(body)
{
}

std::vector<std::string> CSpecialTest::getTags() const
{
    std::vector<std::string> tags;
    for (char const* const tag : m_test.all.tags.texts)
    {
        if (tag != nullptr)
        {
            tags.emplace_back(tag);
        }
    }
    return tags;
}

void CSpecialTest::run(ITestRunner* runner)
{
    if (m_test.all.shouldFail)
    {
        runExpectingFailure(runner);
    }
    else
    {
        CTestItem::run(runner);
    }
}

void CSpecialTest::runExpectingFailure(ITestRunner* runner)
{
    m_hasFailedInside = false;
    std::string message;
    bool const hasReturned =
        catchOutcome([this, runner] { CTestItem::run(runner); },
                     [&message](TestOutcome::Kind kind, std::exception const& exception)
                     {
                         if (kind != TestOutcome::Failed)
                         {
                             throw;
                         }
                         message = makeOutcome(kind, &exception).message;
                     });
    if (hasReturned && !m_hasFailedInside)
    {
        throw CTestFailedException(
            {CheckFailure{m_test.file, m_test.line, "", "the test should fail, and has passed"}});
    }
    if (!hasReturned)
    {
        log(decodedText("Failed, as it should: " + message));
    }
}

void CSpecialTest::setUp()
{
    if (m_test.all.disabledFor != nullptr)
    {
        throw CTestSkippedWithReasonException(decodedText(m_test.all.disabledFor));
    }
    CGroupRun::prepareTest();
}

void CSpecialTest::body()
{
    CTestContext& run = *CTestContext::ofThisThread();
    run.tellAbout(m_about);
    if (m_test.all.shouldFail)
    {
        run.expectFailure(m_hasFailedInside);
    }
    if (m_body.call != nullptr)
    {
        m_body.call(m_body.param);
        return;
    }
    zel::P<CTestItem> object;
    run.perform(object,
                [&]
                {
                    object = zel::P<CTestItem>(m_body.make(m_body.param));
                    CTestMaker::callAs(*this, *object);
                });
}

} // namespace qix::detail
