#include <qix/detail/difference.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace qix::detail
{

namespace
{

using Lines = std::vector<std::string_view>;

/// What surrounds the first difference of two texts, to both sides.
constexpr std::size_t surroundingBytes = 20;

/// The lines of a difference that are shown before the rest is counted only.
constexpr std::size_t shownLines = 40;

Lines linesOf(std::string_view text)
{
    Lines lines;
    for (std::size_t end = 0; end != std::string_view::npos;)
    {
        end = text.find('\n');
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

/// The line in the way that quoted text is written, but without the quotes.
std::string shownLine(std::string_view line)
{
    CValueWriter out;
    out.quoted(line);
    return out.written().substr(1, out.written().size() - 2);
}

/// Takes the lines off that both texts end with, but for one.
void dropCommonEnd(Lines& left, Lines& right, std::size_t begin)
{
    std::size_t common = 0;
    while (left.size() - common > begin && right.size() - common > begin &&
           left[left.size() - common - 1] == right[right.size() - common - 1])
    {
        ++common;
    }
    left.resize(left.size() - common);
    right.resize(right.size() - common);
}

void writeLines(CValueWriter& out, char const* mark, Lines const& lines, std::size_t begin)
{
    std::size_t const end = std::min(lines.size(), begin + shownLines);
    for (std::size_t i = begin; i < end; ++i)
    {
        out.text(mark + shownLine(lines[i]));
    }
    if (end < lines.size())
    {
        out.text(mark + ("... and " + std::to_string(lines.size() - end)) + " more");
    }
}

void explainLines(CValueWriter& out, std::string_view left, std::string_view right)
{
    Lines leftLines = linesOf(left);
    Lines rightLines = linesOf(right);
    std::size_t const shorter = std::min(leftLines.size(), rightLines.size());
    auto const common = static_cast<std::size_t>(
        std::mismatch(leftLines.begin(), leftLines.begin() + static_cast<std::ptrdiff_t>(shorter),
                      rightLines.begin())
            .first -
        leftLines.begin());
    dropCommonEnd(leftLines, rightLines, common);
    out.text("the lines differ from line " + std::to_string(common + 1) + " on (- left, + right):");
    writeLines(out, "\n- ", leftLines, common);
    writeLines(out, "\n+ ", rightLines, common);
}

void writeSurroundings(CValueWriter& out, std::string_view text, std::size_t at)
{
    std::size_t const begin = at - std::min(at, surroundingBytes);
    out.text(begin > 0 ? "..." : "");
    out.quoted(text.substr(begin, at - begin + surroundingBytes));
    out.text(at + surroundingBytes < text.size() ? "..." : "");
}

} // namespace

void explainTexts(CValueWriter& out, std::string_view left, std::string_view right, bool isLong)
{
    if (std::max(std::count(left.begin(), left.end(), '\n'),
                 std::count(right.begin(), right.end(), '\n')) > 1)
    {
        explainLines(out, left, right);
    }
    else if (isLong)
    {
        std::size_t at = 0;
        while (at < left.size() && at < right.size() && left[at] == right[at])
        {
            ++at;
        }
        out.text("first difference at position " + std::to_string(at) + ": ");
        writeSurroundings(out, left, at);
        out.text(" and ");
        writeSurroundings(out, right, at);
    }
}

void explainBytes(CValueWriter& out, void const* left, void const* right, std::size_t size)
{
    auto const* const l = static_cast<unsigned char const*>(left);
    auto const* const r = static_cast<unsigned char const*>(right);
    auto const at = static_cast<std::size_t>(std::mismatch(l, l + size, r).first - l);
    if (at == size)
    {
        return;
    }
    constexpr std::size_t surrounding = 8;
    std::size_t const begin = at - std::min(at, surrounding);
    std::size_t const end = std::min(size, at + surrounding);
    out.text("first different byte at " + std::to_string(at) + "; from byte " +
             std::to_string(begin) + " on ");
    out.bytes(l + begin, end - begin);
    out.text(" and ");
    out.bytes(r + begin, end - begin);
}

void explainApprox(CValueWriter& out, double left, CApprox const& right)
{
    out.text("the difference is ");
    out.floating(std::abs(left - right.value()));
    out.text(", allowed is ");
    out.floating(right.bound());
}

} // namespace qix::detail
