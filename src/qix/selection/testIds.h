#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The id of a test is made of the names from the root's child downwards. Each name becomes one
// component, and the components are joined by dots. Of siblings with one name, those behind the
// first one have their number behind it: "name#2".

namespace qix
{

/// Adds the component that a name becomes: every byte that is no ASCII letter, digit, "_", "-" or
/// part of a letter or digit in valid UTF-8 is written as %XX, and an empty name is a lone "%".
void appendIdComponent(std::string& id, std::string_view name);

/// Adds what tells the sibling of this number, from 1, from those of the same name in front of it.
void appendSiblingNumber(std::string& id, std::size_t number);

/// A pattern as ids are written, so that both can be compared byte by byte: what is written as %XX
/// without need, or not as %XX where ids are, becomes what it is in ids. A "*" stays, and so do
/// the dots and what numbers siblings.
std::string normalizedPattern(std::string_view pattern);

} // namespace qix
