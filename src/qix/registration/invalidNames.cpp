#include "registration/invalidNames.h"

#include "registration/CRegisteredGroup.h"
#include "text/formatLocation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <utility>
#include <variant>

namespace qix::detail
{

namespace
{

using Child = CRegisteredGroup::Child;

// The name of a group is part of the format with which its header is printed.
bool hasFormat(std::string const& path)
{
    return path.find('%') != std::string::npos;
}

bool hasEmptyComponent(std::string const& path)
{
    return ("." + path + ".").find("..") != std::string::npos;
}

/// A child of a group as far as its name goes.
struct NamedChild
{
    std::string_view name;
    SourceLocation location;
    bool isGroup;
};

NamedChild named(RegisteredTest const& test)
{
    return {test.name, test.getLocation(), false};
}

NamedChild named(RegisteredSpecialPtr const& test)
{
    return named(*test);
}

NamedChild named(zel::P<CRegisteredGroup> const& group)
{
    std::string_view const path = group->getPath();
    return {path.substr(path.rfind('.') + 1), group->getLocation(), true};
}

NamedChild named(Child const& child)
{
    return std::visit([](auto const& kind) { return named(kind); }, child);
}

void listGroupName(CRegisteredGroup const& group, SourceLocation const& location,
                   std::vector<std::string>& invalidNames)
{
    std::string const& path = group.getPath();
    if (hasFormat(path))
    {
        invalidNames.push_back("the name of the group " + path + " contains a %, at " +
                               formatLocation(location));
    }
    else if (hasEmptyComponent(path))
    {
        invalidNames.push_back("the name of a group is empty in \"" + path + "\", at " +
                               formatLocation(location));
    }
}

std::string describeDuplicates(std::string const& path, NamedChild const& first,
                               NamedChild const& second)
{
    std::string const places[] = {" at " + formatLocation(first.location),
                                  formatLocation(second.location)};
    if (!first.isGroup && !second.isGroup)
    {
        return "two tests are named " + path + "," + places[0] + " and " + places[1];
    }
    std::string const kinds[] = {first.isGroup ? "a group" : "a test",
                                 second.isGroup ? "a group" : "a test"};
    return path + " is " + kinds[0] + places[0] + " and " + kinds[1] + " at " + places[1];
}

void listDuplicates(CRegisteredGroup const& group, std::vector<std::string>& invalidNames)
{
    std::map<std::string_view, NamedChild> children;
    for (Child const& child : group.getRegistered())
    {
        NamedChild const second = named(child);
        auto const [first, isNew] = children.emplace(second.name, second);
        if (!isNew)
        {
            std::string const path = group.getPath() + "." + std::string(second.name);
            invalidNames.push_back(describeDuplicates(path, first->second, second));
        }
    }
}

/// A set of hashes that only grows, for a known number of them.
class CHashSet
{
public:
    explicit CHashSet(std::size_t count)
    {
        std::size_t size = 1;
        while (size < 2 * count)
        {
            size *= 2;
        }
        m_slots.resize(size);
    }

    /// False when the hash is there already, or seldom when another one is.
    bool insert(std::uint64_t hash)
    {
        // Open addressing: the low half of a hash picks the slot, the high half is stored. A slot
        // with 0 is free.
        std::uint32_t const stored = static_cast<std::uint32_t>(hash >> 32U) | 1U;
        std::size_t const last = m_slots.size() - 1;
        std::size_t slot = hash & last;
        while (m_slots[slot] != 0 && m_slots[slot] != stored)
        {
            slot = (slot + 1) & last;
        }
        return std::exchange(m_slots[slot], stored) != stored;
    }

private:
    std::vector<std::uint32_t> m_slots;
};

/// Never false when two children have the same name, and seldom true when none have: compares
/// hashes, since comparing all names takes longer than running tests that do nothing.
bool mayHaveDuplicates(std::deque<Child> const& children)
{
    CHashSet hashes(children.size());
    return !std::all_of(children.begin(), children.end(),
                        [&hashes](Child const& child) {
                            return hashes.insert(std::hash<std::string_view>()(named(child).name));
                        });
}

} // namespace

std::vector<std::string> listInvalidNames(CRegisteredGroup const& group)
{
    std::vector<std::string> invalidNames;
    std::deque<Child> const& children = group.getRegistered();
    auto const firstTest = std::find_if(children.begin(), children.end(),
                                        [](Child const& child) { return !named(child).isGroup; });
    if (firstTest != children.end())
    {
        listGroupName(group, named(*firstTest).location, invalidNames);
    }
    if (mayHaveDuplicates(children))
    {
        listDuplicates(group, invalidNames);
    }
    return invalidNames;
}

} // namespace qix::detail
