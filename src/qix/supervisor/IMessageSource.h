#pragma once

#include "supervisor/Message.h"

namespace qix
{

/// Gives the messages of one unit, and what its process has printed between them.
class IMessageSource
{
public:
    virtual ~IMessageSource() = default;

    /// Takes the next message, and prints what its process has printed before it. Waits for it.
    /// Behind the last one, that is given again. It is valid up to the next call.
    virtual CMessageReader next() = 0;

    /// While it is muted, nothing is printed of what the process has printed.
    virtual void mute(bool isMuted) = 0;
};

} // namespace qix
