#pragma once

#include <mutex>
#include <optional>
#include <string>

namespace qix
{

/// Keeps back what wxWidgets logs and asserts on this thread while it lives, since it quotes the
/// text that it complains about. What it complains about is noted in words of ours.
///
/// The log target and the assertion handler belong to the process, so that one thread at a time
/// has one of these and others wait. Messages of other threads go where they went before. Where
/// assertions are disabled they stay so, and what would be asserted is not noted.
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
