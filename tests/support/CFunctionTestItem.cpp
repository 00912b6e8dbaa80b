#include "CFunctionTestItem.h"

namespace test
{

CFunctionTestItem::CFunctionTestItem(std::string name, Work work, Duration duration)
    : m_name(std::move(name)), m_work(std::move(work)), m_duration(duration)
{
}

CFunctionTestItem::~CFunctionTestItem() = default;

void CFunctionTestItem::run(qix::ITestRunner* runner)
{
    ++m_runs;
    if (m_work)
    {
        m_work(*this, *runner);
    }
}

CFunctionFactory::CFunctionFactory(Create create) : m_create(std::move(create))
{
}

CFunctionFactory::~CFunctionFactory() = default;

zel::P<qix::ITestItem> CFunctionFactory::createTestItem()
{
    ++m_calls;
    return m_create();
}

} // namespace test
