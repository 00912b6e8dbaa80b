#include "supervisor/posix/CSlot.h"

#include <iterator>

#include <poll.h>

namespace qix
{

CSlot::CSlot(unsigned number, CrewState& crew, int wake)
    : m_number(number),
      m_state(CMessageRing::size),
      m_ring(crew, *m_state, m_state.room(), wake),
      m_out(m_state->out),
      m_err(m_state->err)
{
}

void CPrintedTeller::begin() noexcept
{
    m_out = m_work.slot.out().position();
    m_err = m_work.slot.err().position();
    beginUnit();
}

void CPrintedTeller::tell()
{
    if (m_work.options.isInteractive || isNothingNew())
    {
        return;
    }
    std::uint64_t const out = m_work.slot.out().position();
    std::uint64_t const err = m_work.slot.err().position();
    if (out != m_out || err != m_err)
    {
        m_out = out;
        m_err = err;
        m_work.slot.ring().send(CMessageWriter(MessageKind::Printed).add(out).add(err).bytes());
    }
}

/// One system call tells this of both streams. What is read meanwhile is new perhaps.
bool CPrintedTeller::isNothingNew() const noexcept
{
    StreamState const& out = m_work.slot.state().out;
    StreamState const& err = m_work.slot.state().err;
    std::uint32_t const outVersion = out.version;
    std::uint32_t const errVersion = err.version;
    if (outVersion % 2 != 0 || errVersion % 2 != 0 || out.read != m_out || err.read != m_err)
    {
        return false;
    }
    pollfd pipes[] = {{m_work.slot.out().reader(), POLLIN, 0},
                      {m_work.slot.err().reader(), POLLIN, 0}};
    bool const areEmpty = poll(pipes, std::size(pipes), 0) == 0;
    return areEmpty && out.version == outVersion && err.version == errVersion;
}

void CPrintedTeller::beginUnit() const noexcept
{
    SlotState& state = m_work.slot.state();
    state.out.beginOfUnit = m_out;
    state.err.beginOfUnit = m_err;
}

} // namespace qix
