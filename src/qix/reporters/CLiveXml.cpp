#include "reporters/CLiveXml.h"

#include <algorithm>
#include <utility>

namespace qix
{

namespace
{

constexpr std::string_view opener = "<?q ?"; ///< a blank behind it hides, and ">" shows
constexpr std::size_t openerSize = opener.size() + 1;
constexpr std::string_view closer = " ?>";
constexpr char const hiding = ' ';
constexpr char const showing = '>';
constexpr std::size_t leastRoom = 4096;

} // namespace

CLiveXml::CLiveXml(ILiveFile& file, std::string head, std::string foot)
    : m_file(file), m_head(std::move(head)), m_foot(std::move(foot))
{
}

bool CLiveXml::start()
{
    m_isUsable = grow(leastRoom);
    return m_isUsable;
}

bool CLiveXml::add(std::string_view record)
{
    std::size_t const needed = record.size() + 2 * openerSize;
    if (m_isUsable && m_next + needed > m_end)
    {
        m_isUsable = grow(needed);
    }
    if (!m_isUsable)
    {
        return false;
    }
    m_written.assign(record).append(opener);
    m_file.write(m_next + openerSize, m_written);
    m_file.set(m_next + opener.size(), showing);
    m_next += openerSize + record.size();
    return true;
}

bool CLiveXml::addForNow(std::string_view record, Record& added)
{
    if (!add(record))
    {
        return false;
    }
    added = ++m_lastRecord;
    m_marks.push_back({added, m_next - record.size() - 1});
    return true;
}

void CLiveXml::hide(Record record)
{
    auto const mark = std::find_if(m_marks.begin(), m_marks.end(),
                                   [record](Mark const& m) { return m.record == record; });
    if (m_isUsable && mark != m_marks.end())
    {
        m_file.set(mark->position, hiding);
        m_marks.erase(mark);
    }
}

std::string CLiveXml::visibleRecords() const
{
    std::vector<Mark> marks;
    return compacted(false, marks).substr(m_head.size());
}

/// The file is replaced by one that has as much room again as there are records.
bool CLiveXml::grow(std::size_t room)
{
    std::vector<Mark> marks = m_marks;
    std::string bytes = m_next == 0 ? m_head : compacted(true, marks);
    std::size_t const next = bytes.size();
    bytes += opener;
    bytes.append(std::max({room, bytes.size(), leastRoom}), ' ');
    std::size_t const end = bytes.size();
    bytes += closer;
    bytes += m_foot;
    if (!m_file.replace(bytes))
    {
        return false;
    }
    m_marks = std::move(marks);
    m_next = next;
    m_end = end;
    return true;
}

/// The document up to the last processing instruction, without those in front of it and what they
/// hide.
/// \param keepsMarks  keeps those that can hide a record, and notes where they are then
std::string CLiveXml::compacted(bool keepsMarks, std::vector<Mark>& marks) const
{
    std::string const bytes = m_file.read();
    std::string text = m_head;
    std::size_t position = m_head.size();
    auto mark = marks.begin();
    while (position != m_next)
    {
        bool const isOpener = bytes.compare(position, opener.size(), opener) == 0;
        bool const isHidden = isOpener && bytes[position + opener.size()] == hiding;
        bool const isMarked =
            keepsMarks && mark != marks.end() && mark->position == position + opener.size();
        if (isHidden)
        {
            position = bytes.find("?>", position + openerSize) + 2;
            continue;
        }
        if (isMarked)
        {
            text += opener;
            text += showing;
            mark->position = text.size() - 1;
        }
        position += isOpener ? openerSize : 0;
        std::size_t const end = bytes.find(opener, position);
        text.append(bytes, position, end - position);
        position = end;
        if (isMarked)
        {
            // What hides the record ends here.
            text += opener;
            text += showing;
            ++mark;
        }
    }
    return text;
}

} // namespace qix
