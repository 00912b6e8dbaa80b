#pragma once

#include "selection/TestPatterns.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qix
{

/// Compares the ids of a test's sub-tests with the patterns that go on below the test.
class CSubTestFilter
{
public:
    /// \param testId  the id that all patterns begin with
    CSubTestFilter(SubTestPatterns const& patterns, std::string_view testId);

    /// True when a pattern names the sub-test, or finds it.
    bool isHit(std::string const& id);

    /// True when a pattern goes on below the sub-test.
    bool isOnTheWay(std::string const& id) const;

    /// The numbers of the patterns that have hit nothing so far.
    std::vector<std::size_t> listUnused() const;

private:
    struct Glob
    {
        CGlob glob;
        std::size_t number;
        bool isUsed;
    };

    struct Id
    {
        std::size_t number;
        bool isUsed;
    };

    std::unordered_map<std::string, Id> m_ids;
    std::unordered_set<std::string> m_above; ///< the ids of all sub-tests that others are in
    std::vector<Glob> m_globs;
};

} // namespace qix
