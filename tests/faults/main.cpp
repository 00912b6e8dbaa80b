/// Test suites with a fault each: faults SCENARIO [SELECTION...]

#include "memory.h"

#include <CFunctionTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/main.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <list>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace faults
{

namespace
{

constexpr std::size_t megabyte = 1024 * 1024;

zel::P<qix::CTestItemGroup> makeGroup(std::string const& name)
{
    return zel::newObj<qix::CTestItemGroup>(name);
}

void addToRoot(zel::P<qix::ITestItem> const& item)
{
    qix::CTestItemGroup::global()->addSubItem(item);
}

using Body = std::function<void(qix::ITestItem& test)>;

zel::P<qix::ITestItem> makeItem(std::string const& name, Body const& body)
{
    return zel::newObj<test::CFunctionTestItem>(
        name, [body](qix::ITestItem& item, qix::ITestRunner&) { body(item); });
}

/// A test that passes and records a line.
zel::P<qix::ITestItem> makeGoodItem(std::string const& name)
{
    return makeItem(name, [name](qix::ITestItem& item) { item.log("output of " + name); });
}

void addGood(std::string const& name)
{
    addToRoot(makeGoodItem(name));
}

zel::P<qix::ITestItemFactory> makeThrowingFactory()
{
    return zel::newObj<test::CFunctionFactory>(
        []() -> zel::P<qix::ITestItem> { throw std::runtime_error("the factory is broken"); });
}

class CNamelessItem : public test::CFunctionTestItem
{
public:
    CNamelessItem() : CFunctionTestItem("") {}
    std::string getName() const override { throw std::runtime_error("the name is unknown"); }
};

class CChildlessItem : public test::CFunctionTestItem
{
public:
    CChildlessItem() : CFunctionTestItem("childless") {}
    void getSubItems(std::vector<zel::P<qix::ITestItem>>&) override
    {
        throw std::runtime_error("the children are unknown");
    }
};

/// A group with the items "before", the given one, and "after"; behind the group a test "last".
void addBetween(zel::P<qix::ITestItem> const& item)
{
    auto const group = makeGroup("suite");
    group->addSubItem(makeGoodItem("before"));
    group->addSubItem(item);
    group->addSubItem(makeGoodItem("after"));
    addToRoot(group);
    addGood("last");
}

void addBetween(std::function<void()> const& fault)
{
    addBetween(makeItem("fault",
                        [fault](qix::ITestItem& test)
                        {
                            test.log("output of fault");
                            fault();
                        }));
}

[[noreturn]] void fail()
{
    throw std::runtime_error("a reason");
}

/// A passing test, a failing one and another passing one.
void addPlain()
{
    addBetween(&fail);
}

void addPassing()
{
    addBetween([] {});
}

/// Writes a log of four times 32 kilobytes.
void addTalkative()
{
    for (std::string const name : {"first", "second", "third", "fourth"})
    {
        addToRoot(makeItem(name, [name](qix::ITestItem& test)
                           { test.log(name + " " + std::string(32 * 1024, '*')); }));
    }
}

void closeAllDescriptors()
{
    for (int descriptor = static_cast<int>(sysconf(_SC_OPEN_MAX)); descriptor >= 0; --descriptor)
    {
        close(descriptor);
    }
}

/// Takes memory until there is none, as a test with a leak does.
void exhaustMemory()
{
    constexpr std::size_t available = 1000;
    memory::failCalls(available, memory::unlimited);
    std::list<std::string> everything;
    try
    {
        for (;;)
        {
            everything.emplace_back(100, 'x');
        }
    }
    catch (std::bad_alloc const&)
    {
        memory::failNothing();
        throw;
    }
}

void addThrowingFactory()
{
    addGood("before");
    qix::CTestItemGroup::global()->addFactory(makeThrowingFactory());
    addGood("after");
}

void addGroupWithThrowingFactory()
{
    auto const group = makeGroup("broken");
    group->addFactory(makeThrowingFactory());
    addBetween(group);
}

void throwForeignException()
{
    throw 42;
}

void forkAndReturn()
{
    pid_t const child = fork();
    if (child > 0)
    {
        int status = 0;
        waitpid(child, &status, 0);
        throw std::runtime_error("the child has ended with status " +
                                 std::to_string(WEXITSTATUS(status)));
    }
}

void forkAndExit()
{
    pid_t const child = fork();
    if (child == 0)
    {
        std::exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    throw std::runtime_error("the child has ended with status " +
                             std::to_string(WEXITSTATUS(status)));
}

void addDeepNesting()
{
    constexpr int levels = 10000;
    zel::P<qix::ITestItem> item = makeItem("bottom", [](qix::ITestItem&) { fail(); });
    for (int level = 0; level < levels; ++level)
    {
        auto const group = makeGroup("g");
        group->addSubItem(item);
        item = group;
    }
    addToRoot(item);
    addGood("last");
}

void addLongTexts()
{
    std::string const name(megabyte, 'n');
    std::string const message(megabyte, 'm');
    auto const group = makeGroup(std::string(megabyte, 'g'));
    group->addSubItem(makeItem(name,
                               [message](qix::ITestItem& test)
                               {
                                   test.log(std::string(megabyte, 'l'));
                                   throw std::runtime_error(message);
                               }));
    addToRoot(group);
    addGood("last");
}

void addManyFailures()
{
    constexpr int failures = 10000;
    auto const group = makeGroup("many");
    for (int i = 0; i < failures; ++i)
    {
        group->addSubItem(makeItem("test" + std::to_string(i), [](qix::ITestItem&) { fail(); }));
    }
    addToRoot(group);
    addGood("last");
}

/// The suite for runs in which each single allocation fails: tests that pass, one that fails, and
/// one that is made when it is needed.
void addSmall()
{
    addPlain();
    auto const group = makeGroup("made");
    group->addFactory(zel::newObj<test::CFunctionFactory>([] { return makeGoodItem("late"); }));
    addToRoot(group);
}

std::map<std::string, std::function<void()>> const scenarios = {
    {"plain", &addPlain},
    {"passing", &addPassing},
    {"talkative", &addTalkative},
    {"closesAll", [] { addBetween(&closeAllDescriptors); }},
    {"changesDirectory",
     [] { addBetween([] { static_cast<void>(chdir("/") == 0 || (fail(), true)); }); }},
    {"exhaustsMemory", [] { addBetween(&exhaustMemory); }},
    {"small", &addSmall},
    {"factoryThrows", &addThrowingFactory},
    {"nestedFactoryThrows", &addGroupWithThrowingFactory},
    {"nameThrows", [] { addBetween(zel::newObj<CNamelessItem>()); }},
    {"childrenThrow", [] { addBetween(zel::newObj<CChildlessItem>()); }},
    {"foreignException", [] { addBetween(&throwForeignException); }},
    {"exit", [] { addBetween([] { std::exit(0); }); }},
    {"immediateExit", [] { addBetween([] { _exit(0); }); }},
    {"abort", [] { addBetween([] { std::abort(); }); }},
    {"segmentationFault", [] { addBetween([] { std::raise(SIGSEGV); }); }},
    {"kill", [] { addBetween([] { std::raise(SIGKILL); }); }},
    {"raisesBrokenPipe", [] { addBetween([] { std::raise(SIGPIPE); }); }},
    {"forkReturns", [] { addBetween(&forkAndReturn); }},
    {"forkExits", [] { addBetween(&forkAndExit); }},
    {"deepNesting", &addDeepNesting},
    {"longTexts", &addLongTexts},
    {"manyFailures", &addManyFailures},
};

/// Lets the calls of operator new fail that the environment names: "FIRST" or "FIRST COUNT".
void failAllocationsOfEnvironment()
{
    if (char const* const text = std::getenv("FAULTS_FAIL_AT"))
    {
        char* rest = nullptr;
        std::size_t const first = std::strtoul(text, &rest, 10);
        std::size_t const count = std::strtoul(rest, nullptr, 10);
        memory::failCalls(first, count == 0 ? memory::unlimited : count);
    }
}

void tellCalls()
{
    std::size_t const calls = memory::calls();
    memory::failNothing();
    if (std::getenv("FAULTS_FAIL_AT") != nullptr)
    {
        std::fprintf(stderr, "calls of operator new: %zu\n", calls);
    }
}

} // namespace

int runScenario(int argc, char** argv)
{
    auto const scenario = scenarios.find(argc < 2 ? "" : argv[1]);
    if (scenario == scenarios.end())
    {
        std::fprintf(stderr, "usage: %s SCENARIO [SELECTION...]\n", argv[0]);
        return 64;
    }
    scenario->second();
    argv[1] = argv[0];
    failAllocationsOfEnvironment();
    int const status = qix::runMain(argc - 1, argv + 1);
    tellCalls();
    return status;
}

} // namespace faults

int main(int argc, char** argv)
{
    return faults::runScenario(argc, argv);
}
