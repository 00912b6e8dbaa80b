#include "registration/CTestMaker.h"

#include "guards/posix/CForkLock.h"
#include "registration/CGroupRun.h"
#include "testing/CTestContext.h"
#include "testing/infos.h"

#include <array>
#include <cstddef>
#include <memory_resource>
#include <mutex>
#include <new>

namespace qix::detail
{

namespace
{

/// Different groups may belong to different threads.
std::mutex arenaMutex;
CForkLock const arenaLockedWhileForking(arenaMutex);

/// Arena for registered tests, which are never freed. Nor is the arena: a process that ends by
/// exit() in the middle of a run still has tests, and so has a static object that holds one.
std::pmr::memory_resource& arena()
{
    using Arena = std::pmr::monotonic_buffer_resource;
    alignas(Arena) static std::array<std::byte, sizeof(Arena)> storage;
    static auto* const instance = new (storage.data()) Arena;
    return *instance;
}

/// A test whose memory is the arena's.
class CArenaTest : public CTestItem
{
public:
    explicit CArenaTest(RegisteredTest const& test)
        : CTestItem(test.name, test.attributes.duration, test.attributes.interactive)
    {
    }

    static void* operator new(std::size_t size)
    {
        std::lock_guard<std::mutex> const lock(arenaMutex);
        return arena().allocate(size);
    }

    static void operator delete(void* /*test*/) noexcept {}

protected:
    void setUp() override { CGroupRun::prepareTest(); }
};

/// A test whose body is a function. It has no hooks of its own, so that there are fewer steps.
class CFunctionTest : public CArenaTest
{
public:
    explicit CFunctionTest(RegisteredFunction const& test) : CArenaTest(test), m_body(test.body) {}

    void run(ITestRunner* runner) override
    {
        CTestMaker::forgetLog(*this);
        CHiddenInfos const hidden;
        CTestContext run(*this, runner);
        run.runPasses(
            [&]
            {
                if (run.tryStep("setUp", [] { CGroupRun::prepareTest(); }))
                {
                    run.tryStep("the body", m_body);
                }
            });
        run.finish();
    }

protected:
    void body() override { m_body(); }

private:
    void (*m_body)();
};

/// A test whose object lives as long as its body runs.
class CFixtureTest : public CArenaTest
{
public:
    explicit CFixtureTest(RegisteredFixture const& test) : CArenaTest(test), m_make(test.make) {}

protected:
    void body() override
    {
        zel::P<CTestItem> object;
        CTestContext::ofThisThread()->perform(object,
                                              [&]
                                              {
                                                  object = zel::P<CTestItem>(m_make());
                                                  CTestMaker::callAs(*this, *object);
                                              });
    }

private:
    CTestItem* (*m_make)();
};

template <typename Item, typename Test>
zel::P<ITestItem> makeItem(Test const& test)
{
    auto item = zel::newObj<Item>(test);
    CTestMaker::locate(*item, test);
    return item;
}

} // namespace

zel::P<ITestItem> CTestMaker::make(RegisteredFunction const& test)
{
    return makeItem<CFunctionTest>(test);
}

zel::P<ITestItem> CTestMaker::make(RegisteredFixture const& test)
{
    return makeItem<CFixtureTest>(test);
}

void CTestMaker::locate(CTestItem& item, RegisteredTest const& test) noexcept
{
    item.m_file = test.file;
    item.m_line = test.line;
}

void CTestMaker::forgetLog(CTestItem& item) noexcept
{
    item.m_logLines.clear();
}

void CTestMaker::callAs(CTestItem const& test, CTestItem& object)
{
    object.m_file = test.m_file;
    object.m_line = test.m_line;
    object.m_name = test.m_name;
    object.m_duration = test.m_duration;
    object.m_interactive = test.m_interactive;
}

} // namespace qix::detail
