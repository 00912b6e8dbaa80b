#include "supervisor/posix/stackText.h"

#include "supervisor/posix/programOutput.h"

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
#include <string_view>
#include <system_error>
#include <vector>

#include <cxxabi.h>
#include <dlfcn.h>
#include <link.h>

namespace qix
{

namespace
{

/// It reads the debug information of a library.
constexpr std::chrono::seconds patience(60);

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

/// The compiler's folder and what it was told of the file are just put together, and behind the
/// line may stand which of several pieces of its code it is.
std::string withShortPath(std::string const& line)
{
    constexpr char const mark[] = " at ";
    std::size_t const path = line.rfind(mark);
    if (path == std::string::npos)
    {
        return line;
    }
    std::size_t const begin = path + sizeof mark - 1;
    std::string const place = line.substr(begin, line.find(" (discriminator ", begin) - begin);
    return line.substr(0, begin) + std::filesystem::path(place).lexically_normal().string();
}

/// A text for each address, which may be empty. A function into which others were put has a line
/// for each of them.
std::vector<std::string> readPlaces(std::istream& output)
{
    constexpr std::string_view inlined = " (inlined by) ";
    std::vector<std::string> places;
    for (std::string line; std::getline(output, line);)
    {
        std::size_t const address = line.rfind("0x", 0) == 0 ? line.find(": ") : line.npos;
        if (address != line.npos)
        {
            std::string const place = line.substr(address + 2);
            bool const isKnown = place.find("??") == place.npos;
            places.push_back(isKnown ? withShortPath(place) : "");
        }
        else if (!places.empty() && line.rfind(inlined, 0) == 0)
        {
            places.back() += "\n    " + withShortPath(line.substr(inlined.size()));
        }
    }
    return places;
}

/// Asks for all frames of the module at once, since it is read anew each time.
///
/// \param wanted  indices of those frames
void findPlaces(std::vector<Frame> const& frames, std::vector<std::size_t> const& wanted,
                std::vector<std::string>& lines)
{
    std::vector<std::string> command = {"addr2line", "-a", "-f", "-C",
                                        "-i",        "-p", "-e", frames[wanted.front()].module};
    std::transform(wanted.begin(), wanted.end(), std::back_inserter(command),
                   [&](std::size_t i) { return hexadecimal(frames[i].offset); });
    std::istringstream output(programOutput(command, patience));
    std::vector<std::string> const places = readPlaces(output);
    for (std::size_t n = 0; n < wanted.size(); ++n)
    {
        bool const isKnown = n < places.size() && !places[n].empty();
        lines[wanted[n]] = isKnown ? places[n] : withoutPlace(frames[wanted[n]]);
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
