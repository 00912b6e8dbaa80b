#pragma once

#include <qix/TestOutcome.h>

#include "model/TestProcess.h"
#include "supervisor/Message.h"

#include <exception>
#include <functional>
#include <optional>

namespace qix
{

/// Adds what readOutcome() reads. How long it took is no part of it.
void addOutcome(CMessageWriter& message, TestOutcome const& outcome);

TestOutcome readOutcome(CMessageReader& message);

/// @{
/// At the end of a message, where there may be nothing.
void addUsage(CMessageWriter& message, ProcessUsage const& usage);
std::optional<ProcessUsage> readUsage(CMessageReader& message);
/// @}

/// Throws what makes a runner report this outcome, unless it is Ok.
void throwOutcome(TestOutcome const& outcome);

/// Calls the function with what throwOutcome() would throw.
void withException(TestOutcome const& outcome,
                   std::function<void(std::exception const&)> const& function);

} // namespace qix
