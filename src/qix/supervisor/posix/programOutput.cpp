#include "supervisor/posix/programOutput.h"

#include "supervisor/posix/CDescriptor.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

/// What a program is started with that has nothing to do with who starts it: standard error is
/// dropped, and no signal is blocked.
class CSpawnSettings
{
public:
    explicit CSpawnSettings(int output)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawnattr_init(&m_attributes);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK);
    }
    CSpawnSettings(CSpawnSettings const&) = delete;
    CSpawnSettings& operator=(CSpawnSettings const&) = delete;
    ~CSpawnSettings()
    {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_actions);
    }

    /// Nothing when it cannot be started.
    std::optional<pid_t> start(char* const* arguments) const
    {
        pid_t process = 0;
        bool const isStarted = posix_spawnp(&process, arguments[0], &m_actions, &m_attributes,
                                            arguments, environ) == 0;
        return isStarted ? std::optional(process) : std::nullopt;
    }

private:
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

/// Nothing when it takes longer.
std::optional<std::string> readAll(int descriptor, std::chrono::seconds longest)
{
    using Clock = std::chrono::steady_clock;
    auto const deadline = Clock::now() + longest;
    std::string text;
    std::array<char, 4096> buffer;
    for (;;)
    {
        auto const left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd pipe = {descriptor, POLLIN, 0};
        if (left.count() <= 0 || poll(&pipe, 1, static_cast<int>(left.count())) <= 0)
        {
            return std::nullopt;
        }
        ssize_t const count = read(descriptor, buffer.data(), buffer.size());
        if (count <= 0)
        {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

std::string programOutput(std::vector<std::string> const& command, std::chrono::seconds longest)
{
    std::vector<char*> arguments;
    std::transform(command.begin(), command.end(), std::back_inserter(arguments),
                   [](std::string const& argument) { return const_cast<char*>(argument.c_str()); });
    arguments.push_back(nullptr);
    Pipe pipe = makePipe();
    std::optional<pid_t> const process = CSpawnSettings(pipe.writer.get()).start(arguments.data());
    pipe.writer.reset();
    if (!process)
    {
        return "";
    }
    std::optional<std::string> const text = readAll(pipe.reader.get(), longest);
    if (!text)
    {
        kill(*process, SIGKILL);
    }
    waitpid(*process, nullptr, 0);
    return text.value_or("");
}

} // namespace qix
