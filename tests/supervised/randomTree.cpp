// A random tree of tests, made of the seed in the environment variable SUPERVISED_SEED: the same in
// each process. Its tests do all that tests can do to a runner.
#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/CTestSkippedException.h>
#include <qix/CTestSkippedWithReasonException.h>
#include <qix/main.h>
#include <qix/test.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <CFakeClock.h>
#include <CFunctionTestItem.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace
{

using Item = zel::P<qix::ITestItem>;
using Items = std::vector<Item>;
using qix::ITestItem;
using qix::ITestRunner;
using test::CFunctionFactory;
using test::CFunctionTestItem;

/// Time passes as tests let it pass, whatever they take.
test::CFakeClock* g_clock = nullptr;

class CRandom
{
public:
    explicit CRandom(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        std::uint64_t z = m_state += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }

    std::uint64_t below(std::uint64_t limit) { return next() % limit; }
    bool oneIn(std::uint64_t chances) { return below(chances) == 0; }

    /// Any bytes but those with which a name becomes a format.
    std::string bytes(std::size_t most, bool isFormat = false)
    {
        std::string text;
        for (std::uint64_t left = below(most + 1); left > 0; --left)
        {
            char const byte =
                oneIn(3) ? static_cast<char>(below(256)) : static_cast<char>('a' + below(26));
            text += isFormat && (byte == '%' || byte == '\0') ? 'x' : byte;
        }
        return text;
    }

private:
    std::uint64_t m_state;
};

ITestItem::Duration randomDuration(CRandom& random)
{
    return random.oneIn(3) ? static_cast<ITestItem::Duration>(random.below(5)) : ITestItem::Short;
}

zel::String randomLine(CRandom& random)
{
    zel::String line(random.bytes(20));
    return random.oneIn(4) ? line + zel::String(L"\u20AC\u0416") : line;
}

class COwnError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void endSomehow(CRandom& random)
{
    switch (random.below(16))
    {
    case 0:
        throw std::runtime_error(random.bytes(20));
    case 1:
        throw COwnError(random.bytes(20));
    case 2:
        throw qix::CTestAbortedException(randomLine(random));
    case 3:
        throw qix::CTestSkippedException();
    case 4:
        throw qix::CTestSkippedWithReasonException(randomLine(random));
    case 5:
        throw qix::CTestFailedException(random.bytes(20));
    case 6:
        throw qix::CTestFailedException(
            {{"file.cpp", 3, "CHECK(a)", "with 1"}, {"", 0, "", "more"}});
    default:
        return;
    }
}

void printSomething(CRandom& random)
{
    std::string const text = random.bytes(30);
    switch (random.below(6))
    {
    case 0:
        std::fwrite(text.data(), 1, text.size(), stdout);
        break;
    case 1:
        std::cout << text;
        break;
    case 2:
        std::cerr << text;
        break;
    case 3:
        std::fflush(stdout);
        static_cast<void>(!write(STDOUT_FILENO, text.data(), text.size()));
        break;
    case 4:
        std::fputs(std::string(random.below(20000), 'o').c_str(), stdout);
        break;
    default:
        std::puts("a line");
        break;
    }
}

Item randomLeaf(CRandom& random);

void endSubTest(ITestRunner& runner, CRandom& random)
{
    switch (random.below(6))
    {
    case 0:
        return runner.endSubTest_Failed(COwnError(random.bytes(10)));
    case 1:
        return runner.endSubTest_Aborted();
    case 2:
        return runner.endSubTest_Skipped();
    default:
        return runner.endSubTest_Success();
    }
}

/// Does a few random things, and may leave sub-tests open.
void act(ITestItem& item, ITestRunner& runner, CRandom& random)
{
    int open = 0;
    for (std::uint64_t left = random.below(8); left > 0; --left)
    {
        switch (random.below(8))
        {
        case 0:
        case 1:
            printSomething(random);
            break;
        case 2:
            item.log(randomLine(random));
            break;
        case 3:
        case 4:
            open += runner.beginSubTest(random.bytes(8, true), randomDuration(random),
                                        random.oneIn(9), random.oneIn(2))
                        ? 1
                        : 0;
            break;
        case 5:
            if (open > 0)
            {
                endSubTest(runner, random);
                --open;
            }
            break;
        case 6:
            if (random.oneIn(3))
            {
                Item const inner = random.oneIn(4) ? Item() : randomLeaf(random);
                runner.runTestItem(inner.get());
            }
            break;
        default:
            g_clock->advance(static_cast<std::time_t>(random.below(30)));
            break;
        }
    }
    endSomehow(random);
}

/// A test as most are written, with checks and rows.
class CCheckingTest : public qix::CTestItem
{
public:
    CCheckingTest(std::string const& name, Duration duration, std::uint64_t seed)
        : CTestItem(name, duration), m_seed(seed)
    {
    }

protected:
    void body() override
    {
        CRandom random(m_seed);
        std::uint64_t const rows = random.below(4);
        for (std::uint64_t row = 0; row < rows; ++row)
        {
            subTest(random.bytes(5, true),
                    [this, &random]
                    {
                        log(random.bytes(10));
                        QIX_CHECK(random.below(4) != 0U);
                        endSomehow(random);
                    });
        }
        printSomething(random);
        QIX_CHECK(random.below(4) != 0U);
        endSomehow(random);
    }

    void tearDown() override
    {
        CRandom random(m_seed + 1);
        QIX_CHECK(!random.oneIn(8));
    }

private:
    std::uint64_t m_seed;
};

Item randomLeaf(CRandom& random)
{
    std::string const name = random.bytes(10, true);
    ITestItem::Duration const duration = randomDuration(random);
    std::uint64_t const seed = random.next();
    if (random.oneIn(2))
    {
        return zel::newObj<CCheckingTest>(name, duration, seed);
    }
    auto leaf = zel::newObj<CFunctionTestItem>(
        name,
        [seed](CFunctionTestItem& item, ITestRunner& runner)
        {
            CRandom own(seed);
            act(item, runner, own);
        },
        duration);
    leaf->m_interactive = random.oneIn(12);
    return leaf;
}

/// Its own way with its children: it does something between them, leaves some out, runs others
/// twice, and has more of them than it had.
class COwnGroup : public qix::CTestItemGroup
{
public:
    COwnGroup(std::string const& name, std::uint64_t seed) : CTestItemGroup(name), m_seed(seed) {}

    void run(ITestRunner* runner) override
    {
        CRandom random(m_seed);
        Items children;
        getSubItems(children);
        for (std::size_t i = children.size(); i > 0; --i)
        {
            for (std::uint64_t times = random.below(3); times > 0; --times)
            {
                runner->runTestItem(children[i - 1].get());
            }
            printSomething(random);
            if (random.oneIn(3))
            {
                log(zel::String("a line of the group"));
                addSubItem(randomLeaf(random));
            }
        }
        if (random.oneIn(3))
        {
            runFailingGroup(*runner);
        }
        CTestItemGroup::run(runner);
        endSomehow(random);
    }

private:
    static void runFailingGroup(ITestRunner& runner)
    {
        auto group = zel::newObj<CTestItemGroup>("cannot be made");
        group->addFactory(zel::newObj<CFunctionFactory>(
            []() -> Item { throw COwnError("this factory throws"); }));
        try
        {
            runner.runTestItem(group.get());
        }
        catch (COwnError const&)
        {
            std::puts("as expected");
        }
    }

    std::uint64_t m_seed;
};

void fill(qix::CTestItemGroup& group, CRandom& random, unsigned depth);

Item randomItem(CRandom& random, unsigned depth)
{
    if (depth == 0 || random.oneIn(2))
    {
        return randomLeaf(random);
    }
    std::string const name = random.bytes(6, true);
    std::uint64_t const seed = random.next();
    zel::P<qix::CTestItemGroup> const group = random.oneIn(3)
                                                  ? zel::newObj<COwnGroup>(name, seed)
                                                  : zel::newObj<qix::CTestItemGroup>(name);
    fill(*group, random, depth - 1);
    return group;
}

void fill(qix::CTestItemGroup& group, CRandom& random, unsigned depth)
{
    for (std::uint64_t left = random.below(6); left > 0; --left)
    {
        if (random.oneIn(10))
        {
            group.addFactory(zel::newObj<CFunctionFactory>([] { return Item(); }));
        }
        else
        {
            group.addSubItem(randomItem(random, depth));
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    test::CFakeClock clock;
    g_clock = &clock;
    char const* const seed = std::getenv("SUPERVISED_SEED");
    CRandom random(seed == nullptr ? 0 : std::strtoull(seed, nullptr, 10));
    do
    {
        auto const group = zel::newObj<qix::CTestItemGroup>(random.bytes(6, true));
        fill(*group, random, 3);
        qix::CTestItemGroup::global()->addSubItem(group);
        qix::CTestItemGroup::global()->addSubItem(randomLeaf(random));
    } while (!random.oneIn(4));
    return qix::runMain(argc, argv);
}
