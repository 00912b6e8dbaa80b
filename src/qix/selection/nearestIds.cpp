#include "selection/nearestIds.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

namespace qix
{

namespace
{

constexpr std::size_t toldIds = 3;

/// Comparing takes time by the product of both lengths.
constexpr std::size_t longestCompared = 1000;

std::string_view lastComponent(std::string_view id) noexcept
{
    return id.substr(id.rfind('.') + 1);
}

/// How many characters have to be changed, added or taken away.
std::size_t distance(std::string_view left, std::string_view right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t k = 0; k < right.size(); ++k)
        {
            std::size_t const changed = diagonal + (left[i] == right[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({changed, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

std::size_t difference(std::size_t left, std::size_t right) noexcept
{
    return left < right ? right - left : left - right;
}

/// Keeps the nearest ids while it is shown all.
class CNearest
{
public:
    explicit CNearest(std::string const& text)
        : m_text(text), m_farthest(std::max<std::size_t>(2, text.size() / 3))
    {
    }

    void show(std::string const& id)
    {
        if (id.size() > longestCompared)
        {
            return;
        }
        bool const hasSameName = lastComponent(id) == lastComponent(m_text);
        if (!hasSameName && difference(id.size(), m_text.size()) > m_farthest)
        {
            return;
        }
        std::size_t const far = distance(id, m_text);
        if (far <= m_farthest || hasSameName)
        {
            keep(far, id);
        }
    }

    std::vector<std::string> list() const
    {
        std::vector<std::string> ids;
        for (auto const& candidate : m_nearest)
        {
            ids.push_back(candidate.second);
        }
        return ids;
    }

private:
    using Candidate = std::pair<std::size_t, std::string>;

    void keep(std::size_t far, std::string const& id)
    {
        auto const place = std::upper_bound(m_nearest.begin(), m_nearest.end(), far,
                                            [](std::size_t value, Candidate const& candidate)
                                            { return value < candidate.first; });
        m_nearest.insert(place, {far, id});
        if (m_nearest.size() > toldIds)
        {
            m_nearest.pop_back();
        }
    }

    std::string const& m_text;
    std::size_t m_farthest;
    std::vector<Candidate> m_nearest;
};

} // namespace

std::vector<std::string> nearestIds(CTestTree const& tree, std::string const& text)
{
    CNearest nearest(text);
    if (text.size() <= longestCompared)
    {
        std::string id;
        for (NodeIndex node = 0; node < tree.size(); ++node)
        {
            tree.moveTo(node, id);
            nearest.show(id);
        }
    }
    return nearest.list();
}

} // namespace qix
