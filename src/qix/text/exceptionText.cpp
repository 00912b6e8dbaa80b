#include "text/exceptionText.h"

#include "text/messageOf.h"

#include <cstdlib>
#include <memory>
#include <string_view>

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
        std::string const message = currentMessage();
        return typeText(type) + (message.empty() ? "" : ": " + message);
    }
}

std::string currentMessage()
{
    if (std::current_exception() == nullptr)
    {
        return "";
    }
    try
    {
        throw;
    }
    catch (std::exception const& e)
    {
        return messageOf(e);
    }
    catch (char const* text)
    {
        return text == nullptr ? "" : text;
    }
    catch (std::string const& text)
    {
        return text;
    }
    catch (std::string_view text)
    {
        return std::string(text);
    }
    catch (...)
    {
        return "";
    }
}

} // namespace qix
