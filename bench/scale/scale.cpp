// Shows how long it takes to register, expand and run many tests in one group, for growing
// numbers of them: the time for each test should stay the same.

#include <qix/qix.h>
#include <zel/CBase.h>
#include <zel/P.h>
#include <zel/String.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace
{

class CEmptyTest : public zel::CBase, public virtual qix::ITestItem
{
public:
    std::string getName() const override { return "a test that does nothing"; }
    Duration getDuration() const override { return Short; }
    bool isInteractive() const override { return false; }
    bool containsAnyInteractive() const override { return false; }
    void run(qix::ITestRunner*) override {}
    void getSubItems(std::vector<zel::P<ITestItem>>& out) override { out.clear(); }
    void log(zel::String const& line) override { m_log.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_log; }

private:
    std::vector<zel::String> m_log;
};

class CEmptyTestFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    zel::P<qix::ITestItem> createTestItem() override { return zel::newObj<CEmptyTest>(); }
};

/// A fresh current folder, for the log; it is removed in the end.
class CTemporaryFolder
{
public:
    CTemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "scale.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
        {
            throw std::runtime_error("Unable to create a temporary folder.");
        }
        m_folder = name;
        std::filesystem::current_path(m_folder);
    }

    ~CTemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    CTemporaryFolder(CTemporaryFolder const&) = delete;
    CTemporaryFolder& operator=(CTemporaryFolder const&) = delete;

private:
    std::filesystem::path m_folder;
};

/// Where the results go, while the progress of the tests goes nowhere.
std::FILE* takeStandardOutput()
{
    std::FILE* const results = fdopen(dup(STDOUT_FILENO), "w");
    if (results == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
    {
        throw std::runtime_error("Unable to redirect standard output.");
    }
    return results;
}

template <typename Work>
double millisecondsOf(Work const& work)
{
    auto const begin = std::chrono::steady_clock::now();
    work();
    std::chrono::duration<double, std::milli> const elapsed =
        std::chrono::steady_clock::now() - begin;
    return elapsed.count();
}

void addFactories(qix::CTestItemGroup& group, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        group.addFactory(zel::newObj<CEmptyTestFactory>());
    }
}

void measure(std::FILE* results, std::size_t count)
{
    auto const root = zel::newObj<qix::CTestItemGroup>("");
    auto const group = zel::newObj<qix::CTestItemGroup>("group");
    root->addSubItem(group);
    double const add = millisecondsOf([&] { addFactories(*group, count); });

    zel::P<qix::CConsoleTestRunner> runner;
    double const start =
        millisecondsOf([&] { runner = zel::newObj<qix::CConsoleTestRunner>(root.get()); });

    std::vector<zel::P<qix::ITestItem>> items;
    double const expand = millisecondsOf([&] { group->getSubItems(items); });

    runner->toggleAll();
    double const run = millisecondsOf([&] { runner->go(); });

    double const each = (add + start + expand + run) * 1e6 / static_cast<double>(count);
    std::fprintf(results, "%10zu %10.1f %10.1f %10.1f %10.1f %15.0f\n", count, add, start, expand,
                 run, each);
    std::fflush(results);
}

} // namespace

int main()
{
    CTemporaryFolder const folder;
    std::FILE* const results = takeStandardOutput();
    std::fprintf(results, "%10s %10s %10s %10s %10s %15s\n", "factories", "add ms", "start ms",
                 "expand ms", "run ms", "ns for each");
    for (std::size_t const count : {10'000, 100'000, 1'000'000})
    {
        measure(results, count);
    }
    std::fclose(results);
    return EXIT_SUCCESS;
}
