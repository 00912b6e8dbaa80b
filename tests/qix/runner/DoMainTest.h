#pragma once

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>

#include "CChildProcess.h"
#include "CFakeAccounts.h"
#include "CFunctionTestItem.h"
#include "COutputCapture.h"
#include "CScopedEnvVar.h"
#include "CTempWorkDirectory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace test
{

constexpr int threwLogicError = 40;

/// Whole starts of a test executable, each in a child process that is user alice, or whom the
/// test makes of her.
class DoMain : public ::testing::Test
{
protected:
    using Arguments = std::vector<char const*>;

    /// \return the exit status: 0 when doMain returned true, 1 for false
    int doMain(Arguments const& arguments)
    {
        return inChild(
            [&arguments]
            {
                auto lines = arguments;
                return qix::CConsoleTestRunner::doMain(static_cast<int>(lines.size()),
                                                       lines.data());
            });
    }

    template <typename Main>
    int inChild(Main const& main)
    {
        CChildProcess child(
            [this, &main]
            {
                CFakeAccounts accounts(1234, m_userName);
                accounts.m_hasEntry = m_hasEntry;
                registerTests();
                try
                {
                    return main() ? 0 : 1;
                }
                catch (std::logic_error const& e)
                {
                    std::puts(e.what());
                    return threwLogicError;
                }
            });
        return child.waitForExit();
    }

    void registerTests() const
    {
        for (char const* const name : {"zero", "one", "two", "three"})
        {
            qix::CTestItemGroup::global()->addSubItem(zel::newObj<CFunctionTestItem>(name));
        }
        if (m_failing)
        {
            qix::CTestItemGroup::global()->addSubItem(
                zel::newObj<CFunctionTestItem>("failing", [](CFunctionTestItem&, qix::ITestRunner&)
                                               { throw std::runtime_error("boom"); }));
        }
    }

    /// What the child reads from its standard input.
    void type(std::string const& text)
    {
        std::ofstream("input") << text;
        redirectInput("input");
    }

    static void redirectInput(char const* path)
    {
        int const file = open(path, O_RDONLY | O_CLOEXEC);
        dup2(file, STDIN_FILENO);
        close(file);
    }

    ~DoMain() override
    {
        dup2(m_oldInput, STDIN_FILENO);
        close(m_oldInput);
    }

    std::string output() const { return m_output.getText(); }

    std::string m_userName = "alice";
    bool m_hasEntry = true;
    bool m_failing = false;
    CTempWorkDirectory m_folder;
    COutputCapture m_output;

private:
    int m_oldInput = dup(STDIN_FILENO);
    CScopedEnvVar m_workDirectory{"QIX_TESTWORKDIR", std::nullopt};
};

} // namespace test
