// Tests of containers under load, against a model that is too simple to be wrong.

#include <qix/test.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace
{

/// Does the same random operations to a hash map and to an array with a place for every key.
class CHashMapAgainstArray
{
public:
    void doOperations(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            std::size_t const key = m_random() % m_array.size();
            if (m_random() % 3 == 0)
            {
                erase(key);
            }
            else
            {
                assign(key, i);
            }
        }
    }

    bool agree() const
    {
        std::size_t expectedSize = 0;
        for (std::size_t key = 0; key < m_array.size(); ++key)
        {
            auto const found = m_map.find(key);
            bool const same = found == m_map.end() ? !m_array[key] : m_array[key] == found->second;
            if (!same)
            {
                return false;
            }
            expectedSize += m_array[key] ? 1 : 0;
        }
        return m_map.size() == expectedSize;
    }

    std::size_t size() const { return m_map.size(); }

private:
    void erase(std::size_t key)
    {
        m_map.erase(key);
        m_array[key].reset();
    }

    void assign(std::size_t key, int value)
    {
        m_map[key] = value;
        m_array[key] = value;
    }

    std::mt19937 m_random;
    std::unordered_map<std::size_t, int> m_map;
    std::vector<std::optional<int>> m_array = std::vector<std::optional<int>>(10000);
};

} // namespace

QIX_TEST(containers, vectorKeepsValuesWhileItGrows)
{
    std::vector<std::string> texts;
    for (int i = 0; i < 100000; ++i)
    {
        texts.push_back(std::to_string(i));
    }
    QIX_REQUIRE(texts.size() == 100000);
    QIX_CHECK(texts.front() == "0");
    QIX_CHECK(texts.back() == "99999");
}

QIX_TEST(containers, stableSortKeepsOrder)
{
    std::vector<std::pair<int, int>> entries;
    for (int i = 0; i < 10000; ++i)
    {
        entries.emplace_back(i * 7919 % 10, i);
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](auto const& left, auto const& right) { return left.first < right.first; });
    QIX_CHECK(std::is_sorted(entries.begin(), entries.end()));
}

QIX_TEST(containers, hashMapAgreesWithArray)
{
    CHashMapAgainstArray pair;
    for (int round = 0; round < 10; ++round)
    {
        pair.doOperations(20000);
        QIX_REQUIRE(pair.agree());
    }
    log(std::to_string(pair.size()) + " keys are left after 200000 operations.");
}

QIX_TEST(containers, hashMapSurvivesAnHour, Hours)
{
    auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(61);
    CHashMapAgainstArray pair;
    while (std::chrono::steady_clock::now() < end)
    {
        pair.doOperations(1000000);
        QIX_REQUIRE(pair.agree());
    }
}
