#include "registration/CTestMaker.h"

#include "guards/posix/CForkLock.h"
#include "text/forcedUnwind.h"

#include <cstddef>
#include <exception>
#include <memory_resource>
#include <mutex>
#include <utility>

namespace qix::detail
{

namespace
{

/// Arena for function tests, which are never freed. It is made while the library is loaded, before
/// any group can be, so it outlives them. Different groups may belong to different threads.
std::mutex arenaMutex;
CForkLock const arenaLockedWhileForking(arenaMutex);
std::pmr::monotonic_buffer_resource arena;

/// A test whose body is a function.
class CFunctionTest : public CTestItem
{
public:
    explicit CFunctionTest(RegisteredFunction const& test)
        : CTestItem(test.name, test.attributes.duration, test.attributes.interactive),
          m_body(test.body)
    {
    }

    static void* operator new(std::size_t size)
    {
        std::lock_guard<std::mutex> const lock(arenaMutex);
        return arena.allocate(size);
    }

    static void operator delete(void* /*test*/) noexcept {}

protected:
    void body() override { m_body(); }

private:
    void (*m_body)();
};

/// Stands for a test whose object could not be made, and fails for the same reason.
class CBrokenTest : public CTestItem
{
public:
    CBrokenTest(RegisteredFixture const& test, std::exception_ptr reason)
        : CTestItem(test.name, test.attributes.duration, test.attributes.interactive),
          m_reason(std::move(reason))
    {
    }

protected:
    void body() override { std::rethrow_exception(m_reason); }

private:
    std::exception_ptr m_reason;
};

} // namespace

zel::P<ITestItem> CTestMaker::make(RegisteredFunction const& test)
{
    auto item = zel::newObj<CFunctionTest>(test);
    locate(*item, test);
    return item;
}

QIX_CATCHES_FORCED_UNWIND zel::P<ITestItem> CTestMaker::make(RegisteredFixture const& test)
{
    try
    {
        return construct(test);
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled, which nobody may stop.
        throw;
    }
    catch (...)
    {
        auto item = zel::newObj<CBrokenTest>(test, std::current_exception());
        locate(*item, test);
        return item;
    }
}

zel::P<ITestItem> CTestMaker::construct(RegisteredFixture const& test)
{
    zel::P<CTestItem> const item(test.make());
    item->m_name = test.name;
    item->m_duration = test.attributes.duration;
    item->m_interactive = test.attributes.interactive;
    locate(*item, test);
    return item;
}

void CTestMaker::locate(CTestItem& item, RegisteredTest const& test) noexcept
{
    item.m_file = test.file;
    item.m_line = test.line;
}

} // namespace qix::detail
