// When the objects of fixtures are made and released, and what goes wrong then.

#include <qix/test.h>
#include <zel/String.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace
{

int alive = 0;

/// Logs each step of its life, by its own operation and by the function.
class CLogging : public qix::CTestItem
{
public:
    CLogging()
    {
        log("made, alive: " + std::to_string(++alive));
        qix::log("still being made");
    }
    ~CLogging() override
    {
        log("released, alive: " + std::to_string(--alive));
        qix::log("still being released");
    }

protected:
    void clean() override { log("clean"); }
    void setUp() override { qix::log("setUp of " + getName()); }
    void tearDown() override { log("tearDown"); }
};

/// Has a member that is a test, too.
class CNamed : public CLogging
{
protected:
    qix::CTestItem const& other() const noexcept { return m_other; }

private:
    class COther : public qix::CTestItem
    {
        void body() override {}
    };

    COther m_other;
};

class CFailingConstructor : public CLogging
{
public:
    CFailingConstructor() { QIX_CHECK(alive == 7); }
};

class CThrowingConstructor : public CLogging
{
public:
    CThrowingConstructor() { throw std::runtime_error("cannot be made"); }
};

class CSkippingConstructor : public CLogging
{
public:
    CSkippingConstructor() { QIX_SKIP("there is no printer"); }
};

class CAbortingConstructor : public CLogging
{
public:
    CAbortingConstructor() { QIX_ABORT("no server"); }
};

class CFailingDestructor : public CLogging
{
public:
    ~CFailingDestructor() override { QIX_CHECK(alive == 7); }
};

class CThread : public CLogging
{
public:
    ~CThread() override
    {
        std::thread([] { qix::log("from a thread"); }).join();
    }
};

/// Does something of its own around the steps.
class COwnRun : public CLogging
{
public:
    void run(qix::ITestRunner* runner) override
    {
        log("before the run");
        CLogging::run(runner);
        log("behind the run");
    }
};

class COwnFailingRun : public CLogging
{
public:
    void run(qix::ITestRunner* runner) override
    {
        CLogging::run(runner);
        throw std::runtime_error("thrown behind the run");
    }
};

} // namespace

QIX_TEST_F(CLogging, lives, first)
{
    log("body");
    QIX_CHECK(alive == 1);
    QIX_CHECK(getLog().size() == 3);
}

QIX_TEST_F(CLogging, lives, second)
{
    QIX_CHECK(alive == 1);
}

QIX_TEST(lives, none)
{
    QIX_CHECK(alive == 0);
}

QIX_TEST_F(CNamed, lives, withAnotherTestInside)
{
    QIX_CHECK(other().getLog().empty());
    QIX_CHECK(getName() == "withAnotherTestInside");
}

QIX_TEST_F(CThread, lives, untilItsThreadHasEnded)
{
}

QIX_TEST_F(COwnRun, runs, inItsOwnWay)
{
    QIX_CHECK(alive == 1);
}

QIX_TEST_F(COwnFailingRun, runs, andFails)
{
    QIX_CHECK(alive == 1);
}

QIX_TEST_F(CFailingConstructor, fails, whileMadeButGoesOn)
{
    log("body");
}

QIX_TEST_F(CThrowingConstructor, fails, whileMade)
{
    log("body");
}

QIX_TEST_F(CSkippingConstructor, fails, notWhenSkippedWhileMade)
{
    log("body");
}

QIX_TEST_F(CAbortingConstructor, fails, notWhenAbortedWhileMade)
{
    log("body");
}

QIX_TEST_F(CFailingDestructor, fails, whileReleased)
{
    QIX_CHECK(alive == 8);
}

QIX_TEST(fails, andLeavesNothing)
{
    QIX_CHECK(alive == 0);
}
