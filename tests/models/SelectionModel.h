#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace models
{

/// What a selection line can change.
struct Selection
{
    std::vector<bool> selected;
    int longestDuration = 1;
    bool interactive = false;
    bool onlyInteractive = false;

    bool operator==(Selection const& other) const
    {
        return selected == other.selected && longestDuration == other.longestDuration &&
               interactive == other.interactive && onlyInteractive == other.onlyInteractive;
    }
};

/// A slow reading of selection lines, to hold against the runner's own: it cuts the line into
/// pieces first and then works on whole pieces, and it counts with 128 bits. It knows the "C"
/// locale only.
class SelectionModel
{
public:
    SelectionModel(std::vector<std::string> names, Selection before)
        : after(before), m_names(std::move(names))
    {
    }

    /// Reads one line; the members below then tell what must have come of it.
    void read(std::string const& line)
    {
        accepted = true;
        isOutOfRange = false;
        printed.clear();
        std::vector<std::string> const pieces = cut(line);
        std::vector<std::string> listed;
        for (std::string const& piece : pieces)
        {
            if (piece != " ")
            {
                readWord(piece, listed);
            }
            if (isOutOfRange)
            {
                return;
            }
            if (!listed.empty())
            {
                printMatches(listed);
            }
        }
        if (std::all_of(pieces.begin(), pieces.end(), [](auto const& p) { return p == " "; }))
        {
            refuse("Nothing selected.");
        }
    }

    Selection after;
    bool accepted = true;
    bool isOutOfRange = false; ///< the line ends with std::out_of_range
    std::string printed;

private:
    /// Words, and each blank by itself.
    static std::vector<std::string> cut(std::string const& line)
    {
        std::vector<std::string> pieces;
        bool inWord = false;
        for (char const c : line)
        {
            if (c != ' ' && inWord)
            {
                pieces.back().push_back(c);
            }
            else
            {
                pieces.emplace_back(1, c);
            }
            inWord = c != ' ';
        }
        return pieces;
    }

    void readWord(std::string const& word, std::vector<std::string>& listed)
    {
        char const* const digits = "0123456789";
        char const* const digitsAndDash = "0123456789-";
        std::size_t split = 0;
        if (word.find_first_of(digits) == 0)
        {
            split = std::min(word.find_first_not_of(digitsAndDash), word.size());
            readNumbers(word.substr(0, split), word.substr(split));
        }
        if (!isOutOfRange && split < word.size())
        {
            readText(word.substr(split), listed);
        }
    }

    void readNumbers(std::string const& numbers, std::string const& text)
    {
        std::size_t const dash = numbers.find('-');
        if (dash != std::string::npos)
        {
            readRange(numbers, value(numbers.substr(0, dash)), value(numbers.substr(dash + 1)));
        }
        else if (text.find('-') != std::string::npos)
        {
            isOutOfRange = true;
        }
        else
        {
            readNumber(numbers);
        }
    }

    void readNumber(std::string const& number)
    {
        std::int32_t const n = value(number);
        if (!isItem(n))
        {
            refuse("Invalid selection: " + number);
            return;
        }
        print("Num: " + std::to_string(n));
        flip(n, n);
    }

    void readRange(std::string const& numbers, std::int32_t first, std::int32_t last)
    {
        if (!isItem(last) || first < 0 || first > last)
        {
            refuse("Invalid range selection: " + numbers);
        }
        print("Range: " + std::to_string(first) + "-" + std::to_string(last));
        flip(first, last);
    }

    void readText(std::string const& text, std::vector<std::string>& listed)
    {
        static std::vector<std::string> const keywords = {"*", "+", "++", "+++", "i", "I"};
        auto const keyword = std::find(keywords.begin(), keywords.end(), text);
        if (keyword != keywords.end())
        {
            readKeyword(text);
            return;
        }
        std::string const folded = fold(text);
        if (folded.find_first_of("+-") == 0)
        {
            print("Search select: " + folded);
            select(folded.front(), folded.substr(1));
            return;
        }
        refuse("Search term: " + folded);
        listed.push_back(folded);
    }

    void readKeyword(std::string const& keyword)
    {
        if (keyword == "*")
        {
            after.selected.flip();
        }
        else if (keyword[0] == '+')
        {
            after.longestDuration =
                std::max(after.longestDuration, 1 + static_cast<int>(keyword.size()));
        }
        else
        {
            after.interactive = true;
            after.onlyInteractive = after.onlyInteractive || keyword == "I";
        }
    }

    void select(char sign, std::string const& term)
    {
        for (std::size_t i = 0; i < m_names.size(); ++i)
        {
            if (contains(fold(m_names[i]), term))
            {
                print(std::string(1, sign) + " " + std::to_string(i) + " " + asShown(m_names[i]));
                after.selected[i] = sign == '+';
            }
        }
    }

    void printMatches(std::vector<std::string> const& terms)
    {
        print("\nSearch results:");
        for (std::size_t i = 0; i < m_names.size(); ++i)
        {
            std::string const name = fold(m_names[i]);
            auto const misses =
                std::count_if(terms.begin(), terms.end(),
                              [&](auto const& term) { return !contains(name, term); });
            if (misses == 0)
            {
                print("(" + std::to_string(i) + ") " + asShown(m_names[i]));
            }
        }
    }

    bool isItem(std::int32_t n) const
    {
        return n >= 0 && static_cast<std::size_t>(n) < m_names.size();
    }

    void flip(std::int32_t first, std::int32_t last)
    {
        for (std::size_t i = 0; i < m_names.size(); ++i)
        {
            auto const n = static_cast<std::int32_t>(i);
            after.selected[i] = after.selected[i] != (first <= n && n <= last);
        }
    }

    void refuse(std::string const& why)
    {
        print(why);
        accepted = false;
    }

    void print(std::string const& line) { printed += asShown(line) + "\n"; }

    /// What is printed of a text ends at its first NUL.
    static std::string asShown(std::string const& text) { return text.substr(0, text.find('\0')); }

    /// The 64-bit number that a text begins with, at its bounds if it lies beyond them, cut down
    /// to its low 32 bits.
    static std::int32_t value(std::string const& text)
    {
        bool const isNegative = !text.empty() && text[0] == '-';
        __extension__ __int128 const bound =
            (static_cast<__int128>(1) << 63) - (isNegative ? 0 : 1);
        __extension__ __int128 n = 0;
        for (std::size_t i = isNegative ? 1 : 0; i < text.size() && text[i] != '-'; ++i)
        {
            n = std::min(bound, n * 10 + (text[i] - '0'));
        }
        auto const low = static_cast<std::uint32_t>(isNegative ? -n : n);
        return static_cast<std::int32_t>(low);
    }

    static std::string fold(std::string const& text)
    {
        static std::string const capitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
        static std::string const smalls = "abcdefghijklmnopqrstuvwxyz";
        std::string folded;
        for (char const c : text)
        {
            std::size_t const at = capitals.find(c);
            folded.push_back(at == std::string::npos ? c : smalls[at]);
        }
        return folded;
    }

    static bool contains(std::string const& text, std::string const& part)
    {
        for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
        {
            if (text.compare(i, part.size(), part) == 0)
            {
                return true;
            }
        }
        return false;
    }

    std::vector<std::string> m_names;
};

} // namespace models
