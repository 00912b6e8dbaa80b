#include "systemPath.h"

#include <zel/CError.h>

#include "localeText.h"

namespace zel
{

void throwFileError(char const* operation, String const& path, String const& reason)
{
    throw CError(String("Unable to ") + operation + " '" + path + "': " + reason + ".");
}

void throwFileError(char const* operation, String const& path, int error)
{
    throwFileError(operation, path, messageOfError(error));
}

std::string toSystemPath(char const* operation, TPathImpl<CUnixPathTraits> const& path)
{
    String const& text = path.getText();
    auto bytes = encodeLocaleText(text);
    if (!bytes)
    {
        throwFileError(operation, text, "the encoding of the locale lacks one of its characters");
    }
    if (bytes->find('\0') != std::string::npos)
    {
        throwFileError(operation, text.BeforeFirst(L'\0'), "the path contains a NUL character");
    }
    return *std::move(bytes);
}

std::string withoutTrailingSeparators(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
    {
        path.pop_back();
    }
    return path;
}

} // namespace zel
