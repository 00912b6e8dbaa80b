#pragma once

#include <qix/ITestItem.h>
#include <qix/ITestRunner.h>
#include <qix/export.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <exception>
#include <list>
#include <string>
#include <vector>

namespace qix
{

/// Runs test items and reports on standard output and in the log file testLog.txt.
///
/// A runner offers the children of its root item for selection, numbered from 0, and runs those
/// that are selected, depth-first. Everything happens on the thread that calls it.
class QIX_EXPORT CConsoleTestRunner : public zel::CBase, public virtual ITestRunner
{
public:
    /// Takes the children of \p root; the root itself is not kept. Nothing is selected, and only
    /// short tests that need no human may run. Throws what the root's getSubItems() throws.
    explicit CConsoleTestRunner(ITestItem* root);
    CConsoleTestRunner(CConsoleTestRunner const&) = delete;
    CConsoleTestRunner& operator=(CConsoleTestRunner const&) = delete;
    ~CConsoleTestRunner() override;

    /// The whole job of a test executable: enters the working directory, takes the selection from
    /// the arguments or, without any, from the menu, and runs what is selected.
    ///
    /// The working directory is the folder that the environment variable QIX_TESTWORKDIR names
    /// ("testWork" when it is not set) and in it the folder named after the user. The process
    /// stays in it.
    /// \param argc  the number of selection lines; the program's name is not one of them
    /// \param argv  the selection lines
    /// \return true when the tests ran and none failed; false when the working directory could
    ///         not be entered, an argument was rejected, or a test failed
    /// Throws what the registered items throw outside their tests, std::out_of_range for a range
    /// such as 12ab-x, and std::logic_error for a null argument.
    static bool doMain(int argc, char const** argv);

    /// Runs the selected items once. A second call starts anew, with an empty log.
    /// \return true when no test failed; aborted and skipped ones do not count
    bool go();

    /// Runs one item: logs its name, asks the filters, calls its run(), and reports its outcome.
    /// A null item counts as a failed one.
    void runTestItem(ITestItem* item) override;

    bool beginSubTest(std::string const& name, ITestItem::Duration duration, bool isInteractive,
                      bool containsAnyInteractive) override;
    void endSubTest_Failed(std::exception const& e) override;
    void endSubTest_Aborted() override;
    void endSubTest_Skipped() override;
    void endSubTest_Success() override;

    /// The common end of all sub-tests: warns about an unexpected duration and forgets the
    /// sub-test that was begun last.
    void finalizeSubTest(bool success);

    /// Sets all counts to 0 and forgets the failures.
    void resetCounters();

    /// The names of the running sub-tests, the outermost first, joined by dots. Empty names in
    /// front leave no dot.
    std::string getTestBreadcrumbs() const;

    /// Opens testLog.txt in the current directory, empty. When that fails nothing is logged.
    /// Within runMain() it throws zel::CError where that refuses the file.
    void openLog();

    /// Closes the log if it is open.
    void closeLog();

    /// Writes \p s to the log as it stands, without a line end. It is on disk when this returns.
    void logNoIndent(std::string const& s);

    /// Writes \p s to the log behind the indentation of the running sub-tests.
    void logIndent(std::string const& s);

    /// Logs the result \p s of the sub-test that was begun last, if anything was begun inside it.
    void doTestGroupFinishLogging(std::string const& s);

    /// Logs the lines that the item has recorded, if any.
    void logItemOutput(ITestItem* item);

    /// Fills \p s up with blanks to at least \p width bytes, to align text in columns.
    static std::string pad(std::string s, int width);

    /// Shows the help text and the numbered items, and reads lines from standard input until one
    /// is accepted. At the end of the input it goes on with empty lines, which are rejected.
    void doMenu();

    /// Applies one selection line. What a rejected line selects stays selected; an invalid range
    /// toggles those of its items that exist.
    /// \return true when the line was accepted
    /// Throws std::out_of_range for a range such as 12ab-x.
    bool handleSelectionInput(std::string const& line);

    /// Selects the item \p index, or deselects it if it is selected. \p index is not checked.
    void toggleItem(int index);

    /// Toggles every item.
    void toggleAll();

    /// Lets longer tests run; a limit that is already higher stays.
    void enableTestsUpToDuration(ITestItem::Duration duration);

    /// Lets tests run that need a human.
    void enableInteractiveTests();

    /// Lets only those items run that contain a test that needs a human.
    void disableNonInteractiveTests();

    /// The indices of the items whose names, in lower case, contain every one of \p terms.
    std::vector<int> findItems(std::vector<std::string> const& terms) const;

protected:
    /// A sub-test that has been begun and not ended.
    struct RunningRecord
    {
        std::string name;             ///< its own, without those around it
        std::uint32_t startCount;     ///< m_beginCount before this sub-test
        ITestItem::Duration duration; ///< how long it is expected to take
        bool interactive;             ///< it needs a human
        std::time_t startTime;        ///< seconds
    };

    /// A sub-test that has failed.
    struct FailInfo
    {
        std::string name;    ///< the breadcrumbs of the sub-test
        std::string message; ///< why it failed
    };

    std::string m_indent;                   ///< two blanks for each running sub-test
    std::uint32_t m_beginCount = 0;         ///< sub-tests begun since the counts were reset
    std::FILE* m_log = nullptr;             ///< owned; null while no log is open
    std::vector<zel::P<ITestItem>> m_items; ///< what is offered for selection
    std::vector<bool> m_selected;           ///< one flag for each of m_items
    std::vector<RunningRecord> m_running;   ///< the outermost first
    int m_maxDuration = ITestItem::Short;   ///< items above it are filtered out
    bool m_runInteractive = false;          ///< otherwise interactive items are filtered out
    bool m_onlyInteractive = false;         ///< items without any interactive one are filtered out
    int m_nOk = 0;                          ///< sub-tests that succeeded
    int m_nAborted = 0;                     ///< sub-tests that stopped without a verdict
    int m_nFailed = 0;                      ///< sub-tests that failed
    int m_nSkipped = 0;                     ///< sub-tests that were filtered out or did not apply
    std::list<FailInfo> m_failures;         ///< in the order in which they happened
};

} // namespace qix
