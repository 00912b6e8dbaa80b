// Tests for runs that something watches over: each group but the first one has a fault that a
// sanitizer, or valgrind, finds.
#include <qix/main.h>
#include <qix/test.h>

#include <climits>
#include <cstdio>
#include <memory>
#include <thread>

namespace
{

[[gnu::noinline]] int counted(int number)
{
    return number + 1; // counted
}

// NOLINTBEGIN: these are the faults.
[[gnu::noinline]] int readFreed()
{
    int* volatile freed = new int(1);
    delete freed;
    return *freed;
}

int volatile biggest = INT_MAX;
int* volatile lost = nullptr;
int raced = 0;
// NOLINTEND

} // namespace

#define GOOD(name)                                                                                 \
    QIX_TEST(good, name)                                                                           \
    {                                                                                              \
        QIX_CHECK(counted(1) == 2);                                                                \
    }

GOOD(a)
GOOD(b)
GOOD(c)
GOOD(d)
GOOD(e)
GOOD(f)
GOOD(g)
GOOD(h)

QIX_TEST(useAfterFree, test)
{
    std::printf("%d", readFreed());
}

QIX_TEST(leak, test)
{
    lost = new int(1);
    lost = nullptr;
}

QIX_TEST(overflow, test)
{
    std::printf("%d", biggest + 1);
}

QIX_TEST(race, test)
{
    std::thread other([] { ++raced; });
    ++raced;
    other.join();
}

QIX_TEST(uninitialised, test)
{
    std::unique_ptr<int> const number(new int);
    std::puts(*number == 1 ? "one" : "another");
}

int main(int argc, char** argv)
{
    return qix::runMain(argc, argv);
}
