// Tests without macros: a test is a class, a group is an object, and what the executable runs is
// what it puts into the root group.

#include <qix/CTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/main.h>
#include <qix/test.h>

#include <string>

namespace
{

/// Whether words with a number of letters can be turned around.
class CReversalTest : public qix::CTestItem
{
public:
    explicit CReversalTest(std::size_t length)
        : qix::CTestItem("reverses" + std::to_string(length)), m_length(length)
    {
    }

protected:
    void body() override
    {
        std::string const word(m_length, 'x');
        std::string const reversed(word.rbegin(), word.rend());
        // The checks need no macro around them; any std::exception would fail the test, too.
        QIX_CHECK(reversed == word);
        log("turned around: " + reversed);
    }

private:
    std::size_t m_length;
};

} // namespace

int main(int argc, char** argv)
{
    auto const group = zel::newObj<qix::CTestItemGroup>("reversal");
    for (std::size_t length = 0; length < 3; ++length)
    {
        group->addSubItem(zel::newObj<CReversalTest>(length));
    }
    qix::CTestItemGroup::global()->addSubItem(group);
    return qix::runMain(argc, argv);
}
