#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qix
{

/// A pattern in which "*" stands for any run of characters.
class CGlob
{
public:
    /// \param pattern  has a "*" at least
    explicit CGlob(std::string_view pattern);

    /// How far the beginning of a text has been matched.
    struct State
    {
        bool hasBegin = false;  ///< the text begins as the pattern does
        bool isLost = false;    ///< no text that begins so matches
        std::size_t pieces = 0; ///< how many of those between stars have been found
        std::size_t behind = 0; ///< where the last one of them ends
        std::size_t goOnAt = 0; ///< where the next one may begin
    };

    /// \param state  what came of a text by which this one begins
    State advance(State state, std::string_view text) const;

    /// \param state  what advance() has returned for the text
    bool matches(State const& state, std::string_view text) const;

    bool matches(std::string_view text) const { return matches(advance(State(), text), text); }

    /// What is in front of the first star.
    std::string const& begin() const noexcept { return m_begin; }

private:
    std::string m_begin;
    std::vector<std::string> m_pieces; ///< those between two stars, without empty ones
    std::string m_end;
};

} // namespace qix
