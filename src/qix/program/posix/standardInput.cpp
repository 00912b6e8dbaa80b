#include "program/posix/standardInput.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace qix
{

namespace
{

dev_t const nullDevice = makedev(1, 3);

bool isReadable()
{
    return (fcntl(STDIN_FILENO, F_GETFL) & O_ACCMODE) != O_WRONLY;
}

bool isAtEndOfFile(struct stat const& file)
{
    return lseek(STDIN_FILENO, 0, SEEK_CUR) >= file.st_size;
}

bool hasPipeEnded()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) == 1 && (input.revents & POLLIN) == 0;
}

bool hasConnectionEnded()
{
    char byte = 0;
    return recv(STDIN_FILENO, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

} // namespace

bool hasStandardInputEnded()
{
    struct stat file = {};
    if (!isReadable() || fstat(STDIN_FILENO, &file) != 0)
    {
        return true;
    }
    switch (file.st_mode & S_IFMT)
    {
    case S_IFREG:
        return isAtEndOfFile(file);
    case S_IFIFO:
        return hasPipeEnded();
    case S_IFSOCK:
        return hasConnectionEnded();
    case S_IFCHR:
        return file.st_rdev == nullDevice;
    default:
        return S_ISDIR(file.st_mode);
    }
}

} // namespace qix
