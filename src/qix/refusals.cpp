#include "refusals.h"

#include "CRegisteredGroup.h"
#include "failureText.h"

#include <map>

namespace qix::detail
{

namespace
{

// The header of a group is printed with its name as part of a format.
bool hasFormat(std::string const& path)
{
    return path.find('%') != std::string::npos;
}

bool hasEmptyComponent(std::string const& path)
{
    return ("." + path + ".").find("..") != std::string::npos;
}

std::string parentOf(std::string const& path)
{
    std::size_t const dot = path.rfind('.');
    return dot == std::string::npos ? std::string() : path.substr(0, dot);
}

std::string textOf(Place const& place)
{
    return placeText(place.file, place.line);
}

/// Takes one test after the other, in the order of their registration. Of two that contradict each
/// other the later one is refused.
class CNames
{
public:
    void add(RegisteredTest const& test)
    {
        std::string const& group = test.group->getPath();
        if (isGroupAccepted(group, test.place) &&
            isTestAccepted(group + "." + test.name, test.place))
        {
            keepGroups(group, test.place);
        }
    }

    std::vector<std::string> const& getRefusals() const noexcept { return m_refusals; }

private:
    bool isGroupAccepted(std::string const& group, Place const& place);
    bool isTestAccepted(std::string const& path, Place const& place);

    void keepGroups(std::string const& group, Place const& place)
    {
        for (std::string path = group; !path.empty(); path = parentOf(path))
        {
            m_groups.emplace(path, place);
        }
    }

    std::map<std::string, Place> m_groups; ///< where the first test of a group is, by path
    std::map<std::string, Place> m_tests;  ///< by path
    std::vector<std::string> m_refusals;
};

bool CNames::isGroupAccepted(std::string const& group, Place const& place)
{
    if (m_groups.find(group) != m_groups.end())
    {
        return true;
    }
    if (hasFormat(group))
    {
        m_refusals.push_back("the name of the group " + group + " contains a %, at " +
                             textOf(place));
        return false;
    }
    if (hasEmptyComponent(group))
    {
        m_refusals.push_back("the name of a group is empty in \"" + group + "\", at " +
                             textOf(place));
        return false;
    }
    for (std::string path = group; !path.empty(); path = parentOf(path))
    {
        if (auto const other = m_tests.find(path); other != m_tests.end())
        {
            m_refusals.push_back(path + " is a test at " + textOf(other->second) +
                                 " and a group at " + textOf(place));
            return false;
        }
    }
    return true;
}

/// Keeps the path of a test that is accepted.
bool CNames::isTestAccepted(std::string const& path, Place const& place)
{
    if (auto const group = m_groups.find(path); group != m_groups.end())
    {
        m_refusals.push_back(path + " is a group at " + textOf(group->second) + " and a test at " +
                             textOf(place));
        return false;
    }
    auto const [other, isNew] = m_tests.emplace(path, place);
    if (!isNew)
    {
        m_refusals.push_back("two tests are named " + path + ", at " + textOf(other->second) +
                             " and " + textOf(place));
    }
    return isNew;
}

} // namespace

bool isGroupNameRefused(std::string const& path)
{
    return hasFormat(path) || hasEmptyComponent(path);
}

std::vector<std::string> listRefusals(std::deque<RegisteredTest> const& tests)
{
    CNames names;
    for (RegisteredTest const& test : tests)
    {
        names.add(test);
    }
    return names.getRefusals();
}

} // namespace qix::detail
