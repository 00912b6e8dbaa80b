#include "refusals.h"

#include "CRegisteredGroup.h"
#include "failureText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <variant>

namespace qix::detail
{

namespace
{

using Child = CRegisteredGroup::Child;

// The header of a group is printed with its name as part of a format.
bool hasFormat(std::string const& path)
{
    return path.find('%') != std::string::npos;
}

bool hasEmptyComponent(std::string const& path)
{
    return ("." + path + ".").find("..") != std::string::npos;
}

std::string textOf(Place const& place)
{
    return placeText(place.file, place.line);
}

/// What is compared of a child of a group.
struct Named
{
    std::string_view name;
    Place place;
    bool isGroup;
};

Named named(RegisteredTest const& test)
{
    return {test.name, test.getPlace(), false};
}

Named named(zel::P<CRegisteredGroup> const& group)
{
    std::string_view const path = group->getPath();
    return {path.substr(path.rfind('.') + 1), group->getPlace(), true};
}

Named named(Child const& child)
{
    return std::visit([](auto const& kind) { return named(kind); }, child);
}

void listGroupName(CRegisteredGroup const& group, Place const& place,
                   std::vector<std::string>& refusals)
{
    std::string const& path = group.getPath();
    if (hasFormat(path))
    {
        refusals.push_back("the name of the group " + path + " contains a %, at " + textOf(place));
    }
    else if (hasEmptyComponent(path))
    {
        refusals.push_back("the name of a group is empty in \"" + path + "\", at " + textOf(place));
    }
}

std::string describeTwins(std::string const& path, Named const& first, Named const& second)
{
    std::string const places[] = {" at " + textOf(first.place), textOf(second.place)};
    if (!first.isGroup && !second.isGroup)
    {
        return "two tests are named " + path + "," + places[0] + " and " + places[1];
    }
    std::string const kinds[] = {first.isGroup ? "a group" : "a test",
                                 second.isGroup ? "a group" : "a test"};
    return path + " is " + kinds[0] + places[0] + " and " + kinds[1] + " at " + places[1];
}

void listTwins(CRegisteredGroup const& group, std::vector<std::string>& refusals)
{
    std::map<std::string_view, Named> children;
    for (Child const& child : group.getRegistered())
    {
        Named const second = named(child);
        auto const [first, isNew] = children.emplace(second.name, second);
        if (!isNew)
        {
            std::string const path = group.getPath() + "." + std::string(second.name);
            refusals.push_back(describeTwins(path, first->second, second));
        }
    }
}

std::vector<std::uint64_t> hashesOfNames(std::deque<Child> const& children)
{
    std::vector<std::uint64_t> hashes(children.size());
    std::transform(children.begin(), children.end(), hashes.begin(),
                   [](Child const& child)
                   { return std::hash<std::string_view>()(named(child).name); });
    return hashes;
}

/// Never false when two children have the same name, and seldom true when none have: compares
/// hashes, since comparing all names takes longer than running tests that do nothing.
bool mayHaveTwins(std::deque<Child> const& children)
{
    std::size_t size = 1;
    while (size < 2 * children.size())
    {
        size *= 2;
    }
    // Halves of hashes, each behind the place that the other half tells: it is cache misses that
    // take time.
    std::vector<std::uint32_t> marks(size);
    for (std::uint64_t const hash : hashesOfNames(children))
    {
        std::uint32_t const mark = static_cast<std::uint32_t>(hash >> 32U) | 1U;
        std::size_t slot = hash & (size - 1);
        while (marks[slot] != 0 && marks[slot] != mark)
        {
            slot = (slot + 1) & (size - 1);
        }
        if (marks[slot] == mark)
        {
            return true;
        }
        marks[slot] = mark;
    }
    return false;
}

} // namespace

std::vector<std::string> listRefusals(CRegisteredGroup const& group)
{
    std::vector<std::string> refusals;
    std::deque<Child> const& children = group.getRegistered();
    auto const firstTest = std::find_if(children.begin(), children.end(),
                                        [](Child const& child) { return !named(child).isGroup; });
    if (firstTest != children.end())
    {
        listGroupName(group, named(*firstTest).place, refusals);
    }
    if (mayHaveTwins(children))
    {
        listTwins(group, refusals);
    }
    return refusals;
}

} // namespace qix::detail
