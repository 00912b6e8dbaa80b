#pragma once

#include <qix/export.h>
#include <zel/IBase.h>
#include <zel/P.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zel
{
class String;
}

namespace qix
{

class ITestRunner;

/// Something that can be run: a test, or a group of items.
///
/// Items belong to the thread that runs them; only addRef() and release() are safe on others.
class QIX_EXPORT ITestItem : public virtual zel::IBase
{
public:
    /// How long an item is expected to take, in whole seconds of wall-clock time. Other values
    /// are legal: such an item runs when it is not above the runner's limit, without a check.
    enum Duration : std::int32_t
    {
        None = 0,     ///< no expectation, for groups: no check and no progress character
        Short = 1,    ///< 0 to 20 seconds; the only tests that run unless more is asked for
        Long = 2,     ///< 5 to 180 seconds
        VeryLong = 3, ///< 60 to 10800 seconds
        Hours = 4     ///< 3600 seconds and more
    };

    /// The item's name: one component of the dotted path by which it is shown. May be empty.
    ///
    /// The header of an item with children is printed with the name as part of a printf format,
    /// so a "%" in the name of a group is taken as a conversion there: leave it out.
    virtual std::string getName() const = 0;

    /// How long the item is expected to take.
    virtual Duration getDuration() const = 0;

    /// True when the test needs a human at the console.
    virtual bool isInteractive() const = 0;

    /// True when the item or any item below it is interactive. A leaf returns isInteractive():
    /// otherwise it is filtered out when only interactive tests may run.
    virtual bool containsAnyInteractive() const = 0;

    /// Does the work. Returns for success; throws CTestAbortedException for a test without a
    /// verdict, CTestSkippedException for one that does not apply, and any other std::exception
    /// for a failure, whose reason is what(). Anything else that is thrown ends the whole run.
    ///
    /// A group hands each child to ITestRunner::runTestItem(). A test may report sub-tests with
    /// ITestRunner::beginSubTest() and the operations that end them.
    /// \param runner  the caller; valid during the call
    virtual void run(ITestRunner* runner) = 0;

    /// Replaces what is in \p out by the item's children. An item that has any is a group to the
    /// runner; a leaf leaves \p out empty.
    virtual void getSubItems(std::vector<zel::P<ITestItem>>& out) = 0;

    /// Records one line of the item's output.
    virtual void log(zel::String const& line) = 0;

    /// The recorded lines in their order. The runner copies them into the log file after the item
    /// has run. Valid while the item lives and nothing is recorded.
    virtual std::vector<zel::String> const& getLog() const = 0;
};

} // namespace qix
