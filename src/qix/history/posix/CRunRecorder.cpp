#include "history/posix/CRunRecorder.h"

#include "text/CTextHash.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qix
{

namespace
{

std::size_t sizeOfIds(std::vector<CRunRecorder::Test> const& tests) noexcept
{
    std::size_t size = 0;
    for (CRunRecorder::Test const& test : tests)
    {
        size += test.id.size();
    }
    return size;
}

/// False for what somebody else may have put there, and when another process has taken the name
/// away from the file since it was opened.
bool isOwnFile(int descriptor, std::string const& name)
{
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(name.c_str(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev &&
           S_ISREG(opened.st_mode) && opened.st_uid == geteuid() && opened.st_nlink == 1;
}

} // namespace

CRunRecorder::CRunRecorder(std::string const& file, std::uint32_t run,
                           std::vector<Test> const& tests)
    : m_run(run)
{
    if (!isOtherRecording(file) && makeFile(file, tests))
    {
        m_records =
            reinterpret_cast<HistoryRecord*>(static_cast<char*>(m_memory) + sizeof(HistoryHeader));
    }
}

CRunRecorder::~CRunRecorder()
{
    if (m_memory != nullptr)
    {
        munmap(m_memory, m_size);
    }
    if (m_file != -1)
    {
        close(m_file);
    }
}

/// Whoever records holds a lock on the file, which ends with the process.
bool CRunRecorder::isOtherRecording(std::string const& file) const
{
    int const other = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (other == -1)
    {
        return false;
    }
    bool const isLocked = flock(other, LOCK_EX | LOCK_NB) != 0;
    close(other);
    return isLocked;
}

/// The new file takes the old one's place when it is complete, so that a process that is killed
/// meanwhile leaves the old one.
bool CRunRecorder::makeFile(std::string const& file, std::vector<Test> const& tests)
{
    constexpr mode_t readableForAll = 0666;
    std::string const newFile = file + ".new";
    m_size = sizeof(HistoryHeader) + tests.size() * sizeof(HistoryRecord) + sizeOfIds(tests);
    m_file = open(newFile.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                  readableForAll);
    if (m_file == -1 || flock(m_file, LOCK_EX | LOCK_NB) != 0 || !isOwnFile(m_file, newFile))
    {
        return false;
    }
    bool const isMade =
        makeRoom() && fill(tests) && std::rename(newFile.c_str(), file.c_str()) == 0;
    if (!isMade)
    {
        static_cast<void>(unlink(newFile.c_str()));
    }
    return isMade;
}

/// Without room on the disk a store into the memory would end the process.
bool CRunRecorder::makeRoom()
{
    if (ftruncate(m_file, 0) != 0 || posix_fallocate(m_file, 0, static_cast<off_t>(m_size)) != 0)
    {
        return false;
    }
    void* const memory =
        mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, m_file, 0);
    m_memory = memory == MAP_FAILED ? nullptr : memory;
    return m_memory != nullptr;
}

bool CRunRecorder::fill(std::vector<Test> const& tests) noexcept
{
    char* const bytes = static_cast<char*>(m_memory);
    char* const records = bytes + sizeof(HistoryHeader);
    char* const ids = records + tests.size() * sizeof(HistoryRecord);
    CTextHash hash;
    std::uint64_t end = 0;
    for (Test const& test : tests)
    {
        std::copy(test.id.begin(), test.id.end(), ids + end);
        hash.add(test.id);
        end += test.id.size();
    }
    std::uint64_t const idBytes = end;
    end = 0;
    for (std::size_t i = 0; i < tests.size(); ++i)
    {
        RememberedTest const& known = tests[i].remembered;
        end += tests[i].id.size();
        hash.add(end);
        HistoryRecord const record = {end, known.microseconds, known.run,
                                      static_cast<std::uint32_t>(known.outcome)};
        std::memcpy(records + i * sizeof record, &record, sizeof record);
    }
    HistoryHeader header = {{}, historyVersion, m_run, tests.size(), idBytes, hash.get()};
    std::copy(std::begin(historyMark), std::end(historyMark), header.mark);
    std::memcpy(bytes, &header, sizeof header);
    return true;
}

void CRunRecorder::noteBegin(std::size_t test) noexcept
{
    if (m_records != nullptr)
    {
        m_records[test].outcome = static_cast<std::uint32_t>(RememberedTest::Outcome::Running);
        m_records[test].run = m_run;
    }
}

void CRunRecorder::noteEnd(std::size_t test, RememberedTest::Outcome outcome,
                           std::uint64_t microseconds) noexcept
{
    if (m_records == nullptr)
    {
        return;
    }
    if (outcome == RememberedTest::Outcome::Passed)
    {
        m_records[test].microseconds = microseconds;
    }
    m_records[test].outcome = static_cast<std::uint32_t>(outcome);
}

} // namespace qix
