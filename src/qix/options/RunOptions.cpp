#include "options/RunOptions.h"

#include "options/optionTable.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace qix
{

namespace
{

constexpr char const endOfOptions[] = "--";

bool isLetter(char character) noexcept
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isOption(std::string_view argument) noexcept
{
    return argument.size() > 2 && argument[0] == '-' && argument[1] == '-' && isLetter(argument[2]);
}

[[noreturn]] void throwWrong(std::string const& what)
{
    throw std::runtime_error(what + "; see --help");
}

std::string listNames()
{
    std::string list;
    for (Option const& option : optionTable())
    {
        list += (list.empty() ? "--" : ", --") + std::string(option.name);
    }
    return list;
}

Option const& findOption(std::string const& name)
{
    std::vector<Option> const& table = optionTable();
    auto const found = std::find_if(table.begin(), table.end(),
                                    [&name](Option const& option) { return option.name == name; });
    if (found == table.end())
    {
        throwWrong("unknown option --" + name + ": allowed are " + listNames());
    }
    return *found;
}

std::string usageOf(Option const& option)
{
    return "--" + std::string(option.name) + option.usage;
}

void applyOption(RunOptions& options, std::string const& argument)
{
    std::size_t const equals = argument.find('=');
    std::string const name = argument.substr(2, equals - 2);
    Option const& option = findOption(name);
    bool const hasValue = equals != std::string::npos;
    std::string const value = hasValue ? argument.substr(equals + 1) : std::string();
    std::string const allowed = ": allowed is " + usageOf(option) + option.allowed;
    if (value.empty() && (hasValue || option.value == Option::Value::Required))
    {
        throwWrong(argument + " lacks its value" + allowed);
    }
    if (hasValue && option.value == Option::Value::None)
    {
        throwWrong(argument + " has a value" + allowed);
    }
    if (!option.apply(options, value))
    {
        throwWrong(argument + " has a wrong value" + allowed);
    }
    options.any = true;
    options.given.push_back(argument);
}

void checkTogether(RunOptions const& options)
{
    if (options.repeat && options.untilFail)
    {
        throwWrong("--repeat and --until-fail exclude each other: allowed is one of them");
    }
    if (options.needsSupervisor && !options.isSupervised())
    {
        throwWrong("--time-limit, --time-limit-factor, --retries and --flaky need a supervisor: "
                   "allowed are they with --jobs or --isolate");
    }
}

/// The text with everything behind a line end indented to the same column.
std::string withColumn(std::string text, std::string const& indent)
{
    for (std::size_t end = text.find('\n'); end != std::string::npos;
         end = text.find('\n', end + indent.size()))
    {
        text.insert(end + 1, indent);
    }
    return text;
}

} // namespace

Arguments parseArguments(int argc, char** argv, RunOptions const& defaults)
{
    Arguments arguments{defaults, {}};
    bool optionsEnded = false;
    for (int i = std::min(argc, 1); i < argc; ++i)
    {
        // A null argument is left to whoever reads the selection.
        std::string_view const argument = argv[i] == nullptr ? "" : argv[i];
        if (!optionsEnded && argument == endOfOptions)
        {
            optionsEnded = true;
        }
        else if (!optionsEnded && isOption(argument))
        {
            applyOption(arguments.options, std::string(argument));
        }
        else
        {
            arguments.lines.push_back(argv[i]);
        }
    }
    checkTogether(arguments.options);
    return arguments;
}

std::string describeOptions()
{
    std::string const indent(8, ' ');
    std::string text;
    for (Option const& option : optionTable())
    {
        text += "  " + usageOf(option) + "\n" + indent + withColumn(option.help, indent) + "\n";
    }
    return text;
}

} // namespace qix
