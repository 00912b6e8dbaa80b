#pragma once

#include <qix/ITestListener.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace qix
{

/// The listeners of the process. Safe to use from any thread.
class CListeners
{
public:
    /// One that has been added, until it is removed.
    struct Entry
    {
        Entry(zel::P<ITestListener> const& l, std::uint64_t n) : listener(l), number(n) {}

        zel::P<ITestListener> const listener;
        std::uint64_t const number; ///< counts all that have ever been added
        std::atomic<bool> isRemoved{false};
        std::atomic<bool> hasThrown{false};
    };

    /// Those that were there at one moment.
    struct Snapshot
    {
        std::shared_ptr<std::vector<std::shared_ptr<Entry>> const> entries;
        std::uint64_t lastNumber; ///< of all that had ever been added by then
    };

    static CListeners& get();

    CListeners(CListeners const&) = delete;
    CListeners& operator=(CListeners const&) = delete;
    ~CListeners();

    /// Costs next to nothing, so that a run without listeners does.
    static bool areThere() noexcept { return s_count.load(std::memory_order_relaxed) != 0; }

    void add(zel::P<ITestListener> const& listener);
    void remove(ITestListener const* listener);
    Snapshot getSnapshot() const;

    /// Tells something to all of them but those that are removed meanwhile. False when any has
    /// thrown.
    /// \param lastNumber  those that were added later are not told
    static bool tell(Snapshot const& snapshot, std::uint64_t lastNumber,
                     std::function<void(ITestListener&)> const& tellOne);

private:
    using Entries = std::vector<std::shared_ptr<Entry>>;

    static inline std::atomic<std::size_t> s_count{0};

    CListeners() = default;

    void replace(Entries const& entries);

    mutable std::mutex m_mutex;
    std::shared_ptr<Entries const> m_entries = std::make_shared<Entries const>();
    std::uint64_t m_lastNumber = 0;
};

} // namespace qix
