// Copies errors with each of the allocations failing in turn: std::bad_alloc reaches the caller,
// and nothing is leaked.

#include <zel/zel.h>

#include "memory.h"

#include <cstddef>
#include <cstdio>
#include <new>
#include <string>

namespace
{

namespace memory = faults::memory;

using Copy = void (*)(zel::CError const&);

void clone(zel::CError const& error)
{
    error.clone();
}

void throwClone(zel::CError const& error)
{
    try
    {
        error.throwClone();
    }
    catch (zel::CError const&)
    {
    }
}

/// \return false when the memory has not sufficed
bool copies(Copy copy, zel::CError const& error, std::size_t failingCall)
{
    bool complete = true;
    memory::failCalls(failingCall, 1);
    try
    {
        copy(error);
    }
    catch (std::bad_alloc const&)
    {
        complete = false;
    }
    // More calls than the failing one's number: it was among them.
    bool const hasFailed = memory::calls() > failingCall;
    memory::failNothing();
    if (complete == hasFailed)
    {
        throw std::string("the failure of allocation ") + std::to_string(failingCall) + " is lost";
    }
    return complete;
}

void checkCopies(Copy copy, zel::CError const& error)
{
    std::size_t const objects = memory::objects();
    std::size_t failingCall = 0;
    bool complete = false;
    while (!complete)
    {
        complete = copies(copy, error, failingCall);
        if (memory::objects() != objects)
        {
            throw std::string("allocation ") + std::to_string(failingCall) + " leaks when it fails";
        }
        ++failingCall;
    }
    std::printf("%zu allocations: %s\n", failingCall - 1, error.what());
    if (failingCall == 1)
    {
        throw std::string("nothing is allocated, so that nothing is tested");
    }
}

void checkAll()
{
    char const longText[] = "a text that is too long for the string itself";
    zel::CProps props;
    props.set(longText, longText);
    zel::CError const cause(longText);
    zel::CError const error(longText, longText, 1, props, &cause);
    zel::CInvalidArgError const invalidArg(longText, longText, props);
    zel::CBadPathError const badPath{zel::CPath(longText)};
    for (Copy const copy : {&clone, &throwClone})
    {
        checkCopies(copy, error);
        checkCopies(copy, invalidArg);
        checkCopies(copy, badPath);
    }
}

} // namespace

int main()
{
    try
    {
        checkAll();
    }
    catch (std::string const& failure)
    {
        std::fprintf(stderr, "%s\n", failure.c_str());
        return 1;
    }
    return 0;
}
