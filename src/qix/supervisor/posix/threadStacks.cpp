#include "supervisor/posix/threadStacks.h"

#include "supervisor/posix/programOutput.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

namespace qix
{

namespace
{

/// It reads the debug information of all libraries.
constexpr std::chrono::seconds patience(30);

bool beginsWith(std::string_view text, std::string_view begin)
{
    return text.substr(0, begin.size()) == begin;
}

/// "#3  0x0001 in function (argument=...) at file:line" without what tells nothing.
std::string frameOf(std::string_view line)
{
    constexpr std::string_view afterAddress = " in ";
    line.remove_prefix(std::min(line.find_first_not_of("#0123456789 "), line.size()));
    std::size_t const address = beginsWith(line, "0x") ? line.find(afterAddress) : line.npos;
    line.remove_prefix(address == line.npos ? 0 : address + afterAddress.size());
    std::string frame(line);
    std::size_t const arguments = frame.find(" (");
    std::size_t const end = frame.find(") ", arguments);
    if (arguments != frame.npos && end != frame.npos)
    {
        frame.replace(arguments, end + 1 - arguments, "()");
    }
    return frame;
}

/// Those in which every test runs.
bool isOfRunner(std::string const& frame)
{
    constexpr std::string_view names[] = {"qix::",        "zel::",       "std::", "main()",
                                          "__libc_start", "_start",      "??",    "start_thread",
                                          "clone",        "__GI___clone"};
    constexpr std::string_view places[] = {"/src/qix/", "/include/qix/", "/libqix.so"};
    return std::any_of(std::begin(names), std::end(names),
                       [&frame](std::string_view name) { return beginsWith(frame, name); }) ||
           std::any_of(std::begin(places), std::end(places),
                       [&frame](std::string_view place)
                       { return frame.find(place) != frame.npos; });
}

class CThreads
{
public:
    void add(std::string const& line)
    {
        if (beginsWith(line, "Thread "))
        {
            m_threads.emplace_back();
        }
        else if (beginsWith(line, "#") && !m_threads.empty())
        {
            m_threads.back().push_back(frameOf(line));
        }
    }

    /// The debugger tells of the last one first.
    std::string describe()
    {
        std::string text;
        std::reverse(m_threads.begin(), m_threads.end());
        for (std::size_t i = 0; i < m_threads.size(); ++i)
        {
            text += "\n    thread " + std::to_string(i + 1) + ":";
            while (!m_threads[i].empty() && isOfRunner(m_threads[i].back()))
            {
                m_threads[i].pop_back();
            }
            for (std::string const& frame : m_threads[i])
            {
                text += "\n        " + frame;
            }
        }
        return text;
    }

private:
    std::vector<std::vector<std::string>> m_threads;
};

} // namespace

std::string describeThreads(pid_t process)
{
    std::istringstream output(
        programOutput({"gdb", "--nx", "--batch", "--quiet", "-ex", "set print frame-arguments none",
                       "-ex", "set print address off", "-ex", "set debuginfod enabled off", "-p",
                       std::to_string(process), "-ex", "thread apply all backtrace 64"},
                      patience));
    CThreads threads;
    for (std::string line; std::getline(output, line);)
    {
        threads.add(line);
    }
    return threads.describe();
}

} // namespace qix
