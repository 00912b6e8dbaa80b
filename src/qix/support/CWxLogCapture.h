#pragma once

#include <mutex>
#include <optional>
#include <string>

namespace qix
{

/// Captures what wxWidgets logs and asserts on this thread, since its messages quote the file that
/// they are about. Only whether there was a message, and its line number, is kept.
///
/// The log target and the assertion handler belong to the process, so that one thread at a time
/// captures and others wait. Messages of other threads go to the target that was set before. Where
/// assertions are disabled they stay so and are not captured.
class CWxLogCapture
{
public:
    CWxLogCapture();
    ~CWxLogCapture();
    CWxLogCapture(CWxLogCapture const&) = delete;
    CWxLogCapture& operator=(CWxLogCapture const&) = delete;

    /// The first diagnostic, or nothing when there was none. It quotes nothing.
    std::optional<std::string> getDiagnostic() const;

private:
    std::unique_lock<std::mutex> const m_lock;
};

} // namespace qix
