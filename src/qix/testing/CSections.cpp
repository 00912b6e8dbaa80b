#include "testing/CSections.h"

#include "text/shownName.h"

#include <algorithm>
#include <utility>

namespace qix
{

CSections::CSections(CTestContext& body) : m_bodyRun(body)
{
}

CSections::~CSections() = default;

void CSections::beginPass() noexcept
{
    ++m_pass;
    m_current = &m_body;
    m_hasRunInnermost = false;
    m_hasFinished = false;
    m_wasCut = false;
    m_hasBodyThrown = false;
}

bool CSections::endPass()
{
    bool const isUnfinished = m_body.unfinished > 0;
    if (m_hasFinished)
    {
        return isUnfinished || m_wasCut;
    }
    if (isUnfinished && !m_hasBodyThrown)
    {
        Section const& section = firstUnfinished();
        m_bodyRun.note({section.location.file, section.location.line, "",
                        "the section \"" + section.name +
                            "\" was not reached again: it has not run to its end"});
    }
    return false;
}

CSections::Section const& CSections::firstUnfinished() const noexcept
{
    auto const isUnfinished = [](auto const& child) { return !child.second.isDone; };
    Section const* section = &m_body;
    while (section->unfinished > 0)
    {
        section =
            &std::find_if(section->children.begin(), section->children.end(), isUnfinished)->second;
    }
    return *section;
}

void CSections::endAll()
{
    if (m_body.open != nullptr)
    {
        end(*m_body.open);
    }
}

bool CSections::enter(std::string_view name, SourceLocation const& location)
{
    endCut();
    Section& section = find(name, location);
    if (section.isDone || m_hasRunInnermost)
    {
        return false;
    }
    if (section.run != nullptr)
    {
        section.run->enter();
    }
    else if (!begin(section))
    {
        return false;
    }
    section.guard.emplace();
    m_current = &section;
    return true;
}

/// The section with this name and source location in the current one. It is created in the first
/// pass that reaches it.
CSections::Section& CSections::find(std::string_view name, SourceLocation const& location)
{
    Section& parent = *m_current;
    if (parent.lastPass != m_pass)
    {
        parent.lastPass = m_pass;
        parent.visits.clear();
    }
    Key key(name, location.file, location.line, 0);
    std::get<unsigned>(key) = ++parent.visits[key];
    auto const [child, isNew] = parent.children.try_emplace(key);
    Section& section = child->second;
    if (isNew)
    {
        section.parent = &parent;
        section.location = location;
        section.name = shownName(name);
        ++parent.unfinished;
    }
    return section;
}

/// False when the runner filters it out.
bool CSections::begin(Section& section)
{
    // A section that began in an earlier pass and was not reached in this one never will be.
    if (section.parent->open != nullptr)
    {
        end(*section.parent->open);
    }
    if (!m_bodyRun.beginSubTest(section.name, section.location))
    {
        setDone(section);
        return false;
    }
    section.run = std::make_unique<CTestContext>(m_bodyRun, section.location, this);
    section.parent->open = &section;
    return true;
}

void CSections::leave(bool isUnwinding)
{
    Section& section = *m_current;
    section.guard.reset();
    section.run->leave();
    m_current = section.parent;
    m_hasRunInnermost = true;
    if (isUnwinding)
    {
        m_cut = m_cut == nullptr ? &section : m_cut;
        m_wasCut = true;
        return;
    }
    endCut();
    if (section.unfinished == 0 && !section.isDone)
    {
        end(section);
    }
}

void CSections::endCut()
{
    if (m_cut != nullptr)
    {
        end(*std::exchange(m_cut, nullptr));
    }
}

void CSections::end(Section& section)
{
    if (section.open != nullptr)
    {
        end(*section.open);
    }
    setDone(section);
    section.parent->open = nullptr;
    m_bodyRun.endSubTest(*section.run);
}

void CSections::setDone(Section& section) noexcept
{
    section.isDone = true;
    --section.parent->unfinished;
    m_hasFinished = true;
}

CTestContext& CSections::ownerOfException() noexcept
{
    m_hasBodyThrown = m_hasBodyThrown || m_cut == nullptr;
    return m_cut == nullptr ? m_bodyRun : *m_cut->run;
}

} // namespace qix
