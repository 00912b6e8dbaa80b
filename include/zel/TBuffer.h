#pragma once

#include <zel/CBase.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

namespace zel
{

/// A growable array of plain bytes that counts its used elements apart from its capacity.
///
/// It owns its storage or uses memory of somebody else. It checks nothing: counts and positions
/// must not be negative, positions must lie inside what is used, and sources must not lie inside
/// the buffer itself. Operations throw std::bad_alloc and nothing else, and leave the buffer as it
/// was then. A buffer belongs to one thread at a time.
template <typename T>
class ZEL_EXPORT TBuffer : public CBase
{
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) == 1, "a buffer holds plain bytes");

public:
    /// Empty, without storage.
    TBuffer() noexcept = default;

    /// \param used      the number of used elements; what they hold is not set
    /// \param allocate  the capacity if it is larger; -1 for none beyond \p used
    TBuffer(int used, int allocate)
    {
        allocInitially(used, allocate);
        m_used = used;
    }

    /// Copies elements.
    /// \param src       the first of them
    /// \param len       their number
    /// \param allocate  the capacity if it is larger; -1 for none beyond \p len
    TBuffer(T const* src, int len, int allocate) : TBuffer(len, allocate)
    {
        copyElements(m_data, src, len);
    }

    /// A copy has the capacity of the other, but neither its alignment nor its grow factor.
    // NOLINTNEXTLINE(bugprone-copy-constructor-init): a copy is born with its own reference count
    TBuffer(TBuffer const& other) : CBase()
    {
        reallocate(other.m_allocated);
        copyElements(m_data, other.m_data, other.m_used);
        m_used = other.m_used;
    }

    /// Frees the storage with this class's own deleteData(): a derived class that overrides it
    /// calls clear() in its destructor.
    ~TBuffer() override { freeStorage(); }

    /// The same as assign().
    TBuffer& operator=(TBuffer const& other) // NOLINT(bugprone-unhandled-self-assignment)
    {
        assign(other);
        return *this;
    }

    /// Makes the buffer hold exactly the \p len elements of \p src.
    void init(T const* src, int len)
    {
        ensureAllocated(len);
        copyElements(m_data, src, len);
        m_used = len;
    }

    /// Sets the alignment of the storage in bytes, at least 1. A new one of 2 or more moves the
    /// elements into new storage, which the buffer owns, if there is any storage.
    void setAllocAlignBytes(int bytes)
    {
        if (bytes == m_alignment)
        {
            return;
        }
        int const oldAlignment = m_alignment;
        m_alignment = bytes;
        if (m_raw == nullptr || bytes < 2)
        {
            return;
        }
        try
        {
            reallocate(m_allocated);
        }
        catch (std::bad_alloc const&)
        {
            m_alignment = oldAlignment;
            throw;
        }
    }

    /// The capacity in elements.
    int getAllocated() const noexcept { return m_allocated; }

    /// The number of used elements.
    int getUsed() const noexcept { return m_used; }

    /// How many elements fit behind the used ones.
    int getFree() const noexcept { return m_allocated - m_used; }

    /// When the buffer must grow, it grows to its capacity times \p factor at least. With 0, as
    /// it is from the start, it grows to what is needed. A product beyond 32 bits is ignored.
    void setMinGrowFactor(double factor) noexcept { m_minGrowFactor = factor; }

    /// The factor as it was set.
    double getMinGrowFactor() const noexcept { return m_minGrowFactor; }

    /// Uses the \p n elements at \p p, which stay with their owner and must outlive that use.
    void attachNoDelete(T* p, int n)
    {
        freeStorage();
        m_raw = m_data = p;
        m_allocated = m_rawSize = m_used = n;
        m_owns = false;
    }

    /// Gives the storage away.
    void clear()
    {
        freeStorage();
        m_raw = m_data = nullptr;
        m_allocated = m_rawSize = m_used = 0;
        m_owns = true;
    }

    /// Sets the capacity to exactly \p n; elements beyond it are lost.
    void alloc(int n) { reallocate(n); }

    /// Makes the capacity at least \p n.
    void ensureAllocated(int n) { growTo(n); }

    /// Makes room for \p n elements behind the used ones.
    void ensureFree(int n) { growTo(std::int64_t{m_used} + n); }

    /// Sets the number of used elements; what new ones hold is not set.
    void setUsed(int n)
    {
        growTo(n);
        m_used = n;
    }

    /// Uses \p n more elements; what they hold is not set.
    void addUsed(int n)
    {
        growTo(std::int64_t{m_used} + n);
        m_used += n;
    }

    /// Where the elements behind the used ones lie.
    T* getFreePtr() noexcept { return m_data + m_used; }

    /// The same, with room for \p n of them.
    T* getFreePtr(int n)
    {
        ensureFree(n);
        return getFreePtr();
    }

    /// Puts the \p len bytes at \p src in front of the element \p pos.
    void insert(int pos, void const* src, int len)
    {
        int const behind = m_used - pos;
        addUsed(len);
        move(pos + len, pos, behind);
        copyElements(m_data + pos, src, len);
    }

    /// Moves \p len elements inside the data; they may overlap.
    void move(int dst, int src, int len) noexcept
    {
        if (len != 0)
        {
            std::memmove(m_data + dst, m_data + src, static_cast<std::size_t>(len));
        }
    }

    /// Drops the first \p n elements.
    void eraseFromStart(int n) noexcept
    {
        move(0, n, m_used - n);
        m_used -= n;
    }

    /// Takes over the capacity and the used elements of \p other.
    void assign(TBuffer const& other)
    {
        alloc(other.m_allocated);
        setUsed(other.m_used);
        if (this != &other)
        {
            copyElements(m_data, other.m_data, m_used);
        }
    }

    /// True when the used elements are the same, whatever the capacities.
    bool equals(TBuffer const& other) const noexcept
    {
        return m_used == other.m_used &&
               (m_used == 0 ||
                std::memcmp(m_data, other.m_data, static_cast<std::size_t>(m_used)) == 0);
    }

    /// The same as equals().
    bool operator==(TBuffer const& other) const noexcept { return equals(other); }

    /// The opposite of equals().
    bool operator!=(TBuffer const& other) const noexcept { return !equals(other); }

    /// The first element; null without storage. Valid until the storage changes.
    T* getData() noexcept { return m_data; }

    /// The same, to read.
    T const* getData() const noexcept { return m_data; }

    /// The same as getData().
    operator T*() noexcept { return m_data; }

    /// The same as getData().
    operator T const*() const noexcept { return m_data; }

    /// The element at \p i, which is not checked.
    T& operator[](int i) noexcept { return m_data[i]; }

    /// The same, to read.
    T const& operator[](int i) const noexcept { return m_data[i]; }

protected:
    /// Frees storage that the buffer owns. Overridden for storage that does not come from new[].
    /// \param raw      what was allocated; may be null
    /// \param rawSize  its size in elements
    virtual void deleteData(T* raw, [[maybe_unused]] int rawSize) { delete[] raw; }

private:
    static void copyElements(T* dst, void const* src, int count) noexcept
    {
        if (count > 0)
        {
            std::memcpy(dst, src, static_cast<std::size_t>(count));
        }
    }

    static int checkedSize(std::int64_t size)
    {
        if (size > std::numeric_limits<int>::max())
        {
            throw std::bad_array_new_length();
        }
        return static_cast<int>(size);
    }

    void allocInitially(int used, int allocate)
    {
        if (allocate != -1)
        {
            reallocate(std::max(used, allocate));
        }
        growTo(used);
    }

    void freeStorage()
    {
        if (m_owns && m_raw != nullptr)
        {
            deleteData(m_raw, m_rawSize);
        }
    }

    void growTo(std::int64_t needed)
    {
        if (m_allocated < needed)
        {
            reallocate(std::max(checkedSize(needed), grownCapacity()));
        }
    }

    int grownCapacity() const noexcept
    {
        double const product = m_allocated * m_minGrowFactor;
        bool const fits = product > std::numeric_limits<int>::min() &&
                          product < -static_cast<double>(std::numeric_limits<int>::min());
        return fits ? static_cast<int>(product) : 0;
    }

    T* firstAligned(T* raw) const noexcept
    {
        if (m_alignment < 2)
        {
            return raw;
        }
        auto const alignment = static_cast<std::uintptr_t>(m_alignment);
        auto const excess = reinterpret_cast<std::uintptr_t>(raw) % alignment;
        return excess == 0 ? raw : raw + (alignment - excess);
    }

    /// Moves what fits into new storage of its own.
    void reallocate(int capacity)
    {
        int const rawSize =
            capacity == 0 ? 0 : checkedSize(std::int64_t{capacity} + m_alignment - 1);
        T* const raw = rawSize == 0 ? nullptr : new T[static_cast<std::size_t>(rawSize)];
        T* const data = firstAligned(raw);
        int const kept = std::min(m_used, capacity);
        copyElements(data, m_data, kept);
        freeStorage();
        m_raw = raw;
        m_data = data;
        m_allocated = capacity;
        m_rawSize = rawSize;
        m_used = kept;
        m_owns = true;
    }

    T* m_raw = nullptr;
    T* m_data = nullptr;
    int m_allocated = 0;
    int m_rawSize = 0;
    int m_used = 0;
    int m_alignment = 1;
    bool m_owns = true;
    double m_minGrowFactor = 0.0;
};

extern template class TBuffer<char>;
extern template class TBuffer<unsigned char>;

} // namespace zel
