#include "text/exceptionText.h"

#include "text/messageOf.h"
#include "text/withIndentedLines.h"

#include <cstdlib>
#include <exception>
#include <memory>

#include <cxxabi.h>

namespace qix
{

namespace
{

std::string nameOfType(std::type_info const& type)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return name == nullptr ? type.name() : name.get();
}

} // namespace

std::string currentExceptionText()
{
    // One of another language has no type here, and throwing it again would end the process.
    if (std::current_exception() == nullptr)
    {
        return "an exception of another language";
    }
    std::string type = nameOfType(*abi::__cxa_current_exception_type());
    try
    {
        throw;
    }
    catch (std::exception const& e)
    {
        return type + ": " + withIndentedLines(messageOf(e));
    }
    catch (...)
    {
        return type;
    }
}

} // namespace qix
