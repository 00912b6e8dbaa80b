#pragma once

#include "options/RunOptions.h"

#include <string>
#include <vector>

namespace qix
{

/// One option of the ready main. Parsing, errors and the help text come from these alone.
struct Option
{
    enum class Value
    {
        None,
        Optional,
        Required
    };

    char const* name;    ///< without the dashes
    char const* usage;   ///< how the value is written, such as "=N"; empty when there is none
    char const* allowed; ///< what is told about the value when it is wrong; may be empty
    char const* help;    ///< lines
    Value value;

    /// Notes the option. False when the value is not allowed; an optional one that is missing is
    /// empty here. Throws std::runtime_error when there is more to tell.
    bool (*apply)(RunOptions& options, std::string const& value);
};

/// All options, in the order in which --help tells them.
std::vector<Option> const& optionTable();

} // namespace qix
