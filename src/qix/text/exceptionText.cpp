#include "text/exceptionText.h"

#include "text/messageOf.h"

#include <cstdlib>
#include <memory>

#include <cxxabi.h>

namespace qix
{

std::string typeText(std::type_info const& type)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return name == nullptr ? type.name() : name.get();
}

std::string exceptionText(std::exception const& exception)
{
    return typeText(typeid(exception)) + ": " + messageOf(exception);
}

std::string currentExceptionText()
{
    // An exception of another language has no type, and rethrowing it would end the process.
    if (std::current_exception() == nullptr)
    {
        return "an exception of another language";
    }
    std::type_info const& type = *abi::__cxa_current_exception_type();
    try
    {
        throw;
    }
    catch (std::exception const& e)
    {
        return exceptionText(e);
    }
    catch (...)
    {
        return typeText(type);
    }
}

} // namespace qix
