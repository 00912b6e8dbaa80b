/// What the parts of a test cost: nanoseconds, and calls of operator new.

#include "../../tests/support/allocations.h"

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>
#include <qix/test.h>

#include <benchmark/benchmark.h>

namespace
{

class CMeasuredTest : public qix::CTestItem
{
public:
    CMeasuredTest(benchmark::State& state, void (*step)(CMeasuredTest&))
        : CTestItem("measured"), m_state(state), m_step(step)
    {
    }

    using CTestItem::subTest;

protected:
    void body() override
    {
        std::size_t const before = test::countAllocations();
        for (auto _ : m_state)
        {
            m_step(*this);
        }
        m_state.counters["allocations"] =
            benchmark::Counter(static_cast<double>(test::countAllocations() - before),
                               benchmark::Counter::kAvgIterations);
    }

private:
    benchmark::State& m_state;
    void (*m_step)(CMeasuredTest&);
};

// Volatile, so that the compiler cannot work the checks out.
int volatile answer = 42;
int volatile wrongAnswer = 41;

/// Runs the step in a real test under the real runner.
void measure(benchmark::State& state, void (*step)(CMeasuredTest&))
{
    auto const root = zel::newObj<qix::CTestItemGroup>("");
    root->addSubItem(zel::newObj<CMeasuredTest>(state, step));
    qix::CConsoleTestRunner runner(root.get());
    runner.toggleAll();
    runner.go();
}

void passingCheck(benchmark::State& state)
{
    measure(state,
            [](CMeasuredTest&)
            {
                int const value = answer;
                QIX_CHECK(value == 42);
            });
}

void failingCheck(benchmark::State& state)
{
    measure(state,
            [](CMeasuredTest&)
            {
                int const value = wrongAnswer;
                QIX_CHECK(value == 42);
            });
}

void recordedLine(benchmark::State& state)
{
    measure(state, [](CMeasuredTest& test) { test.log("checked both accounts"); });
}

void subTest(benchmark::State& state)
{
    measure(state, [](CMeasuredTest& test) { test.subTest("row", [] {}); });
}

} // namespace

BENCHMARK(passingCheck);
// These keep what they report, so that their number is fixed.
BENCHMARK(failingCheck)->Iterations(20000);
BENCHMARK(recordedLine)->Iterations(100000);
BENCHMARK(subTest)->Iterations(100000);

BENCHMARK_MAIN();
