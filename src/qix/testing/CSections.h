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
/// The code around them is run from its beginning in each pass. A pass runs the first innermost
/// section that has not run yet, and skips the others. To the runner a section is a sub-test: it
/// begins when it is first entered, and ends when all sections in it have run. Between two passes
/// it stays open in the runner without being the current context.
class CSections
{
public:
    /// \param body  the context of the code around the sections, which owns this
    explicit CSections(CTestContext& body);
    CSections(CSections const&) = delete;
    CSections& operator=(CSections const&) = delete;
    ~CSections();

    void beginPass() noexcept;

    /// True when another pass is needed.
    bool endPass();

    /// Ends all sections that are open in the runner.
    void endAll();

    /// True when the section is to be run in this pass; leave() has to follow.
    bool enter(std::string_view name, SourceLocation const& location);

    /// \param isUnwinding  whether the section is left by an exception
    void leave(bool isUnwinding);

    /// Ends the section that an exception has left, once that exception has been recorded.
    void endCut();

    /// The context to which an exception that has left the body belongs: that of the innermost
    /// section it has left, or else that of the body.
    CTestContext& ownerOfException() noexcept;

private:
    struct Section;

    /// Name and source location, and a number, since a section may be entered again in a loop.
    using Key = std::tuple<std::string, std::string_view, int, unsigned>;

    struct Section
    {
        Section* parent = nullptr;
        SourceLocation location{nullptr, 0};
        std::string name;
        bool isDone = false;
        std::unique_ptr<CTestContext> run; ///< null until it has begun
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
    Section* m_cut = nullptr; ///< left by an exception that may still be propagating
    unsigned m_pass = 0;
    bool m_hasRunInnermost = false; ///< in this pass
    bool m_hasFinished = false;     ///< any section in this pass
    bool m_wasCut = false;          ///< in this pass, so that later sections are still unknown
    bool m_hasBodyThrown = false;   ///< in this pass
};

} // namespace qix
