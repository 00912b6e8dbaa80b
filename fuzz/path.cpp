/// Paths: joining and normalizing against a model.
///
/// Input: lines. Each makes one more path out of those before it: "=TEXT" of a text, "<LR" by
/// joining two, "nP" by normalizing one, and "aPB" by making one absolute behind another. L, R, P
/// and B are digits or letters that count from the first path, which is empty.

#include "fuzz.h"

#include "../tests/models/PathModel.h"

#include <zel/CBadPathError.h>
#include <zel/TPathImpl.h>
#include <zel/filesystem.h>

#include <optional>
#include <vector>

namespace
{

constexpr std::size_t mostPaths = 64;
constexpr std::size_t longestPath = 2000;

struct Pair
{
    zel::CPath path;
    models::PathModel model;
};

Pair makePair(std::string const& bytes)
{
    return {zel::CPath(zel::String(bytes)), {zel::String(bytes).ToStdWstring(), false}};
}

void compare(Pair const& pair)
{
    zel::String const expected{wxString(pair.model.text)};
    fuzz::requireEqual(pair.path.getText().toCPSafe(), expected.toCPSafe(), "the same text");
    fuzz::require(pair.path.getText() == expected, "the same text in each character");
    fuzz::require(pair.path.isNormalized() == pair.model.isNormalized, "the same flag");
}

Pair join(Pair const& left, Pair const& right)
{
    return {left.path << right.path, left.model.joined(right.model)};
}

/// Nothing when the path, for both, climbs above its root.
std::optional<Pair> normalize(Pair const& pair, bool makeAbsolute, Pair const& base)
{
    static std::wstring const currentFolder = zel::getCurrentWorkDirectoryAsString().ToStdWstring();
    auto const expected = pair.model.normalized(makeAbsolute, base.model, currentFolder);
    try
    {
        zel::CPath const path = pair.path.toNormalized(makeAbsolute, base.path);
        fuzz::require(expected.has_value(), "a path above the root is refused");
        return Pair{path, *expected};
    }
    catch (zel::CBadPathError const& e)
    {
        fuzz::require(!expected.has_value(), "a path below the root is not refused");
        fuzz::require(e.getMessage() == "Invalid path: " + pair.path.getText(), "the message");
        return std::nullopt;
    }
}

class Paths
{
public:
    void apply(std::string const& line)
    {
        fuzz::Input input(reinterpret_cast<std::uint8_t const*>(line.data()), line.size());
        std::uint8_t const operation = input.byte();
        if (operation == '=')
        {
            add(makePair(input.rest()));
        }
        else if (operation == '<')
        {
            Pair const& left = chosen(input);
            add(join(left, chosen(input)));
        }
        else
        {
            Pair const& pair = chosen(input);
            if (auto const normalized = normalize(pair, operation == 'a', chosen(input)))
            {
                add(*normalized);
            }
        }
    }

    bool isFull() const { return m_pairs.size() == mostPaths; }

private:
    Pair const& chosen(fuzz::Input& input) const
    {
        return m_pairs[static_cast<std::uint8_t>(input.byte() - '0') % m_pairs.size()];
    }

    void add(Pair const& pair)
    {
        compare(pair);
        if (pair.model.text.size() < longestPath)
        {
            m_pairs.push_back(pair);
        }
    }

    std::vector<Pair> m_pairs = {makePair("")};
};

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    fuzz::Input input(data, size);
    Paths paths;
    while (!input.isAtEnd() && !paths.isFull())
    {
        paths.apply(input.line());
    }
    return 0;
}
