#pragma once

#include <qix/SourceLocation.h>

#include "guards/posix/CForkGuard.h"
#include "testing/CTestContext.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace qix
{

/// The sections of one test, or of one row, and which of them are still to be run.
///
/// What they stand in is run from its beginning again and again. Each of these passes runs the
/// first innermost section that has not run yet, and passes the others by. A section is a sub-test
/// for the runner: it begins when it is first entered, and ends when all in it has run. In between,
/// while what stands around it is run again, it stays open there without being the current run.
class CSections
{
public:
    /// \param body  the run of what the sections stand in, which owns this
    explicit CSections(CTestContext& body);
    CSections(CSections const&) = delete;
    CSections& operator=(CSections const&) = delete;
    ~CSections();

    void beginPass() noexcept;

    /// True when another pass is needed.
    bool endPass();

    /// Ends all that is open for the runner.
    void endAll();

    /// True when the section is to be run now; then leave() follows.
    bool enter(std::string_view name, SourceLocation const& location);

    /// \param isUnwinding  an exception leaves the section
    void leave(bool isUnwinding);

    /// Ends the section that an exception has left, once it is known what has become of that.
    void endCut();

    /// The run that an exception belongs to which was caught behind the body: that of the innermost
    /// section it has left, or that of the body.
    CTestContext& ownerOfException() noexcept;

private:
    struct Section;

    /// A name may stand there several times, in a loop say.
    using Key = std::tuple<std::string, std::string_view, int, unsigned>;

    struct Section
    {
        Section* parent = nullptr;
        SourceLocation location{nullptr, 0};
        std::string name;
        bool isDone = false;
        std::unique_ptr<CTestContext> run; ///< null as long as it has not begun
        std::optional<CForkGuard> guard;   ///< while it is being visited
        std::map<Key, Section> children;
        std::size_t unfinished = 0; ///< how many children are not done
        Section* open = nullptr;    ///< the child that has begun and is not done
        unsigned lastPass = 0;
        std::map<Key, unsigned> visits; ///< in the last pass, by the key without its number
    };

    Section& find(std::string_view name, SourceLocation const& location);
    bool begin(Section& section);
    void end(Section& section);
    void setDone(Section& section) noexcept;
    Section const& firstUnfinished() const noexcept;

    CTestContext& m_bodyRun;
    Section m_body;
    Section* m_current = &m_body;
    Section* m_cut = nullptr; ///< what an exception has left that nobody may have caught yet
    unsigned m_pass = 0;
    bool m_hasRunInnermost = false; ///< in this pass
    bool m_hasFinished = false;     ///< any section in this pass
    bool m_wasCut = false;          ///< in this pass, so that what stands behind is not known
    bool m_hasBodyThrown = false;   ///< in this pass
};

} // namespace qix
