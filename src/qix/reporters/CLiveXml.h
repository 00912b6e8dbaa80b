#pragma once

#include "reporters/ILiveFile.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qix
{

/// An XML file that grows by records, and is well-formed whenever the process is killed.
///
/// Behind the last record stands a processing instruction of blanks. The next record is written
/// into it together with the beginning of the next such instruction; then one byte closes the
/// first one, and the record is a part of the document. When the same byte becomes a blank again
/// the record is hidden: it is inside of the instruction in front of it. Two records are told
/// apart by this alone, so that no record may have a question mark.
class CLiveXml
{
public:
    /// Tells a record that can be hidden.
    using Record = std::size_t;

    /// \param file  outlives this
    /// \param head  the document up to the first record
    /// \param foot  what closes the elements that the head has opened
    CLiveXml(ILiveFile& file, std::string head, std::string foot);

    /// Makes the file. False when it cannot be made, now or by the operations that follow; these
    /// do nothing then.
    bool start();

    /// Adds a record that stays.
    bool add(std::string_view record);

    /// Adds a record that is going to be hidden.
    bool addForNow(std::string_view record, Record& added);

    void hide(Record record);

    /// All records that are not hidden.
    std::string visibleRecords() const;

private:
    struct Mark
    {
        Record record;
        std::size_t position; ///< of the byte that hides it
    };

    bool grow(std::size_t room);
    std::string compacted(bool keepsMarks, std::vector<Mark>& marks) const;

    ILiveFile& m_file;
    std::string m_head;
    std::string m_foot;
    std::size_t m_next = 0; ///< where the last processing instruction begins
    std::size_t m_end = 0;  ///< behind its blanks
    std::size_t m_lastRecord = 0;
    std::vector<Mark> m_marks; ///< in the order of their positions
    std::string m_written;
    bool m_isUsable = false;
};

} // namespace qix
