#include "runner/posix/workDirectory.h"

#include <zel/CSystemAccountManager.h>
#include <zel/String.h>

#include <wx/filefn.h>
#include <wx/log.h>
#include <wx/strconv.h>
#include <wx/utils.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

#include <sys/stat.h>

namespace qix
{

namespace
{

char const workDirectoryVariable[] = "QIX_TESTWORKDIR";

/// The base folder as text, or nothing when the locale cannot decode the variable: a path that
/// does not encode to the variable's own bytes would name another folder.
std::optional<zel::String> readBaseFolder()
{
    wxString folder;
    if (!wxGetEnv(workDirectoryVariable, &folder))
    {
        return zel::String("testWork");
    }
    char const* const bytes = std::getenv(workDirectoryVariable);
    if (std::string(folder.fn_str()) != bytes)
    {
        return std::nullopt;
    }
    return zel::String(folder);
}

zel::String readUserName()
{
    zel::String name;
    try
    {
        name = zel::CSystemAccountManager::get()->getProcessUserName();
    }
    catch (std::exception const&)
    {
        // A user without an entry in the account database can still run tests.
    }
    return name.empty() ? zel::String("_") : name;
}

/// Errors are ignored here: entering the folder reports them.
void ensureFolder(zel::String const& folder)
{
    constexpr mode_t everythingAllowed = 0777;
    if (!wxDirExists(folder))
    {
        static_cast<void>(mkdir(folder.fn_str(), everythingAllowed));
    }
}

void printCannotEnter(std::string const& folder)
{
    std::puts(("Error: could not change working directory to '" + folder + "'").c_str());
}

/// Prints an empty line for a folder that the locale cannot encode.
void printCannotEnter(zel::String const& folder)
{
    wxCharBuffer const bytes = folder.mb_str(wxConvLocal);
    if (bytes.length() == 0)
    {
        std::puts("");
    }
    else
    {
        printCannotEnter(std::string(bytes.data(), bytes.length()));
    }
}

} // namespace

bool enterWorkDirectory()
{
    std::optional<zel::String> const baseFolder = readBaseFolder();
    if (!baseFolder)
    {
        printCannotEnter(std::getenv(workDirectoryVariable) + ("/" + readUserName()).toCPSafe());
        return false;
    }
    ensureFolder(*baseFolder);
    zel::String const folder = *baseFolder + "/" + readUserName();
    ensureFolder(folder);
    wxLogNull const suppressLog;
    if (!wxSetWorkingDirectory(folder))
    {
        printCannotEnter(folder);
        return false;
    }
    return true;
}

} // namespace qix
