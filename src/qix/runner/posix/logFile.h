#pragma once

#include <zel/CError.h>

#include <cstdio>
#include <string>

namespace qix
{

/// Thrown instead of opening a log that is refused. Its message tells the file and why.
class CLogRefusedError : public zel::CError
{
public:
    using zel::CError::CError;
};

/// While one lives, a log is refused where opening it could do harm: where it is no regular file
/// (a named pipe waits for a reader, a link leads to some other file), where it belongs to another
/// user, and where a run of this process is writing it. Otherwise logs are opened whatever they
/// are.
class CLogProtection
{
public:
    CLogProtection() noexcept;
    ~CLogProtection();
    CLogProtection(CLogProtection const&) = delete;
    CLogProtection& operator=(CLogProtection const&) = delete;
};

/// Lets the logs of the folder that is the current one now be opened in another one; empty for the
/// same one.
void divertLogs(std::string const& folder);

/// Opens the file, empty, in the current folder or where its logs are diverted to. Null when that
/// fails. Throws CLogRefusedError when the file is refused.
std::FILE* openLogFile(char const* name);

/// Closes what openLogFile() has opened.
void closeLogFile(std::FILE* log);

} // namespace qix
