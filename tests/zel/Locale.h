#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace test
{

/// Tests of conversions need the locale that the test run gives them through LC_ALL.
class LocaleTest : public testing::Test
{
protected:
    explicit LocaleTest(std::string const& name) : m_name(name) {}

    void SetUp() override
    {
        char const* const name = std::getenv("LC_ALL");
        if (name == nullptr || name != m_name)
        {
            GTEST_SKIP() << "needs LC_ALL=" << m_name << " from the start of the process";
        }
    }

private:
    std::string m_name;
};

class Utf8LocaleTest : public LocaleTest
{
protected:
    Utf8LocaleTest() : LocaleTest("C.UTF-8") {}
};

class CLocaleTest : public LocaleTest
{
protected:
    CLocaleTest() : LocaleTest("C") {}
};

} // namespace test
