#pragma once

#include <exception>
#include <string>
#include <typeinfo>

namespace qix
{

/// The type as it is written in a source.
std::string typeText(std::type_info const& type);

/// The type of the exception and its message, and in lines below them its causes.
std::string exceptionText(std::exception const& exception);

/// The same without the message of the exception itself.
std::string exceptionOrigin(std::exception const& exception);

/// The message of the exception being handled: what() of it, or the text that was thrown; empty
/// when there is none.
std::string currentMessage();

/// The type of the exception being handled and, when it has one, its message.
std::string currentExceptionText();

} // namespace qix
