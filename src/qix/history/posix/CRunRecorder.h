#pragma once

#include "history/RunHistory.h"
#include "history/historyFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qix
{

/// Remembers in a file how tests end. The file is a part of the memory: noting costs no system
/// call, and what has been noted is there when the process is killed.
class CRunRecorder
{
public:
    /// A test of which something can be noted.
    struct Test
    {
        std::string id;
        RememberedTest remembered; ///< what is known so far
    };

    /// Replaces the file by one with these tests. Nothing is recorded when that is not possible,
    /// on a full disk say, or while another process records into the same file.
    /// \param run  the number of this run
    CRunRecorder(std::string const& file, std::uint32_t run, std::vector<Test> const& tests);
    CRunRecorder(CRunRecorder const&) = delete;
    CRunRecorder& operator=(CRunRecorder const&) = delete;
    ~CRunRecorder();

    /// True when the file could be made.
    bool isRecording() const noexcept { return m_records != nullptr; }

    /// Does nothing unless it is recording.
    /// \param test  the index in the list of tests
    void noteBegin(std::size_t test) noexcept;

    /// Does nothing unless it is recording.
    void noteEnd(std::size_t test, RememberedTest::Outcome outcome,
                 std::uint64_t microseconds) noexcept;

private:
    bool makeFile(std::string const& file, std::vector<Test> const& tests);
    bool isOtherRecording(std::string const& file) const;
    bool makeRoom();
    bool fill(std::vector<Test> const& tests) noexcept;

    std::uint32_t m_run;
    int m_file = -1;
    void* m_memory = nullptr;
    std::size_t m_size = 0;
    HistoryRecord volatile* m_records = nullptr; ///< volatile: each store is to reach the memory
};

} // namespace qix
