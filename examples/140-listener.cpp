// A listener of one's own: it lists what did not succeed as compilers do, for editors and scripts.

#include <qix/ITestListener.h>
#include <qix/test.h>
#include <zel/CBase.h>

#include <fstream>

namespace
{

class CProblemList : public zel::CBase, public virtual qix::ITestListener
{
public:
    void onRunBegin(qix::RunInfo const& /*run*/) override { m_file.open("problems.txt"); }

    void onTestEnd(qix::TestInfo const& test, qix::TestOutcome const& outcome) override
    {
        for (qix::CheckFailure const& failure : outcome.failures)
        {
            m_file << failure.file << ":" << failure.line << ": error: " << failure.check << " "
                   << failure.values << "\n";
        }
        if (!outcome.reason.empty() && test.location)
        {
            m_file << test.location->file << ":" << test.location->line
                   << ": note: " << test.names.back() << ": " << outcome.reason.toCPSafe() << "\n";
        }
    }

    void onRunEnd(qix::RunCounts const& /*counts*/) override { m_file.close(); }

private:
    std::ofstream m_file;
};

struct AddListener
{
    AddListener() { qix::addTestListener(zel::newObj<CProblemList>()); }
};

AddListener const addListener;

} // namespace

QIX_TEST(prices, addUp)
{
    QIX_CHECK(19 + 5 == 25);
}

QIX_TEST(prices, areConverted)
{
    QIX_ABORT("the exchange does not answer");
}

QIX_TEST(prices, arePrinted)
{
    QIX_SKIP("there is no printer");
}
