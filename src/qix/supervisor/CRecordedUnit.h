#pragma once

#include "supervisor/IMessageSource.h"
#include "supervisor/PrintedText.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// All that the process of a unit has told, kept until it is known whether that counts.
class CRecordedUnit : public IMessageSource
{
public:
    /// Takes all messages.
    /// \param source   prints into the text
    /// \param printed  what is printed before each message
    CRecordedUnit(IMessageSource& source, PrintedText& printed);

    /// What is told of the first failure of the unit, or of something in it, if there is any.
    std::optional<std::string> firstFailure() const;

    CMessageReader next() override;
    void mute(bool isMuted) override { m_isMuted = isMuted; }

private:
    struct Entry
    {
        PrintedText printed; ///< in front of the message
        std::string message;
    };

    std::vector<Entry> m_entries;
    std::size_t m_next = 0;
    bool m_isMuted = false;
};

} // namespace qix
