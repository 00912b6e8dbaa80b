// A test is destroyed with the root group, when the process ends. Its destructor may use what tests
// use: whoever asks for a process-wide object that has gone waits for ever.

#include <qix/CTestFolder.h>
#include <qix/CTestItemGroup.h>
#include <qix/CTestSkippedException.h>
#include <qix/secret.h>
#include <qix/util.h>
#include <zel/CError.h>
#include <zel/TPathImpl.h>

#include "CChildProcess.h"
#include "CFunctionTestItem.h"
#include "CTempWorkDirectory.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace
{

constexpr unsigned patience = 30; // seconds

template <typename Exception, typename Work>
void ignoring(Work const& work)
{
    try
    {
        work();
    }
    catch (Exception const&)
    {
    }
}

void useWhatTestsUse()
{
    {
        qix::CTestFolder const folder("folder");
        zel::CPath const joined = folder.getPath() << "file";
        std::ofstream(joined.getText().toCPSafe()) << "text";
    }
    ignoring<qix::CTestSkippedException>(&qix::throwSkippedExceptionIfAdmin);
    ignoring<zel::CError>([] { qix::getTestSecret("section", "key"); });
}

class CLateTest : public test::CFunctionTestItem
{
public:
    CLateTest() : CFunctionTestItem("late") {}

    ~CLateTest() override
    {
        useWhatTestsUse();
        std::ofstream("destroyed") << "completely";
    }
};

int endWithATest()
{
    alarm(patience);
    qix::CTestItemGroup::global()->addSubItem(zel::newObj<CLateTest>());
    useWhatTestsUse();
    std::exit(0);
}

} // namespace

int main()
{
    test::CTempWorkDirectory const work;
    test::CChildProcess child(&endWithATest);
    int const status = child.waitForExit();
    bool const isDestroyed = std::filesystem::exists("destroyed");
    std::printf("exit status %d, the test %s\n", status, isDestroyed ? "is destroyed" : "is not");
    return status == 0 && isDestroyed ? 0 : 1;
}
