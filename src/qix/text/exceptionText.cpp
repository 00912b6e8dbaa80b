#include "text/exceptionText.h"

#include "text/forcedUnwind.h"
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

namespace
{

/// A line for what was handled when the exception was thrown, and for its cause in turn.
QIX_CATCHES_FORCED_UNWIND std::string causeText(std::nested_exception const& nesting)
{
    if (nesting.nested_ptr() == nullptr)
    {
        return "";
    }
    try
    {
        nesting.rethrow_nested();
    }
    catch (abi::__forced_unwind const&)
    {
        throw;
    }
    catch (...)
    {
        return "\ncaused by " + currentExceptionText();
    }
}

} // namespace

std::string exceptionText(std::exception const& exception)
{
    std::string const text = typeText(typeid(exception)) + ": " + messageOf(exception);
    auto const* const nesting = dynamic_cast<std::nested_exception const*>(&exception);
    return nesting == nullptr ? text : text + causeText(*nesting);
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
    catch (std::string_view const& text)
    {
        return std::string(text);
    }
    catch (...)
    {
        return "";
    }
}

} // namespace qix
