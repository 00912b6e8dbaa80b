#include <qix/CConsoleTestRunner.h>

#include "runner/nullItem.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace qix
{

namespace
{

using Items = std::vector<zel::P<ITestItem>>;

char const helpText[] = "\n"
                        "Please select the tests to be run.\n"
                        "Enter numbers or * (=all), separated by spaces.\n"
                        "You can also enter ranges like this: \"first-last\"\n"
                        "Multiple occurrences toggle inclusion.\n"
                        "Enter a '+' in addition to the selection to also run\n"
                        "long tests that take a while to complete.\n"
                        "Enter an 'i' in addition to the selection to also run\n"
                        "interactive tests that require human participation.\n"
                        "Enter an 'I' in addition to the selection to ONLY run\n"
                        "interactive tests.\n"
                        "Type a string that does not begin with a number to list\n"
                        "all tests that contain that string.\n"
                        "\n";

bool isDigit(char character) noexcept
{
    return character >= '0' && character <= '9';
}

/// The longest prefix of a token that is a number or a range: empty, or a digit followed by digits
/// and dashes.
std::string leadingNumbers(std::string const& token)
{
    if (!isDigit(token[0]))
    {
        return std::string();
    }
    auto const end =
        std::find_if_not(token.begin(), token.end(), [](char c) { return isDigit(c) || c == '-'; });
    return std::string(token.begin(), end);
}

/// The number at the beginning of a text. It wraps around beyond 32 bits.
int toNumber(std::string const& text)
{
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

std::string toLower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool containsAll(std::string const& text, std::vector<std::string> const& terms)
{
    return std::all_of(terms.begin(), terms.end(),
                       [&text](std::string const& term)
                       { return text.find(term) != std::string::npos; });
}

/// The next line of standard input; an empty one at its end. A signal that interrupts the waiting,
/// as a terminal sends when it is resized, is not the end.
std::string readLine()
{
    std::string line;
    bool wasInterrupted = true;
    while (wasInterrupted)
    {
        std::string part;
        errno = 0;
        std::getline(std::cin, part);
        line += part;
        wasInterrupted = errno == EINTR && !std::cin.good();
        if (wasInterrupted)
        {
            std::clearerr(stdin);
            std::cin.clear();
        }
    }
    return line;
}

bool hasSign(std::string const& word)
{
    return word[0] == '+' || word[0] == '-';
}

/// A factory may have failed to return an item.
std::string nameOf(Items const& items, int index)
{
    zel::P<ITestItem> const& item = items[static_cast<std::size_t>(index)];
    return item == nullptr ? nullItemName : item->getName();
}

void printItem(Items const& items, int index)
{
    std::printf("(%d) %s\n", index, nameOf(items, index).c_str());
}

/// One selection line while it is applied to a runner.
class CSelectionLine
{
public:
    /// \param items     what the runner offers
    /// \param selected  one flag for each item
    CSelectionLine(CConsoleTestRunner& runner, Items const& items, std::vector<bool>& selected)
        : m_runner(runner), m_items(items), m_selected(selected)
    {
    }

    /// True when the line was accepted.
    bool apply(std::string const& line);

private:
    bool applyToken(std::string const& token);
    bool applySearchWord(std::string const& word);
    bool applyNumbers(std::string const& token, std::string const& numbers);
    bool applyNumber(std::string const& number);
    bool applyRange(std::string const& numbers, std::size_t separator);
    void toggleRange(int first, int last);
    bool applyKeyword(std::string const& word);
    void applySearchSelection(std::string const& signedTerm);
    void printSearchResults() const;

    CConsoleTestRunner& m_runner;
    Items const& m_items;
    std::vector<bool>& m_selected;
    std::vector<std::string> m_searchTerms;
};

bool CSelectionLine::apply(std::string const& line)
{
    bool accepted = true;
    bool tokenSeen = false;
    std::size_t position = 0;
    while (position < line.size())
    {
        if (line[position] == ' ')
        {
            ++position;
        }
        else
        {
            std::string const token = line.substr(position, line.find(' ', position) - position);
            accepted = applyToken(token) && accepted;
            tokenSeen = true;
            position += token.size();
        }
        if (!m_searchTerms.empty())
        {
            printSearchResults();
        }
    }
    if (!tokenSeen)
    {
        std::puts("Nothing selected.");
    }
    return accepted && tokenSeen;
}

/// Numbers may stand in front of a keyword or a search word in one token.
bool CSelectionLine::applyToken(std::string const& token)
{
    std::string const numbers = leadingNumbers(token);
    std::string const word = token.substr(numbers.size());
    bool const numbersAccepted = numbers.empty() || applyNumbers(token, numbers);
    bool const wordAccepted = word.empty() || applyKeyword(word) || applySearchWord(toLower(word));
    return numbersAccepted && wordAccepted;
}

/// A line with a plain search word lists tests and is rejected, so that it starts no run.
bool CSelectionLine::applySearchWord(std::string const& word)
{
    if (hasSign(word))
    {
        applySearchSelection(word);
        return true;
    }
    std::printf("Search term: %s\n", word.c_str());
    m_searchTerms.push_back(word);
    return false;
}

bool CSelectionLine::applyNumbers(std::string const& token, std::string const& numbers)
{
    // A dash anywhere in the token makes it a range, also one behind the numbers.
    std::size_t const separator = token.find('-');
    return separator == std::string::npos ? applyNumber(numbers) : applyRange(numbers, separator);
}

bool CSelectionLine::applyNumber(std::string const& number)
{
    int const index = toNumber(number);
    if (index < 0 || index >= static_cast<int>(m_selected.size()))
    {
        std::printf("Invalid selection: %s\n", number.c_str());
        return false;
    }
    std::printf("Num: %d\n", index);
    m_runner.toggleItem(index);
    return true;
}

/// Throws std::out_of_range when the dash stands behind the numbers: there is no upper bound.
bool CSelectionLine::applyRange(std::string const& numbers, std::size_t separator)
{
    int const first = toNumber(numbers.substr(0, separator));
    int const last = toNumber(numbers.substr(separator + 1));
    bool const valid = first >= 0 && first <= last && last < static_cast<int>(m_selected.size());
    if (!valid)
    {
        std::printf("Invalid range selection: %s\n", numbers.c_str());
    }
    std::printf("Range: %d-%d\n", first, last);
    toggleRange(first, last);
    return valid;
}

/// Toggles the part of the range that is inside the list.
void CSelectionLine::toggleRange(int first, int last)
{
    int const end = std::min(last, static_cast<int>(m_selected.size()) - 1);
    for (int i = std::max(first, 0); i <= end; ++i)
    {
        m_runner.toggleItem(i);
    }
}

bool CSelectionLine::applyKeyword(std::string const& word)
{
    if (word == "*")
    {
        m_runner.toggleAll();
    }
    else if (word == "+")
    {
        m_runner.enableTestsUpToDuration(ITestItem::Long);
    }
    else if (word == "++")
    {
        m_runner.enableTestsUpToDuration(ITestItem::VeryLong);
    }
    else if (word == "+++")
    {
        m_runner.enableTestsUpToDuration(ITestItem::Hours);
    }
    else if (word == "i")
    {
        m_runner.enableInteractiveTests();
    }
    else if (word == "I")
    {
        m_runner.enableInteractiveTests();
        m_runner.disableNonInteractiveTests();
    }
    else
    {
        return false;
    }
    return true;
}

/// Selects or deselects, without toggling, every item whose name contains what follows the sign.
void CSelectionLine::applySearchSelection(std::string const& signedTerm)
{
    std::printf("Search select: %s\n", signedTerm.c_str());
    char const sign = signedTerm[0];
    for (int const index : m_runner.findItems({signedTerm.substr(1)}))
    {
        std::printf("%c %d %s\n", sign, index, nameOf(m_items, index).c_str());
        m_selected[static_cast<std::size_t>(index)] = sign == '+';
    }
}

void CSelectionLine::printSearchResults() const
{
    std::puts("\nSearch results:");
    for (int const index : m_runner.findItems(m_searchTerms))
    {
        printItem(m_items, index);
    }
}

} // namespace

void CConsoleTestRunner::doMenu()
{
    std::puts(helpText);
    for (std::size_t i = 0; i < m_items.size(); ++i)
    {
        printItem(m_items, static_cast<int>(i));
    }
    do
    {
        std::fflush(stdout);
    } while (!handleSelectionInput(readLine()));
}

bool CConsoleTestRunner::handleSelectionInput(std::string const& line)
{
    return CSelectionLine(*this, m_items, m_selected).apply(line);
}

void CConsoleTestRunner::toggleItem(int index)
{
    m_selected[static_cast<std::size_t>(index)].flip();
}

void CConsoleTestRunner::toggleAll()
{
    for (std::size_t i = 0; i < m_items.size(); ++i)
    {
        toggleItem(static_cast<int>(i));
    }
}

void CConsoleTestRunner::enableTestsUpToDuration(ITestItem::Duration duration)
{
    m_maxDuration = std::max<int>(m_maxDuration, duration);
}

void CConsoleTestRunner::enableInteractiveTests()
{
    m_runInteractive = true;
}

void CConsoleTestRunner::disableNonInteractiveTests()
{
    m_onlyInteractive = true;
}

std::vector<int> CConsoleTestRunner::findItems(std::vector<std::string> const& terms) const
{
    std::vector<int> found;
    for (std::size_t i = 0; i < m_items.size(); ++i)
    {
        int const index = static_cast<int>(i);
        if (containsAll(toLower(nameOf(m_items, index)), terms))
        {
            found.push_back(index);
        }
    }
    return found;
}

} // namespace qix
