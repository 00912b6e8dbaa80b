#include "registration/CTestLister.h"

#include <qix/CTestSkippedWithReasonException.h>

#include "registration/CTestMaker.h"
#include "text/forcedUnwind.h"
#include "text/shownName.h"

#include <exception>
#include <utility>

namespace qix::detail
{

namespace
{

/// Stands for tests whose values could not be made, and fails for the same reason.
class CBrokenTest : public CTestItem
{
public:
    CBrokenTest(RegisteredTest const& test, std::exception_ptr reason)
        : CTestItem(test.name, test.attributes.duration, test.attributes.interactive),
          m_reason(std::move(reason))
    {
    }

protected:
    void body() override { std::rethrow_exception(m_reason); }

private:
    std::exception_ptr m_reason;
};

void skipWithoutValues(void const* /*param*/)
{
    throw CTestSkippedWithReasonException("there is no value to run it for");
}

template <typename Function>
void callFunction(void const* function)
{
    (*static_cast<Function const*>(function))();
}

CTestItem* callMaker(void const* test)
{
    return static_cast<RegisteredSpecial const*>(test)->make();
}

} // namespace

CTestList::~CTestList() = default;

QIX_CATCHES_FORCED_UNWIND std::vector<zel::P<ITestItem>> CTestLister::list()
{
    try
    {
        listOrThrow();
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled, which nobody may stop.
        throw;
    }
    catch (...)
    {
        auto const item = zel::newObj<CBrokenTest>(m_test, std::current_exception());
        CTestMaker::locate(*item, m_test);
        m_items.assign(1, item);
    }
    return std::move(m_items);
}

void CTestLister::listOrThrow()
{
    if (m_test.body != nullptr)
    {
        addItem(m_test.name, "", {&callFunction<void (*)()>, nullptr, &m_test.body});
    }
    else if (m_test.make != nullptr)
    {
        addItem(m_test.name, "", {nullptr, &callMaker, &m_test});
    }
    else
    {
        m_test.list(*this);
        if (m_items.empty())
        {
            addItem(m_test.name, "", {&skipWithoutValues, nullptr, nullptr});
        }
    }
}

void CTestLister::add(std::string_view name, std::string_view about, void (*body)(void const*),
                      void const* param)
{
    add(name, about, CSpecialTest::Body{body, nullptr, param});
}

void CTestLister::add(std::string_view name, std::string_view about,
                      CTestItem* (*make)(void const*), void const* param)
{
    add(name, about, CSpecialTest::Body{nullptr, make, param});
}

void CTestLister::add(std::string_view name, std::string_view about, CSpecialTest::Body const& body)
{
    addItem(m_test.name + ("[" + shownName(name) + "]"), about, body);
}

void CTestLister::addItem(std::string const& name, std::string_view about,
                          CSpecialTest::Body const& body)
{
    auto const item = zel::newObj<CSpecialTest>(m_test, name, std::string(about), body);
    CTestMaker::locate(*item, m_test);
    m_items.emplace_back(item);
}

} // namespace qix::detail
