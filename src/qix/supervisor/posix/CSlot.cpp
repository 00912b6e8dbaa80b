#include "supervisor/posix/CSlot.h"

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
    if (m_work.options.isInteractive)
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

void CPrintedTeller::beginUnit() const noexcept
{
    SlotState& state = m_work.slot.state();
    state.out.beginOfUnit = m_out;
    state.err.beginOfUnit = m_err;
}

} // namespace qix
