#include "planning/CPlannedRunner.h"

#include <qix/CTestItemGroup.h>

#include "registration/CRegisteredGroup.h"
#include "runner/filters.h"
#include "selection/testIds.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <typeinfo>
#include <utility>

namespace qix
{

namespace
{

/// Sets a variable while it lives.
template <typename T>
class CScopedValue
{
public:
    CScopedValue(T& variable, T value)
        : m_variable(variable), m_before(std::exchange(variable, value))
    {
    }
    ~CScopedValue() { m_variable = m_before; }
    CScopedValue(CScopedValue const&) = delete;
    CScopedValue& operator=(CScopedValue const&) = delete;

private:
    T& m_variable;
    T m_before;
};

std::uint64_t microsecondsSince(std::chrono::steady_clock::time_point begin)
{
    auto const passed = std::chrono::steady_clock::now() - begin;
    auto const count = std::chrono::duration_cast<std::chrono::microseconds>(passed).count();
    // What is shorter than the clock can tell has taken some time nevertheless.
    return count < 1 ? 1 : static_cast<std::uint64_t>(count);
}

} // namespace

bool isLibraryGroup(ITestItem const& item)
{
    return typeid(item) == typeid(CTestItemGroup) ||
           typeid(item) == typeid(detail::CRegisteredGroup);
}

void CPlannedRunner::selectAll()
{
    m_selected.assign(m_items.size(), true);
}

bool CPlannedRunner::isFilteredOut(ITestItem const& item) const
{
    // Groups look at all items below them to answer this.
    bool const containsAnyInteractive = !m_onlyInteractive || item.containsAnyInteractive();
    return findFilter({m_maxDuration, m_runInteractive, m_onlyInteractive},
                      {item.getDuration(), item.isInteractive(), containsAnyInteractive})
        .has_value();
}

void CPlannedRunner::setPlan(CTestPlan const& plan, PatternHits const& kept,
                             PatternHits const& dropped)
{
    m_plan = &plan;
    m_kept = &kept;
    m_dropped = &dropped;
    m_times.assign(plan.tree().size(), 0);
    m_hasFailed.assign(plan.tree().size(), false);
    for (auto const& [node, patterns] : kept.subTests)
    {
        if (kept.nodes[node] == PatternHits::Nothing)
        {
            m_subTests[node].kept =
                std::make_unique<CSubTestFilter>(patterns, plan.tree().idOf(node));
        }
    }
    for (auto const& [node, patterns] : dropped.subTests)
    {
        m_subTests[node].dropped =
            std::make_unique<CSubTestFilter>(patterns, plan.tree().idOf(node));
    }
    // The plan knows which of the root's children are selected.
    selectAll();
}

void CPlannedRunner::setRecorder(CRunRecorder& recorder, std::vector<NodeIndex> indices)
{
    m_recorder = &recorder;
    m_recordIndices = std::move(indices);
}

std::vector<std::size_t> CPlannedRunner::listUnusedSubTestPatterns() const
{
    std::vector<std::size_t> numbers;
    for (auto const& [node, subTests] : m_subTests)
    {
        if (subTests.hasRun && subTests.kept != nullptr)
        {
            std::vector<std::size_t> const unused = subTests.kept->listUnused();
            numbers.insert(numbers.end(), unused.begin(), unused.end());
        }
    }
    return numbers;
}

bool CPlannedRunner::runPlan()
{
    m_open.clear();
    m_open.emplace_back();
    m_reachedTests = 0;
    return go();
}

void CPlannedRunner::planAs(CPlannedRunner const& other)
{
    setPlan(*other.m_plan, *other.m_kept, *other.m_dropped);
    m_order = other.m_order;
    m_maxDuration = other.m_maxDuration;
    m_runInteractive = other.m_runInteractive;
    m_onlyInteractive = other.m_onlyInteractive;
    m_open.clear();
    m_open.emplace_back();
}

CPlannedRunner::Clock::time_point CPlannedRunner::getBeginTime(std::size_t depth) const
{
    return depth < m_open.size() ? m_open[depth].begin : Clock::time_point();
}

void CPlannedRunner::setBeginTime(std::size_t depth, Clock::time_point begin)
{
    if (depth < m_open.size())
    {
        m_open[depth].begin = begin;
    }
}

void CPlannedRunner::openAs(NodeIndex node)
{
    CTestTree const& tree = m_plan->tree();
    std::vector<NodeIndex> path;
    for (; node != noNode; node = tree[node].parent)
    {
        path.push_back(node);
    }
    m_open.resize(1);
    m_running.clear();
    for (auto place = path.rbegin(); place != path.rend(); ++place)
    {
        ITestItem const& item = *tree[*place].item;
        m_running.push_back({item.getName(), m_beginCount++, item.getDuration(),
                             item.isInteractive(), std::time(nullptr)});
        m_open.push_back(makeOpen(*place));
    }
}

void CPlannedRunner::openAs(CPlannedRunner const& other)
{
    m_open = other.m_open;
    m_running = other.m_running;
}

void CPlannedRunner::runTestItem(ITestItem* item)
{
    if (hasReachedFailureLimit())
    {
        return;
    }
    runChild(nextChild(item));
}

void CPlannedRunner::runChild(Child const& child)
{
    if (child.node == noNode)
    {
        runUnknown(child.item);
    }
    else if (m_plan->isWanted(child.node))
    {
        runNode(child);
    }
}

void CPlannedRunner::runNode(Child const& child)
{
    m_reachedTests += m_plan->tree().isLeaf(child.node) ? 1 : 0;
    runNext(makeOpen(child.node), child);
}

void CPlannedRunner::runUnknown(ITestItem* item)
{
    Open open;
    if (makeUnknown(open, itemName(item)))
    {
        runNext(std::move(open), {noNode, item});
    }
}

/// What an item throws before it begins leaves nothing that is about to begin.
void CPlannedRunner::runNext(Open open, Child const& child)
{
    m_next = std::move(open);
    try
    {
        runItem(child);
    }
    catch (...)
    {
        m_next.reset();
        throw;
    }
}

void CPlannedRunner::runItem(Child const& child)
{
    CConsoleTestRunner::runTestItem(child.item);
}

CPlannedRunner::Open CPlannedRunner::makeOpen(NodeIndex node)
{
    Open open;
    open.node = node;
    open.nextChild = CTestTree::firstChild(node);
    open.isLetIn = m_plan->isLetIn(node);
    auto const subTests = m_subTests.find(node);
    if (subTests != m_subTests.end())
    {
        open.subTests = &subTests->second;
        open.id = m_plan->tree().idOf(node);
        open.isKept = subTests->second.kept == nullptr;
    }
    return open;
}

/// Prepares what is not in the tree and is begun in what runs innermost. False when it is not
/// wanted.
bool CPlannedRunner::makeUnknown(Open& open, std::string const& name)
{
    Open& above = m_open.back();
    open.isUnknown = true;
    open.isLetIn = above.isLetIn && (above.isUnknown || m_plan->tree().isLeaf(above.node));
    if (above.subTests == nullptr)
    {
        return isUnknownWanted(above);
    }
    open.subTests = above.subTests;
    std::string component;
    appendIdComponent(component, name);
    appendSiblingNumber(component, ++above.siblings[component]);
    open.id = above.id + '.' + component;
    SubTests const& patterns = *above.subTests;
    bool const isHit = patterns.kept != nullptr && patterns.kept->isHit(open.id);
    open.isKept = above.isKept || isHit;
    bool const isDropped = patterns.dropped != nullptr && patterns.dropped->isHit(open.id);
    return !isDropped && (open.isKept || patterns.kept->isOnTheWay(open.id));
}

bool CPlannedRunner::isUnknownWanted(Open const& above) const
{
    bool const isInNode = !above.isUnknown && above.node != noNode;
    return !isInNode || m_plan->tree().isLeaf(above.node) || m_plan->isWhole(above.node);
}

CPlannedRunner::Child CPlannedRunner::nextChild(ITestItem* item)
{
    Open& open = m_open.back();
    if (open.isUnknown)
    {
        return {noNode, item};
    }
    std::size_t const call = open.calls++;
    if (isReordered(open))
    {
        std::vector<NodeIndex> const& children = m_order.at(open.node);
        bool const isKnown = call < children.size();
        return isKnown ? Child{children[call], m_plan->tree()[children[call]].item.get()}
                       : Child{noNode, item};
    }
    return {findChild(open, item), item};
}

bool CPlannedRunner::isReordered(Open const& open) const
{
    return m_order.count(open.node) > 0 &&
           (open.node == noNode || isLibraryGroup(*m_plan->tree()[open.node].item));
}

/// The child is mostly the one behind the last one.
NodeIndex CPlannedRunner::findChild(Open& open, ITestItem* item)
{
    CTestTree const& tree = m_plan->tree();
    bool const isNext =
        open.nextChild < tree.endOf(open.node) && tree[open.nextChild].item.get() == item;
    NodeIndex child = isNext ? open.nextChild : findByPointer(open, item);
    if (child == noNode && item != nullptr)
    {
        child = findByName(open, item);
    }
    if (child != noNode)
    {
        open.nextChild = tree[child].end;
    }
    return child;
}

NodeIndex CPlannedRunner::findByPointer(Open& open, ITestItem const* item)
{
    CTestTree const& tree = m_plan->tree();
    if (open.children.empty())
    {
        NodeIndex const end = tree.endOf(open.node);
        for (NodeIndex node = CTestTree::firstChild(open.node); node < end; node = tree[node].end)
        {
            open.children.emplace(tree[node].item.get(), node);
        }
    }
    auto const found = open.children.find(item);
    return found == open.children.end() ? noNode : found->second;
}

/// For items that make their children anew each time they are asked. Those of one name come in
/// their order.
NodeIndex CPlannedRunner::findByName(Open const& open, ITestItem const* item) const
{
    CTestTree const& tree = m_plan->tree();
    std::string const name = item->getName();
    NodeIndex const end = tree.endOf(open.node);
    NodeIndex earlier = noNode;
    for (NodeIndex node = CTestTree::firstChild(open.node); node < end; node = tree[node].end)
    {
        if (itemName(tree[node].item.get()) == name)
        {
            if (node >= open.nextChild)
            {
                return node;
            }
            earlier = earlier == noNode ? node : earlier;
        }
    }
    return earlier;
}

bool CPlannedRunner::beginSubTest(std::string const& name, ITestItem::Duration duration,
                                  bool isInteractive, bool containsAnyInteractive)
{
    Open open;
    if (m_next)
    {
        open = std::move(*std::exchange(m_next, std::nullopt));
    }
    else if (!makeUnknown(open, name))
    {
        return false;
    }
    return begin(std::move(open), name, duration, isInteractive, containsAnyInteractive);
}

bool CPlannedRunner::begin(Open open, std::string const& name, ITestItem::Duration duration,
                           bool isInteractive, bool containsAnyInteractive)
{
    CScopedValue<Open*> const beginning(m_beginning, &open);
    bool const isBegun = open.isLetIn
                             ? beginLetIn(name, duration, isInteractive, containsAnyInteractive)
                             : beginFiltered(name, duration, isInteractive, containsAnyInteractive);
    if (!isBegun)
    {
        return false;
    }
    if (open.subTests != nullptr)
    {
        open.subTests->hasRun = true;
    }
    if (open.node != noNode && m_recorder != nullptr && m_recordIndices[open.node] != noNode)
    {
        m_recorder->noteBegin(m_recordIndices[open.node]);
    }
    open.begin = Clock::now();
    m_open.push_back(std::move(open));
    return true;
}

std::string const& CPlannedRunner::idOf(TestInfo const& test)
{
    if (m_beginning == nullptr)
    {
        // Another runner has begun it.
        m_idFromNames.clear();
        for (std::string const& name : test.names)
        {
            m_idFromNames += m_idFromNames.empty() ? "" : ".";
            appendIdComponent(m_idFromNames, name);
        }
        return m_idFromNames;
    }
    if (m_beginning->isUnknown && m_beginning->reportedId.empty())
    {
        nameUnknown(*m_beginning, test.names.back());
    }
    return idOf(*m_beginning);
}

/// Gives something that is not in the tree its id, which stays the same until it ends.
void CPlannedRunner::nameUnknown(Open& open, std::string const& name)
{
    if (open.subTests != nullptr)
    {
        open.reportedId = open.id;
        return;
    }
    Open& above = m_open.back();
    std::string component;
    appendIdComponent(component, name);
    appendSiblingNumber(component, ++above.siblings[component]);
    std::string const& idAbove = idOf(above);
    open.reportedId = idAbove.empty() ? component : idAbove + '.' + component;
}

std::string const& CPlannedRunner::idOf(Open& open)
{
    if (open.reportedId.empty() && !open.isUnknown && open.node != noNode)
    {
        open.reportedId = m_plan->tree().idOf(open.node);
    }
    return open.reportedId;
}

bool CPlannedRunner::beginLetIn(std::string const& name, ITestItem::Duration duration,
                                bool isInteractive, bool containsAnyInteractive)
{
    CScopedValue<int> const anyDuration(m_maxDuration, std::numeric_limits<int>::max());
    CScopedValue<bool> const interactive(m_runInteractive, true);
    CScopedValue<bool> const alsoOthers(m_onlyInteractive, false);
    return beginFiltered(name, duration, isInteractive, containsAnyInteractive);
}

bool CPlannedRunner::beginFiltered(std::string const& name, ITestItem::Duration duration,
                                   bool isInteractive, bool containsAnyInteractive)
{
    return CConsoleTestRunner::beginSubTest(name, duration, isInteractive, containsAnyInteractive);
}

void CPlannedRunner::endSubTest_Failed(std::exception const& e)
{
    close(RememberedTest::Outcome::Failed);
    CConsoleTestRunner::endSubTest_Failed(e);
}

void CPlannedRunner::endSubTest_Aborted()
{
    close(RememberedTest::Outcome::Other);
    CConsoleTestRunner::endSubTest_Aborted();
}

void CPlannedRunner::endSubTest_Skipped()
{
    close(RememberedTest::Outcome::Other);
    CConsoleTestRunner::endSubTest_Skipped();
}

void CPlannedRunner::endSubTest_Success()
{
    close(RememberedTest::Outcome::Passed);
    CConsoleTestRunner::endSubTest_Success();
}

/// A sub-test that has failed fails the test that it is in, even if that ends well.
void CPlannedRunner::close(RememberedTest::Outcome outcome)
{
    if (m_open.size() <= 1)
    {
        return;
    }
    Open const closed = std::move(m_open.back());
    m_open.pop_back();
    bool const isTest = closed.isUnknown || m_plan->tree().isLeaf(closed.node);
    m_hasTestPassed = m_hasTestPassed || (isTest && outcome == RememberedTest::Outcome::Passed);
    bool const hasFailed = closed.hasFailed || outcome == RememberedTest::Outcome::Failed;
    if (closed.isUnknown)
    {
        m_open.back().hasFailed = m_open.back().hasFailed || hasFailed;
    }
    else
    {
        noteEnd(closed, hasFailed ? RememberedTest::Outcome::Failed : outcome);
    }
}

/// A test that is repeated has failed when it did so once.
void CPlannedRunner::noteEnd(Open const& test, RememberedTest::Outcome outcome)
{
    std::uint64_t const time = microsecondsSince(test.begin);
    if (m_plan->tree().isLeaf(test.node))
    {
        m_times[test.node] = std::max(m_times[test.node], time);
    }
    if (outcome == RememberedTest::Outcome::Failed)
    {
        m_hasFailed[test.node] = true;
        ++m_failedTests;
    }
    if (m_recorder != nullptr && m_recordIndices[test.node] != noNode)
    {
        m_recorder->noteEnd(m_recordIndices[test.node],
                            m_hasFailed[test.node] ? RememberedTest::Outcome::Failed : outcome,
                            time);
    }
}

} // namespace qix
