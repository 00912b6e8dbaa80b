// Tests whose outcomes are always the same, whatever has run before in the same process.
#include <qix/main.h>
#include <qix/qix.h>
#include <qix/test.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

std::vector<int> const numbers = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

} // namespace

QIX_TEST(plain, passes)
{
    std::puts("printed");
    qix::log("recorded");
}

QIX_TEST(plain, fails)
{
    QIX_CHECK(3 + 4 == 8);
}

QIX_TEST_EACH(each, number, numbers)
{
    int const number = param;
    std::printf("%d\n", number);
    if (number % 7 == 0)
    {
        QIX_SKIP("sevens");
    }
    QIX_CHECK(number % 5 != 3);
}

QIX_TEST(rows, some)
{
    for (int const number : numbers)
    {
        qix::subTest(std::to_string(number), [number] { QIX_CHECK(number != 11); });
    }
}

QIX_TEST(rows, none)
{
}

QIX_TEST(later, fails)
{
    QIX_FAIL("as ever");
}

QIX_TEST(later, passes)
{
}

int main(int argc, char** argv)
{
    return qix::runMain(argc, argv);
}
