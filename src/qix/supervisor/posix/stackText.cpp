#include "supervisor/posix/stackText.h"

#include "supervisor/posix/CDescriptor.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <system_error>
#include <vector>

#include <cxxabi.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

struct Frame
{
    std::string module;
    std::string function; ///< by the module's table of symbols; may be empty
    std::uintptr_t offset = 0;
};

std::string demangled(char const* name)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return text == nullptr ? name : text.get();
}

/// The program itself has no name there, and the one that it was started by may be relative.
std::string moduleOf(link_map const& module)
{
    std::error_code ignored;
    return module.l_name == nullptr || *module.l_name == '\0'
               ? std::filesystem::read_symlink("/proc/self/exe", ignored).string()
               : module.l_name;
}

/// An address to return to may stand behind the last instruction of its function.
Frame frameOf(void* address, bool isReturnAddress)
{
    Frame frame;
    Dl_info info = {};
    link_map* module = nullptr;
    char* const place = static_cast<char*>(address) - (isReturnAddress ? 1 : 0);
    if (dladdr1(place, &info, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) != 0)
    {
        frame.module = moduleOf(*module);
        frame.function = info.dli_sname == nullptr ? "" : demangled(info.dli_sname);
        frame.offset = reinterpret_cast<std::uintptr_t>(place) - module->l_addr;
    }
    return frame;
}

std::string moduleOfLibrary()
{
    return frameOf(reinterpret_cast<void*>(&describeStack), false).module;
}

/// Without the handler of the signal, and without whoever runs tests.
std::vector<Frame> framesOf(CrashState const& state)
{
    auto const* const all = state.frames.data();
    std::size_t const count = state.frameCount;
    std::size_t const first =
        static_cast<std::size_t>(std::find(all, all + count, state.fault.load()) - all);
    std::size_t const begin = first == count ? 0 : first;
    bool const isWhole = count < mostFrames && count > state.outerFrames;
    std::size_t const end = isWhole ? count - state.outerFrames : count;
    std::vector<Frame> frames;
    for (std::size_t i = begin; i < end; ++i)
    {
        frames.push_back(frameOf(all[i], i != begin));
    }
    std::string const library = moduleOfLibrary();
    while (isWhole && !frames.empty() && frames.back().module == library)
    {
        frames.pop_back();
    }
    return frames;
}

std::string readAll(int descriptor)
{
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = read(descriptor, buffer.data(), buffer.size()); count > 0;
         count = read(descriptor, buffer.data(), buffer.size()))
    {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

/// What the program prints, or nothing when it cannot be started.
std::string outputOf(std::vector<std::string> const& command)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string const& argument : command)
    {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    Pipe pipe = makePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe.writer.get(), STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    bool const isStarted =
        posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    pipe.writer.reset();
    if (!isStarted)
    {
        return "";
    }
    std::string text = readAll(pipe.reader.get());
    waitpid(process, nullptr, 0);
    return text;
}

std::string hexadecimal(std::uintptr_t number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "0x%" PRIxPTR, number);
    return text.data();
}

std::string withoutPlace(Frame const& frame)
{
    return (frame.function.empty() ? hexadecimal(frame.offset) : frame.function) + " in " +
           (frame.module.empty() ? "unknown code" : frame.module);
}

/// The compiler's folder and what it was told of the file are just put together.
std::string withShortPath(std::string const& line)
{
    constexpr char const mark[] = " at ";
    std::size_t const path = line.rfind(mark);
    return path == std::string::npos
               ? line
               : line.substr(0, path) + mark +
                     std::filesystem::path(line.substr(path + sizeof mark - 1))
                         .lexically_normal()
                         .string();
}

/// Asks for all frames of the module at once, since it is read anew each time.
/// \param wanted  indices of those frames
void findPlaces(std::vector<Frame> const& frames, std::vector<std::size_t> const& wanted,
                std::vector<std::string>& lines)
{
    std::vector<std::string> command = {"addr2line", "-f", "-C",
                                        "-p",        "-e", frames[wanted.front()].module};
    std::transform(wanted.begin(), wanted.end(), std::back_inserter(command),
                   [&](std::size_t i) { return hexadecimal(frames[i].offset); });
    std::istringstream output(outputOf(command));
    for (std::size_t const i : wanted)
    {
        std::string line;
        bool const isKnown = std::getline(output, line) && line.find("??") == std::string::npos;
        lines[i] = isKnown ? withShortPath(line) : withoutPlace(frames[i]);
    }
}

} // namespace

std::string describeStack(CrashState const& state)
{
    std::vector<Frame> const frames = framesOf(state);
    std::map<std::string, std::vector<std::size_t>> modules;
    for (std::size_t i = 0; i < frames.size(); ++i)
    {
        modules[frames[i].module].push_back(i);
    }
    std::vector<std::string> lines(frames.size());
    for (auto const& [module, wanted] : modules)
    {
        findPlaces(frames, wanted, lines);
    }
    std::string text;
    for (std::string const& line : lines)
    {
        text += "\n    " + line;
    }
    return text;
}

} // namespace qix
