#include "supervisor/posix/processTree.h"

#include "supervisor/posix/CDescriptor.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <map>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

struct Status
{
    char state = 'Z';
    pid_t parent = 0;
};

/// The name of the program stands in parentheses and may hold any others.
Status statusOf(pid_t process)
{
    std::string const text = readOfProcess(process, "stat");
    std::size_t const end = text.rfind(')');
    if (end == std::string::npos || text.size() < end + 4)
    {
        return {};
    }
    return {text[end + 2], static_cast<pid_t>(std::strtol(text.c_str() + end + 4, nullptr, 10))};
}

std::multimap<pid_t, pid_t> listChildren()
{
    std::multimap<pid_t, pid_t> children;
    DIR* const folder = opendir("/proc");
    if (folder == nullptr)
    {
        return children;
    }
    for (dirent const* entry = readdir(folder); entry != nullptr; entry = readdir(folder))
    {
        auto const process = static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10));
        Status const status = process > 0 ? statusOf(process) : Status();
        if (status.state != 'Z')
        {
            children.emplace(status.parent, process);
        }
    }
    closedir(folder);
    return children;
}

} // namespace

std::string readOfProcess(pid_t process, std::string const& name)
{
    std::string text;
    std::array<char, 4096> buffer{};
    std::string const path = "/proc/" + std::to_string(process) + '/' + name;
    CDescriptor const file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    for (ssize_t count = read(file.get(), buffer.data(), buffer.size()); count > 0;
         count = read(file.get(), buffer.data(), buffer.size()))
    {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

std::vector<pid_t> listDescendants(pid_t ancestor)
{
    std::multimap<pid_t, pid_t> const children = listChildren();
    std::vector<pid_t> found = {ancestor};
    for (std::size_t i = 0; i < found.size(); ++i)
    {
        auto const [first, last] = children.equal_range(found[i]);
        std::transform(first, last, std::back_inserter(found),
                       [](auto const& entry) { return entry.second; });
    }
    found.erase(found.begin());
    return found;
}

std::string commandOf(pid_t process)
{
    std::string command = readOfProcess(process, "cmdline");
    while (!command.empty() && command.back() == '\0')
    {
        command.pop_back();
    }
    std::replace(command.begin(), command.end(), '\0', ' ');
    return command;
}

bool reapAll() noexcept
{
    pid_t ended = waitpid(-1, nullptr, WNOHANG);
    while (ended > 0)
    {
        ended = waitpid(-1, nullptr, WNOHANG);
    }
    return ended == 0;
}

/// One that was forked while the list was made is in the next one.
std::vector<pid_t> stopDescendants()
{
    constexpr int mostRounds = 100;
    std::vector<pid_t> stopped;
    bool isAnyNew = true;
    for (int round = 0; isAnyNew && round < mostRounds; ++round)
    {
        isAnyNew = false;
        for (pid_t const process : listDescendants(getpid()))
        {
            bool const isKnown =
                std::find(stopped.begin(), stopped.end(), process) != stopped.end();
            if (!isKnown && statusOf(process).state != 'T' && kill(process, SIGSTOP) == 0)
            {
                stopped.push_back(process);
                isAnyNew = true;
            }
        }
    }
    return stopped;
}

/// A list may miss one that was forked while it was made, whose parent has ended by then. Whoever
/// loses its parent becomes a child of this process, so that there is an end for certain.
void killDescendants()
{
    constexpr int mostRounds = 10000;
    constexpr std::chrono::milliseconds pause(1);
    bool isAnyLeft = reapAll();
    for (int round = 0; isAnyLeft && round < mostRounds; ++round)
    {
        for (pid_t const process : listDescendants(getpid()))
        {
            kill(process, SIGKILL);
        }
        std::this_thread::sleep_for(pause);
        isAnyLeft = reapAll();
    }
}

} // namespace qix
