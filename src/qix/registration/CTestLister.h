#pragma once

#include <zel/P.h>

#include "registration/CSpecialTest.h"

#include <string>
#include <string_view>
#include <vector>

namespace qix::detail
{

/// Gathers the items of all tests of one macro.
class CTestLister : public CTestList
{
public:
    /// \param test  outlives the items
    explicit CTestLister(RegisteredSpecial const& test) : m_test(test) {}

    /// What the macro's range throws fails a test that stands for all of them, and a range without
    /// values leaves one that is skipped.
    std::vector<zel::P<ITestItem>> list();

    char const* getTypes() const noexcept override { return m_test.types; }
    void add(std::string_view name, std::string_view about, void (*body)(void const*),
             void const* param) override;
    void add(std::string_view name, std::string_view about, CTestItem* (*make)(void const*),
             void const* param) override;

private:
    void listOrThrow();
    void add(std::string_view name, std::string_view about, CSpecialTest::Body const& body);
    void addItem(std::string const& name, std::string_view about, CSpecialTest::Body const& body);

    RegisteredSpecial const& m_test;
    std::vector<zel::P<ITestItem>> m_items;
};

} // namespace qix::detail
