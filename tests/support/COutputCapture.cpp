#include "COutputCapture.h"

#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace test
{

namespace
{

[[noreturn]] void throwErrno(char const* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

COutputCapture::COutputCapture() : m_file(std::tmpfile()), m_oldOutput(-1)
{
    if (m_file == nullptr)
    {
        throwErrno("tmpfile");
    }
    std::fflush(stdout);
    m_oldOutput = dup(STDOUT_FILENO);
    if (m_oldOutput == -1 || dup2(fileno(m_file), STDOUT_FILENO) == -1)
    {
        throwErrno("dup");
    }
}

COutputCapture::~COutputCapture()
{
    std::fflush(stdout);
    dup2(m_oldOutput, STDOUT_FILENO);
    close(m_oldOutput);
    std::fclose(m_file);
}

std::string COutputCapture::getText() const
{
    std::fflush(stdout);
    return getFlushedText();
}

std::string COutputCapture::getFlushedText() const
{
    std::string text;
    char block[4096];
    ssize_t length = 0;
    while ((length = pread(fileno(m_file), block, sizeof(block), static_cast<off_t>(text.size()))) >
           0)
    {
        text.append(block, static_cast<std::size_t>(length));
    }
    return text;
}

} // namespace test
