// Tests whose names, classes and outcomes CTest is to know. Each notes its name and its folder.
#include <qix/qix.h>
#include <qix/test.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace
{

/// One file for each process, since several run at a time.
void note(std::string const& name)
{
    char const* const folder = std::getenv("DISCOVERY_NOTES");
    if (folder == nullptr)
    {
        return;
    }
    std::string const work = std::filesystem::current_path().parent_path().filename();
    std::ofstream file(folder + ("/" + work), std::ios::binary | std::ios::app);
    file << name << '\0';
}

class CNotingTest : public qix::CTestItem
{
public:
    using CTestItem::CTestItem;

protected:
    void body() override { note(getName()); }
};

void addNames(qix::CTestItemGroup& group)
{
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte)
    {
        everyByte += static_cast<char>(byte);
    }
    for (std::string const& name : {std::string(";"),
                                    std::string("a;b"),
                                    std::string("["),
                                    std::string("]"),
                                    std::string("[["),
                                    std::string("]]"),
                                    std::string("]=]"),
                                    std::string("\\"),
                                    std::string("\\;"),
                                    std::string("\""),
                                    std::string("$"),
                                    std::string("${CMAKE_COMMAND}"),
                                    std::string("$<1:x>"),
                                    std::string("$ENV{HOME}"),
                                    std::string("@CMAKE_COMMAND@"),
                                    std::string(","),
                                    std::string("#"),
                                    std::string("twice"),
                                    std::string("twice"),
                                    std::string("twice#2"),
                                    std::string("two  words "),
                                    std::string("line\nend"),
                                    std::string("a.b"),
                                    std::string("%41"),
                                    std::string(),
                                    std::string("übergröße"),
                                    std::string("\xFF"),
                                    std::string(300, 'l'),
                                    everyByte})
    {
        group.addSubItem(zel::newObj<CNotingTest>(name));
    }
}

} // namespace

QIX_TEST(outcomes, passes)
{
    note("passes");
}

QIX_TEST(outcomes, fails)
{
    QIX_CHECK(std::getenv("DISCOVERY_REPAIRED") != nullptr);
}

QIX_TEST(outcomes, skips)
{
    throw qix::CTestSkippedException();
}

QIX_TEST(outcomes, aborts)
{
    throw qix::CTestAbortedException("no verdict");
}

QIX_TEST(outcomes.inner, takesLong, Long)
{
    note("takesLong");
}

QIX_TEST(classes, takesVeryLong, VeryLong)
{
}

QIX_TEST(classes, takesHours, Hours)
{
}

QIX_TEST(classes, takesWhatItTakes, None)
{
}

QIX_TEST(classes, asksAPerson, Interactive)
{
    note("asksAPerson");
}

QIX_TEST(person, isAsked, Interactive)
{
    note("isAsked");
}

int main(int argc, char** argv)
{
    auto const names = zel::newObj<qix::CTestItemGroup>("names; [of] ${all} kinds");
    addNames(*names);
    qix::CTestItemGroup::global()->addSubItem(names);
    qix::CTestItemGroup::global()->addSubItem(zel::newObj<CNotingTest>("alone"));
    return qix::runMain(argc, argv);
}
