#pragma once

#include <qix/ILocatedItem.h>
#include <qix/ITestItem.h>
#include <qix/detail/logLine.h>
#include <qix/detail/subTest.h>
#include <qix/export.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qix
{

namespace detail
{
class CTestMaker;
}

/// The base class of leaf tests. A test derives from it and overrides body(), and whichever of
/// the hooks around it that it needs.
///
/// run() calls clean(), setUp(), body(), tearDown() and clean(), in that order:
/// - When the first clean() throws, nothing else is called.
/// - body() is called only if setUp() returned; tearDown() whenever setUp() was called, so it
///   must cope with what is not set up; the last clean() always.
/// - Failed checks fail the test at its end. What is thrown later, in tearDown() say, is listed
///   below what went wrong first and hides nothing.
/// - A failure outweighs a skip and an abort, whichever came first; of those two the first counts.
/// - What is thrown and is no std::exception counts as a failure, too.
///
/// Everything but log() belongs to the thread that runs the test.
class QIX_EXPORT CTestItem : public zel::CBase,
                             public virtual ITestItem,
                             public virtual ILocatedItem
{
public:
    /// \param name         one component of the dotted path by which the test is shown
    /// \param duration     how long the test is expected to take
    /// \param interactive  whether the test needs a human at the console
    explicit CTestItem(std::string const& name, Duration duration = Short,
                       bool interactive = false);
    CTestItem(CTestItem const&) = delete;
    CTestItem& operator=(CTestItem const&) = delete;
    ~CTestItem() override;

    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return m_duration; }
    bool isInteractive() const override { return m_interactive; }

    /// The same as isInteractive().
    bool containsAnyInteractive() const override { return isInteractive(); }

    /// Forgets the lines of an earlier run and performs the test, as the class tells. Returns for
    /// success and throws otherwise: CTestFailedException when checks failed or several things
    /// went wrong, and what the test threw when that was all. Of a test with a location, that is
    /// nested in a CTestFailedException which tells the location and the type as well.
    void run(ITestRunner* runner) override;

    /// Leaves \p out empty.
    void getSubItems(std::vector<zel::P<ITestItem>>& out) override;

    /// Records one line, which goes to the log file after the test. Safe to call from any thread
    /// while the test runs.
    void log(zel::String const& line) override;

    /// Records one line of bytes: they are read as UTF-8 if that is what they are, and as
    /// ISO-8859-1 otherwise. A null pointer gives an empty line. Of what is no text, the line is
    /// what a failed check shows.
    template <typename T, typename = std::enable_if_t<!detail::isDecodedText<T>>>
    void log(T const& line)
    {
        logBytes(detail::lineOf(line));
    }

    std::vector<zel::String> const& getLog() const override { return m_logLines; }

    /// Where its macro stands. Not known of an object that was made by hand.
    SourceLocation getLocation() const noexcept override { return {m_file, m_line}; }

protected:
    /// For fixtures of QIX_TEST_F, whose tests get their names and attributes afterwards.
    CTestItem();

    /// Removes what an earlier test, or this one, may have left behind.
    virtual void clean();

    /// Prepares what the body needs.
    virtual void setUp();

    /// The test itself: returns for success, throws otherwise.
    virtual void body() = 0;

    /// Undoes what setUp() did.
    virtual void tearDown();

    /// Runs \p row, which takes no arguments, as a sub-test of its own; see qix::subTest().
    template <typename Row>
    static void subTest(std::string_view name, Row&& row, char const* file = __builtin_FILE(),
                        int line = __builtin_LINE())
    {
        detail::runSubTest(name, row, file, line);
    }

private:
    friend class detail::CTestMaker;

    void logBytes(std::string_view line);

    int m_line = 0; ///< in front, where it fills up what the reference count leaves
    char const* m_file = nullptr;
    std::string m_name;
    Duration m_duration = Short;
    bool m_interactive = false;
    bool m_isMadeForRun; ///< of a registered test, which gets what is logged
    std::vector<zel::String> m_logLines;
};

} // namespace qix
