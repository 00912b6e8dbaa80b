#include "text/exceptionText.h"

#include "text/forcedUnwind.h"
#include "text/messageOf.h"

#include <cstdlib>
#include <memory>
#include <string_view>

#include <cxxabi.h>

namespace qix
{

namespace
{

void replaceAll(std::string& text, std::string_view part, std::string_view by)
{
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size())
    {
        text.replace(at, part.size(), by);
    }
}

/// The name without what only the library's own sources know: what std::throw_with_nested() makes
/// of a type, and how texts are called.
std::string asWritten(std::string name)
{
    constexpr std::string_view nested = "std::_Nested_exception<";
    if (name.compare(0, nested.size(), nested) == 0)
    {
        name = name.substr(nested.size(), name.size() - nested.size() - 1);
        name.resize(name.find_last_not_of(' ') + 1);
    }
    replaceAll(name, "__cxx11::", "");
    replaceAll(name, "std::basic_string<char, std::char_traits<char>, std::allocator<char> >",
               "std::string");
    return name;
}

} // namespace

std::string typeText(std::type_info const& type)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return name == nullptr ? type.name() : asWritten(name.get());
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

std::string causeText(std::exception const& exception)
{
    auto const* const nesting = dynamic_cast<std::nested_exception const*>(&exception);
    return nesting == nullptr ? "" : causeText(*nesting);
}

} // namespace

std::string exceptionText(std::exception const& exception)
{
    return typeText(typeid(exception)) + ": " + messageOf(exception) + causeText(exception);
}

std::string exceptionOrigin(std::exception const& exception)
{
    return typeText(typeid(exception)) + causeText(exception);
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
