#pragma once

#include <zel/String.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qix
{

/// What processes that run tests tell the one that supervises them. Each unit of work begins with
/// UnitBegin and ends with UnitEnd or Died.
enum class MessageKind : std::uint8_t
{
    UnitBegin,    ///< the index of the unit
    Printed,      ///< how much has been printed by now, on both streams
    Begin,        ///< a sub-test has been announced to the runner
    End,          ///< the innermost sub-test has ended
    Handed,       ///< an item has been handed to the runner
    Properties,   ///< that item is wanted, and this is what it tells of itself
    NoProperties, ///< that item is wanted, and has thrown when it was asked
    ItemEnd,      ///< the item that began last, or the unit, has ended
    HandedEnd,    ///< the runner is done with the item that was handed over
    UnitEnd,      ///< the unit has ended
    Leftover,     ///< the unit has left a process behind: its command
    Died          ///< the process has ended in the middle of the unit: why
};

/// Takes messages as bytes.
class IMessageSink
{
public:
    virtual ~IMessageSink() = default;
    virtual void send(std::string_view message) = 0;

    /// Something in the unit that is being run has failed.
    virtual void noteFailure() {}

    /// For how long this process has been stopped, in all; that time does not count.
    virtual std::chrono::nanoseconds suspended() const { return std::chrono::nanoseconds(0); }
};

/// Makes one message. Numbers and texts are read in the order in which they were added. The memory
/// goes from each to the next of its thread, so that most of them need none of their own.
class CMessageWriter
{
public:
    explicit CMessageWriter(MessageKind kind);
    CMessageWriter(CMessageWriter const&) = delete;
    CMessageWriter& operator=(CMessageWriter const&) = delete;
    ~CMessageWriter();

    CMessageWriter& add(std::uint64_t number);
    CMessageWriter& add(std::string_view text);

    /// Character for character, whatever they are.
    CMessageWriter& add(zel::String const& text);

    std::string_view bytes() const noexcept { return m_bytes; }

private:
    std::string m_bytes;
};

/// Reads one message.
class CMessageReader
{
public:
    /// \param bytes  not empty; outlive the reader
    explicit CMessageReader(std::string_view bytes) : m_bytes(bytes), m_rest(bytes.substr(1)) {}

    MessageKind kind() const noexcept { return static_cast<MessageKind>(m_bytes[0]); }

    bool isAtEnd() const noexcept { return m_rest.empty(); }

    /// All of it.
    std::string_view bytes() const noexcept { return m_bytes; }

    /// @{
    /// Throws std::out_of_range behind the end of the message.
    std::uint64_t number();
    std::string_view text();
    zel::String string();
    /// @}

private:
    std::string_view take(std::size_t size);

    std::string_view m_bytes;
    std::string_view m_rest;
};

} // namespace qix
