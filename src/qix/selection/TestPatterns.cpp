#include "selection/TestPatterns.h"

#include "selection/testIds.h"

#include <algorithm>

namespace qix
{

namespace
{

struct NumberedGlob
{
    CGlob glob;
    std::size_t number;
};

class CFinder
{
public:
    CFinder(CTestTree const& tree, std::vector<std::string> const& patterns) : m_tree(tree)
    {
        m_hits.nodes.resize(tree.size(), PatternHits::Nothing);
        m_hits.hasMatched.resize(patterns.size(), false);
        for (std::string const& pattern : patterns)
        {
            add(normalizedPattern(pattern));
        }
    }

    PatternHits find()
    {
        if (m_hits.patterns.empty())
        {
            return std::move(m_hits);
        }
        std::string id;
        for (NodeIndex node = 0; node < m_tree.size(); ++node)
        {
            m_hits.nodes[node] = inherited(node);
            if (!m_globs.empty())
            {
                m_tree.moveTo(node, id);
                matchGlobs(node, id);
            }
            matchIds(node);
        }
        findSubTests();
        return std::move(m_hits);
    }

private:
    void add(std::string pattern)
    {
        std::size_t const number = m_hits.patterns.size();
        if (pattern.find('*') == std::string::npos)
        {
            CTextHash hash;
            hash.add(pattern);
            m_ids.emplace(hash.get(), number);
        }
        else
        {
            m_globs.push_back({CGlob(pattern), number});
        }
        m_hits.patterns.push_back(std::move(pattern));
    }

    PatternHits::Hit inherited(NodeIndex node) const
    {
        NodeIndex const parent = m_tree[node].parent;
        bool const isFound = parent != noNode && m_hits.nodes[parent] != PatternHits::Nothing;
        return isFound ? PatternHits::Found : PatternHits::Nothing;
    }

    void matchGlobs(NodeIndex node, std::string const& id)
    {
        std::size_t const depth = m_tree[node].depth;
        m_states.resize(m_globs.size() * (depth + 1));
        for (std::size_t i = 0; i < m_globs.size(); ++i)
        {
            CGlob::State& state = m_states[depth * m_globs.size() + i];
            state = depth == 0 ? CGlob::State() : m_states[(depth - 1) * m_globs.size() + i];
            state = m_globs[i].glob.advance(state, id);
            if (m_globs[i].glob.matches(state, id))
            {
                m_hits.nodes[node] = PatternHits::Found;
                m_hits.hasMatched[m_globs[i].number] = true;
            }
        }
    }

    void matchIds(NodeIndex node)
    {
        auto const [begin, end] = m_ids.equal_range(m_tree[node].idHash.get());
        for (auto i = begin; i != end; ++i)
        {
            if (m_tree.hasId(node, m_hits.patterns[i->second]))
            {
                m_hits.nodes[node] = PatternHits::Named;
                m_hits.hasMatched[i->second] = true;
            }
        }
    }

    /// What has found nothing may go on below a test.
    void findSubTests()
    {
        auto const& matched = m_hits.hasMatched;
        if (std::find(matched.begin(), matched.end(), false) == matched.end())
        {
            return;
        }
        noteTests();
        for (auto const& [hash, number] : m_ids)
        {
            std::string const& id = m_hits.patterns[number];
            if (SubTestPatterns* const below = subTestsOf(number, id))
            {
                below->ids.push_back(id);
                below->numbers.push_back(number);
            }
        }
        for (NumberedGlob const& glob : m_globs)
        {
            if (SubTestPatterns* const below = subTestsOf(glob.number, glob.glob.begin()))
            {
                below->globs.push_back(glob.glob);
                below->numbers.push_back(glob.number);
            }
        }
    }

    void noteTests()
    {
        for (NodeIndex node = 0; node < m_tree.size(); ++node)
        {
            if (m_tree.isLeaf(node))
            {
                m_tests.emplace(m_tree[node].idHash.get(), node);
            }
        }
    }

    /// Those of the test by whose id and a dot the text begins, or null when there is none.
    SubTestPatterns* subTestsOf(std::size_t number, std::string_view text)
    {
        if (m_hits.hasMatched[number])
        {
            return nullptr;
        }
        CTextHash hash;
        std::size_t begin = 0;
        for (std::size_t dot = text.find('.'); dot != std::string_view::npos;
             dot = text.find('.', dot + 1))
        {
            hash.add(text.substr(begin, dot - begin));
            begin = dot;
            auto const [first, last] = m_tests.equal_range(hash.get());
            for (auto test = first; test != last; ++test)
            {
                if (m_tree.hasId(test->second, text.substr(0, dot)))
                {
                    m_hits.hasMatched[number] = true;
                    return &m_hits.subTests[test->second];
                }
            }
        }
        return nullptr;
    }

    CTestTree const& m_tree;
    PatternHits m_hits;
    std::unordered_multimap<std::uint64_t, std::size_t> m_ids; ///< numbers of patterns by hash
    std::vector<NumberedGlob> m_globs;
    std::vector<CGlob::State> m_states; ///< of each glob on each level down to the node
    std::unordered_multimap<std::uint64_t, NodeIndex> m_tests; ///< by the hash of the id
};

} // namespace

PatternHits findPatterns(CTestTree const& tree, std::vector<std::string> const& patterns)
{
    return CFinder(tree, patterns).find();
}

} // namespace qix
