#include "selection/CSubTestFilter.h"

namespace qix
{

CSubTestFilter::CSubTestFilter(SubTestPatterns const& patterns, std::string_view testId)
{
    std::size_t next = 0;
    for (std::string const& id : patterns.ids)
    {
        m_ids.emplace(id, Id{patterns.numbers[next++], false});
    }
    for (CGlob const& glob : patterns.globs)
    {
        m_globs.push_back({glob, patterns.numbers[next++], false});
    }
    auto const noteAbove = [this, testId](std::string const& text)
    {
        for (std::size_t dot = text.find('.', testId.size() + 1); dot != std::string::npos;
             dot = text.find('.', dot + 1))
        {
            m_above.insert(text.substr(0, dot));
        }
    };
    for (auto const& entry : m_ids)
    {
        noteAbove(entry.first);
    }
    for (Glob const& glob : m_globs)
    {
        noteAbove(glob.glob.begin());
    }
}

bool CSubTestFilter::isHit(std::string const& id)
{
    auto const named = m_ids.find(id);
    bool isHit = named != m_ids.end();
    if (isHit)
    {
        named->second.isUsed = true;
    }
    for (Glob& glob : m_globs)
    {
        if (glob.glob.matches(id))
        {
            glob.isUsed = true;
            isHit = true;
        }
    }
    return isHit;
}

bool CSubTestFilter::isOnTheWay(std::string const& id) const
{
    return m_above.count(id) > 0;
}

std::vector<std::size_t> CSubTestFilter::listUnused() const
{
    std::vector<std::size_t> unused;
    for (auto const& [id, entry] : m_ids)
    {
        if (!entry.isUsed)
        {
            unused.push_back(entry.number);
        }
    }
    for (Glob const& glob : m_globs)
    {
        if (!glob.isUsed)
        {
            unused.push_back(glob.number);
        }
    }
    return unused;
}

} // namespace qix
