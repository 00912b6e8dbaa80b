#include <qix/detail/death.h>

#include "checks/posix/childProcess.h"
#include "testing/capturedText.h"

#include <cstring>

namespace qix::detail
{

namespace
{

std::string quoted(std::string_view text)
{
    CValueWriter out;
    out.quoted(text);
    return out.written();
}

std::string textOf(ChildEnd const& end)
{
    switch (end.kind)
    {
    case ChildEnd::Returned:
        return "it returned";
    case ChildEnd::Threw:
        return "it threw " + end.thrown;
    case ChildEnd::Exited:
        return "it exited with status " + std::to_string(end.number);
    case ChildEnd::Killed:
        return "it was ended by signal " + std::to_string(end.number) + ", " +
               strsignal(end.number);
    case ChildEnd::Unknown:
        break;
    }
    return "nobody knows how it ended: SIGCHLD is ignored, or somebody else waits for processes";
}

} // namespace

bool runInChild(ProcessEnd end, CFunctionRef statement, int number, std::string& written)
{
    ChildEnd const found = callInChildProcess(statement);
    written = found.written;
    auto const kind = end == ProcessEnd::BySignal ? ChildEnd::Killed : ChildEnd::Exited;
    bool const isExpected = found.kind == kind && found.number == number;
    if (!isExpected)
    {
        setCapturedText(textOf(found) + (written.empty()
                                             ? ""
                                             : "\nit wrote to standard error: " + quoted(written)));
    }
    return isExpected;
}

bool containsText(std::string_view written, std::string_view text)
{
    bool const contains = written.find(text) != std::string_view::npos;
    if (!contains)
    {
        captureMismatch(written, "contains " + quoted(text));
    }
    return contains;
}

void captureMismatch(std::string_view written, std::string_view expected)
{
    setCapturedText("it wrote " + quoted(written) +
                    " to standard error; expected: " + std::string(expected));
}

} // namespace qix::detail
