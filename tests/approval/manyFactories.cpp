// Runs a group of many tests that are made when they are needed, and tells what was done for them
// all in all. The number of tests is the only argument.
#include "suite.h"

#include <cstdio>
#include <cstdlib>

using namespace suite;

namespace
{

struct Counts
{
    unsigned long factoryCalls = 0;
    unsigned long factoryReferences = 0;
    unsigned long factoriesLeft = 0;
    unsigned long itemReferences = 0;
    unsigned long names = 0;
    unsigned long childQueries = 0;
    unsigned long runs = 0;
};

Counts counts;

class CCountingTest : public Self
{
public:
    CCountingTest() : Self("test", Work(), None) {}

    void addRef() const override
    {
        ++counts.itemReferences;
        Self::addRef();
    }

    std::string getName() const override
    {
        ++counts.names;
        return Self::getName();
    }

    void getSubItems(Items& out) override
    {
        ++counts.childQueries;
        Self::getSubItems(out);
    }

    void run(ITestRunner*) override { ++counts.runs; }
};

class CCountingFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    CCountingFactory() { ++counts.factoriesLeft; }
    ~CCountingFactory() override { --counts.factoriesLeft; }

    void addRef() const override
    {
        ++counts.factoryReferences;
        zel::CBase::addRef();
    }

    Item createTestItem() override
    {
        ++counts.factoryCalls;
        return zel::newObj<CCountingTest>();
    }
};

void printCounts()
{
    std::printf("calls of factories: %lu\n", counts.factoryCalls);
    std::printf("references taken to factories: %lu\n", counts.factoryReferences);
    std::printf("factories left: %lu\n", counts.factoriesLeft);
    std::printf("references taken to tests: %lu\n", counts.itemReferences);
    std::printf("questions for names: %lu\n", counts.names);
    std::printf("questions for children: %lu\n", counts.childQueries);
    std::printf("runs: %lu\n", counts.runs);
}

} // namespace

int main(int argc, char** argv)
{
    auto const many = group("many");
    for (unsigned long left = std::strtoul(argc > 1 ? argv[1] : "", nullptr, 10); left > 0; --left)
    {
        many->addFactory(zel::newObj<CCountingFactory>());
    }
    auto const root = group("", {many});
    qix::CConsoleTestRunner runner(root.get());
    runner.toggleAll();
    runner.go();
    printCounts();
    return EXIT_SUCCESS;
}
