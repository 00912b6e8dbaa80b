#include "runner/CListeners.h"

#include <zel/CInvalidArgError.h>

#include "text/exceptionText.h"
#include "text/forcedUnwind.h"
#include "text/withIndentedLines.h"

#include <algorithm>
#include <cstdio>
#include <typeinfo>

namespace qix
{

namespace
{

void reportThrown(ITestListener const& listener)
{
    std::fprintf(stderr, "Error: the test listener %s threw %s; the run fails.\n",
                 typeText(typeid(listener)).c_str(),
                 withIndentedLines(currentExceptionText()).c_str());
}

/// False when the listener has thrown.
QIX_CATCHES_FORCED_UNWIND bool tellOne(CListeners::Entry& entry,
                                       std::function<void(ITestListener&)> const& tell)
{
    try
    {
        tell(*entry.listener);
        return true;
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled, which nobody may stop.
        throw;
    }
    catch (...)
    {
        if (!entry.hasThrown.exchange(true))
        {
            reportThrown(*entry.listener);
        }
        return false;
    }
}

} // namespace

CListeners& CListeners::get()
{
    static CListeners listeners;
    return listeners;
}

/// Runs of static objects that are destroyed later have no listeners.
CListeners::~CListeners()
{
    s_count = 0;
}

void CListeners::add(zel::P<ITestListener> const& listener)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    bool const isThere = std::any_of(m_entries->begin(), m_entries->end(),
                                     [&](auto const& e) { return e->listener == listener; });
    if (isThere)
    {
        return;
    }
    Entries entries = *m_entries;
    entries.push_back(std::make_shared<Entry>(listener, m_lastNumber + 1));
    replace(entries);
    ++m_lastNumber;
}

void CListeners::remove(ITestListener const* listener)
{
    // The last reference to a listener may go with this, and run what its author wrote.
    std::shared_ptr<Entries const> previous;
    std::lock_guard<std::mutex> const lock(m_mutex);
    previous = m_entries;
    Entries entries;
    for (std::shared_ptr<Entry> const& entry : *m_entries)
    {
        if (entry->listener.get() == listener)
        {
            entry->isRemoved = true;
        }
        else
        {
            entries.push_back(entry);
        }
    }
    replace(entries);
}

void CListeners::replace(Entries const& entries)
{
    m_entries = std::make_shared<Entries const>(entries);
    s_count = entries.size();
}

CListeners::Snapshot CListeners::getSnapshot() const
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    return {m_entries, m_lastNumber};
}

bool CListeners::tell(Snapshot const& snapshot, std::uint64_t lastNumber,
                      std::function<void(ITestListener&)> const& tell)
{
    bool haveAllReturned = true;
    for (std::shared_ptr<Entry> const& entry : *snapshot.entries)
    {
        if (entry->number <= lastNumber && !entry->isRemoved)
        {
            haveAllReturned = tellOne(*entry, tell) && haveAllReturned;
        }
    }
    return haveAllReturned;
}

void addTestListener(zel::P<ITestListener> const& listener)
{
    if (listener == nullptr)
    {
        throw zel::CInvalidArgError("qix::addTestListener", "the listener must not be null",
                                    zel::CProps());
    }
    CListeners::get().add(listener);
}

void removeTestListener(ITestListener const* listener)
{
    CListeners::get().remove(listener);
}

} // namespace qix
