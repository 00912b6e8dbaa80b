#pragma once

#include <qix/ITaggedItem.h>

#include "registration/RegisteredTest.h"

#include <string>
#include <vector>

namespace qix::detail
{

/// A test with rare attributes, or one of several that one macro defines.
class CSpecialTest : public CTestItem, public virtual ITaggedItem
{
public:
    /// Either a function or what makes an object, and what it is called with.
    struct Body
    {
        void (*call)(void const* param);
        CTestItem* (*make)(void const* param);
        void const* param;
    };

    /// \param test   outlives this
    /// \param about  what a failure tells beside the name; may be empty
    CSpecialTest(RegisteredSpecial const& test, std::string const& name, std::string about,
                 Body const& body);

    void run(ITestRunner* runner) override;
    std::vector<std::string> getTags() const override;

protected:
    void setUp() override;
    void body() override;

private:
    void runExpectingFailure(ITestRunner* runner);
    void throwUnexpectedPass() const;

    RegisteredSpecial const& m_test;
    std::string m_about;
    Body m_body;
    bool m_hasFailedInside = false; ///< a section or a row of a test that should fail
};

} // namespace qix::detail
