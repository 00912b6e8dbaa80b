#include "reporters/posix/CAppendedFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace qix
{

CAppendedFile::CAppendedFile(std::string const& file)
    : m_file(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666))
{
    if (m_file == -1)
    {
        m_error = std::strerror(errno);
    }
}

CAppendedFile::~CAppendedFile()
{
    if (m_file != -1)
    {
        close(m_file);
    }
}

void CAppendedFile::append(std::string_view bytes)
{
    while (m_error.empty() && !bytes.empty())
    {
        ssize_t const written = write(m_file, bytes.data(), bytes.size());
        if (written >= 0)
        {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        else if (errno != EINTR)
        {
            m_error = std::strerror(errno);
        }
    }
}

} // namespace qix
