#include "selection/CGlob.h"

#include <algorithm>

namespace qix
{

CGlob::CGlob(std::string_view pattern)
{
    std::size_t star = pattern.find('*');
    m_begin = pattern.substr(0, star);
    pattern.remove_prefix(star + 1);
    for (star = pattern.find('*'); star != std::string_view::npos; star = pattern.find('*'))
    {
        if (star > 0)
        {
            m_pieces.emplace_back(pattern.substr(0, star));
        }
        pattern.remove_prefix(star + 1);
    }
    m_end = pattern;
}

/// Each piece is looked for behind the one in front of it, and the first place is as good as any.
CGlob::State CGlob::advance(State state, std::string_view text) const
{
    if (!state.hasBegin && !state.isLost && text.size() >= m_begin.size())
    {
        state.hasBegin = text.substr(0, m_begin.size()) == m_begin;
        state.isLost = !state.hasBegin;
        state.behind = state.goOnAt = m_begin.size();
    }
    while (state.hasBegin && state.pieces < m_pieces.size())
    {
        std::string const& piece = m_pieces[state.pieces];
        std::size_t const place = text.find(piece, state.goOnAt);
        if (place == std::string_view::npos)
        {
            std::size_t const tail = std::min(piece.size() - 1, text.size());
            state.goOnAt = std::max(state.goOnAt, text.size() - tail);
            break;
        }
        ++state.pieces;
        state.behind = state.goOnAt = place + piece.size();
    }
    return state;
}

bool CGlob::matches(State const& state, std::string_view text) const
{
    return state.hasBegin && state.pieces == m_pieces.size() &&
           text.size() >= state.behind + m_end.size() &&
           text.substr(text.size() - m_end.size()) == m_end;
}

} // namespace qix
