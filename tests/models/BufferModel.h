#pragma once

#include <algorithm>
#include <vector>

namespace models
{

/// What zel::TBuffer does, with a vector for the elements and a number for the capacity.
template <typename T>
struct BufferModel
{
    std::vector<T> elements;
    int capacity = 0;
    double growFactor = 0.0;

    int used() const { return static_cast<int>(elements.size()); }

    void reallocate(int newCapacity)
    {
        elements.resize(static_cast<std::size_t>(std::min(used(), newCapacity)));
        capacity = newCapacity;
    }

    void grow(int needed)
    {
        if (capacity < needed)
        {
            capacity = std::max(needed, static_cast<int>(capacity * growFactor));
        }
    }

    /// New elements hold \p fill.
    void setUsed(int newUsed, T fill)
    {
        grow(newUsed);
        elements.resize(static_cast<std::size_t>(newUsed), fill);
    }

    void init(std::vector<T> const& source)
    {
        grow(static_cast<int>(source.size()));
        elements = source;
    }

    void insert(int position, std::vector<T> const& source)
    {
        grow(used() + static_cast<int>(source.size()));
        elements.insert(elements.begin() + position, source.begin(), source.end());
    }

    void move(int to, int from, int count)
    {
        std::vector<T> const moved(elements.begin() + from, elements.begin() + from + count);
        std::copy(moved.begin(), moved.end(), elements.begin() + to);
    }

    void eraseFromStart(int count) { elements.erase(elements.begin(), elements.begin() + count); }

    void assign(BufferModel const& other)
    {
        elements = other.elements;
        capacity = other.capacity;
    }
};

} // namespace models
