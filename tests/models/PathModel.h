#pragma once

#include <optional>
#include <string>
#include <vector>

namespace models
{

/// A slow reading of how paths are joined and normalized, to hold against zel's own: it looks at
/// the components of a path from the last to the first.
struct PathModel
{
    std::wstring text;
    bool isNormalized = false;

    PathModel joined(PathModel const& right) const
    {
        if (right.text.empty())
        {
            return *this;
        }
        if (right.isAbsolute())
        {
            return right;
        }
        bool const needsSeparator = !text.empty() && text.back() != L'/';
        return {text + (needsSeparator ? L"/" : L"") + right.text,
                isNormalized && right.isPlainComponent()};
    }

    /// Nothing for a path that climbs above its root.
    std::optional<PathModel> normalized(bool makeAbsolute, PathModel const& base,
                                        std::wstring const& currentFolder) const
    {
        if (isNormalized)
        {
            return *this;
        }
        if (makeAbsolute && !text.empty() && !isAbsolute())
        {
            PathModel const left = base.text.empty() ? PathModel{currentFolder, false} : base;
            return left.joined(*this).resolved(true);
        }
        return resolved(makeAbsolute);
    }

private:
    bool isAbsolute() const { return text.rfind(L'/', 0) == 0; }

    bool isPlainComponent() const
    {
        return text != L"." && text != L".." && text.find(L'/') == std::wstring::npos;
    }

    std::optional<PathModel> resolved(bool isMadeAbsolute) const
    {
        std::wstring result;
        int up = 0;
        std::vector<std::wstring> const all = components();
        for (auto component = all.rbegin(); component != all.rend(); ++component)
        {
            if (*component == L"..")
            {
                ++up;
            }
            else if (up > 0)
            {
                --up;
            }
            else
            {
                prepend(*component, result);
            }
        }
        if (up > 0 && isAbsolute())
        {
            return std::nullopt;
        }
        for (; up > 0; --up)
        {
            prepend(L"..", result);
        }
        std::wstring const root = isAbsolute() ? L"/" : L"";
        return PathModel{root + result, isMadeAbsolute || isAbsolute()};
    }

    /// What stands between separators, without what says nothing.
    std::vector<std::wstring> components() const
    {
        std::vector<std::wstring> found;
        std::wstring current;
        for (wchar_t const c : text + L"/")
        {
            if (c != L'/')
            {
                current += c;
                continue;
            }
            if (!current.empty() && current != L".")
            {
                found.push_back(current);
            }
            current.clear();
        }
        return found;
    }

    static void prepend(std::wstring const& component, std::wstring& path)
    {
        path = path.empty() ? component : component + L"/" + path;
    }
};

} // namespace models
