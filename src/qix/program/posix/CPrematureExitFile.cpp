#include "program/posix/CPrematureExitFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

namespace qix
{

CPrematureExitFile::CPrematureExitFile(std::string const& file) : m_file(file), m_process(getpid())
{
    errno = 0;
    if (!m_file.empty() && !std::ofstream(m_file))
    {
        throw std::runtime_error("TEST_PREMATURE_EXIT_FILE=" + m_file +
                                 " cannot be written: " + std::strerror(errno));
    }
}

CPrematureExitFile::~CPrematureExitFile()
{
    if (!m_file.empty() && getpid() == m_process)
    {
        unlink(m_file.c_str());
    }
}

} // namespace qix
