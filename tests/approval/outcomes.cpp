// Every way in which a test can end, at every depth.
#include "suite.h"

#include <zel/CError.h>

#include <stdexcept>
#include <typeinfo>

using namespace suite;

namespace
{

void fail(Self& self, ITestRunner&)
{
    throw std::runtime_error(self.getName() + " went wrong");
}

void abortTest(Self&, ITestRunner&)
{
    throw qix::CTestAbortedException("no verdict");
}

void skip(Self&, ITestRunner&)
{
    throw qix::CTestSkippedException();
}

/// An exception that says both: aborted goes first.
class CAbortedAndSkipped : public qix::CTestAbortedException, public qix::CTestSkippedException
{
public:
    CAbortedAndSkipped() : qix::CTestAbortedException("both") {}
    void addRef() const override { qix::CTestAbortedException::addRef(); }
    void release() const override { qix::CTestAbortedException::release(); }
    bool checkCastAllowed(std::type_info const&) const override { return true; }
    zel::P<zel::CError> clone() const override { return qix::CTestAbortedException::clone(); }
    [[noreturn]] void throwClone() const override { qix::CTestAbortedException::throwClone(); }
};

class CStillSkipped : public qix::CTestSkippedException
{
};

void throwClone(Self&, ITestRunner&)
{
    try
    {
        throw CStillSkipped();
    }
    catch (zel::CError const& e)
    {
        e.throwClone();
    }
}

/// A group that gives up behind its first child.
template <typename Exception>
class CGivesUp : public qix::CTestItemGroup
{
public:
    CGivesUp(std::string const& name, Exception const& reason)
        : qix::CTestItemGroup(name), m_reason(reason)
    {
        addSubItem(leaf("before"));
        addSubItem(leaf("never run"));
    }

    void run(ITestRunner* runner) override
    {
        log("giving up");
        runner->runTestItem(m_subItems[0].get());
        throw m_reason;
    }

private:
    Exception m_reason;
};

template <typename Exception>
Item givesUp(std::string const& name, Exception const& reason)
{
    return zel::newObj<CGivesUp<Exception>>(name, reason);
}

} // namespace

int main(int argc, char** argv)
{
    return run(
        argc, argv,
        {leaf("fails", fail), leaf("aborts", abortTest), leaf("skips", skip),
         leaf("error", [](Self&, ITestRunner&) { throw zel::CError("an error of zel"); }),
         leaf("both", [](Self&, ITestRunner&) { throw CAbortedAndSkipped(); }),
         leaf("cloned skip", throwClone), leaf("fails without duration", fail, ITestItem::None),
         leaf("skips without duration", skip, ITestItem::None), interactive("human fails", fail),
         group("a", {leaf("fails", fail), leaf("succeeds"),
                     group("b", {leaf("fails", fail), leaf("aborts", abortTest),
                                 group("c", {leaf("fails", fail), leaf("skips", skip)}),
                                 leaf("succeeds")}),
                     leaf("fails too", fail)}),
         group("", {group("", {leaf("nameless groups leave no dot", fail)})}),
         group("x", {group("", {leaf("", fail)})}),
         givesUp("skipped group", qix::CTestSkippedException()),
         givesUp("aborted group", qix::CTestAbortedException("stop")),
         givesUp("failed group", std::runtime_error("two\nlines of 100%"))});
}
