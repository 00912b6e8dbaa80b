#pragma once

#include <qix/detail/message.h>
#include <qix/export.h>

#include <iosfwd>

namespace qix::detail
{

/// A failed check whose message is being written.
///
/// The library owns it, so that a check needs no object with a destructor, which takes time to
/// compile. It has taken what its check kept, and so checks that fail in functions which are called
/// for the message do not. When an exception leaves the message, the failure is noted at the end of
/// the test's step, or of the thread.
class QIX_EXPORT CFailedCheck
{
public:
    CFailedCheck(CFailedCheck const&) = delete;
    CFailedCheck& operator=(CFailedCheck const&) = delete;

    // The && lets those stand back by which a user writes to whatever stream there is.
    template <typename T>
    CFailedCheck&& operator<<(T const& value) &&
    {
        writeMessage(message(), value);
        return static_cast<CFailedCheck&&>(*this);
    }

    CFailedCheck&& operator<<(std::ostream& (*manipulator)(std::ostream&)) &&
    {
        message().manipulate(manipulator);
        return static_cast<CFailedCheck&&>(*this);
    }

    CFailedCheck&& operator<<(std::ios_base& (*manipulator)(std::ios_base&)) &&
    {
        message().manipulate(manipulator);
        return static_cast<CFailedCheck&&>(*this);
    }

protected:
    CFailedCheck() = default;
    ~CFailedCheck() = default;

private:
    CMessageWriter& message();
};

/// Begins to tell of a failure, with what its check has kept. One of the operators below ends it.
/// \param check  the source text of the check; null for a message without one
QIX_EXPORT CFailedCheck&& failedCheck(char const* file, int line, char const* check);

// What a check does when its message is complete, for which & binds less tightly than <<.
enum NotesFailure
{
    notesFailure
};
enum EndsTest
{
    endsTest
};

/// Notes the failure. Throws when no test is running.
QIX_EXPORT void operator&(NotesFailure, CFailedCheck&& failed);

/// Notes the failure, and leaves the test.
[[noreturn]] QIX_EXPORT void operator&(EndsTest, CFailedCheck&& failed);

} // namespace qix::detail
