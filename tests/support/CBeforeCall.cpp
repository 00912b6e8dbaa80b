#include "CBeforeCall.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <utility>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace test
{

namespace
{

thread_local std::vector<CBeforeCall*> g_expected;
thread_local bool g_isActing = false;

bool fails(char const* function)
{
    if (g_isActing)
    {
        return false;
    }
    g_isActing = true;
    int error = 0;
    for (CBeforeCall* const expected : g_expected)
    {
        error = std::max(error, expected->errorOf(function));
    }
    g_isActing = false;
    if (error != 0)
    {
        errno = error;
    }
    return error != 0;
}

/// The function of the C library that the one of this file stands in front of.
template <typename Function>
Function realOf(Function /*same type*/, char const* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | __O_TMPFILE)) == 0 ? 0 : va_arg(arguments, mode_t);
}

} // namespace

CBeforeCall::CBeforeCall(std::string function, int number, std::function<int()> action)
    : m_function(std::move(function)), m_number(number), m_action(std::move(action))
{
    g_expected.push_back(this);
}

CBeforeCall::CBeforeCall(std::string function, int number, int error)
    : CBeforeCall(std::move(function), number, [error] { return error; })
{
}

CBeforeCall::~CBeforeCall()
{
    g_expected.erase(std::find(g_expected.begin(), g_expected.end(), this));
}

int CBeforeCall::errorOf(std::string const& function)
{
    if (function != m_function)
    {
        return 0;
    }
    ++m_count;
    if (m_number != everyCall && m_number != m_count)
    {
        return 0;
    }
    m_hasHappened = true;
    int const oldError = errno;
    int const error = m_action();
    errno = oldError;
    return error;
}

} // namespace test

// NOLINTBEGIN(cert-dcl50-cpp): the C library's own signatures
#define QIX_REPLACES extern "C" __attribute__((visibility("default")))

QIX_REPLACES int open(char const* path, int flags, ...)
{
    static auto* const real = test::realOf(&open, "open");
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = test::modeOf(flags, arguments);
    va_end(arguments);
    return test::fails("open") ? -1 : real(path, flags, mode);
}

QIX_REPLACES int openat(int folder, char const* path, int flags, ...)
{
    static auto* const real = test::realOf(&openat, "openat");
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = test::modeOf(flags, arguments);
    va_end(arguments);
    return test::fails("openat") ? -1 : real(folder, path, flags, mode);
}
// NOLINTEND(cert-dcl50-cpp)

QIX_REPLACES int fstat(int file, struct stat* status) noexcept
{
    static auto* const real = test::realOf(&fstat, "fstat");
    return test::fails("fstat") ? -1 : real(file, status);
}

QIX_REPLACES int fstatat(int folder, char const* path, struct stat* status, int flags) noexcept
{
    static auto* const real = test::realOf(&fstatat, "fstatat");
    return test::fails("fstatat") ? -1 : real(folder, path, status, flags);
}

QIX_REPLACES int unlinkat(int folder, char const* path, int flags) noexcept
{
    static auto* const real = test::realOf(&unlinkat, "unlinkat");
    return test::fails("unlinkat") ? -1 : real(folder, path, flags);
}

QIX_REPLACES int fchmodat(int folder, char const* path, mode_t mode, int flags) noexcept
{
    static auto* const real = test::realOf(&fchmodat, "fchmodat");
    return test::fails("fchmodat") ? -1 : real(folder, path, mode, flags);
}

QIX_REPLACES int mkdir(char const* path, mode_t mode) noexcept
{
    static auto* const real = test::realOf(&mkdir, "mkdir");
    return test::fails("mkdir") ? -1 : real(path, mode);
}

QIX_REPLACES DIR* fdopendir(int folder)
{
    static auto* const real = test::realOf(&fdopendir, "fdopendir");
    return test::fails("fdopendir") ? nullptr : real(folder);
}

QIX_REPLACES dirent* readdir(DIR* folder)
{
    static auto* const real = test::realOf(&readdir, "readdir");
    return test::fails("readdir") ? nullptr : real(folder);
}

#if defined(_FILE_OFFSET_BITS) && _FILE_OFFSET_BITS == 64
// This file defines openat64() above; the C++ library calls openat().
QIX_REPLACES int openatOfStandardLibrary(int folder, char const* path, int flags,
                                         ...) __asm__("openat");
int openatOfStandardLibrary(int folder, char const* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = test::modeOf(flags, arguments);
    va_end(arguments);
    return openat(folder, path, flags, mode);
}
#endif
