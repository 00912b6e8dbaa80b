#include <qix/secret.h>
#include <zel/CCachedEnvVars.h>
#include <zel/CError.h>
#include <zel/CPosixFileInStream.h>
#include <zel/TBuffer.h>
#include <zel/TPathImpl.h>

#include "support/CWxLogCapture.h"

#include <wx/fileconf.h>
#include <wx/mstream.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <string>

namespace qix
{

namespace
{

using Buffer = zel::TBuffer<char>;

zel::CPath readSecretsPath()
{
    zel::CPath path = zel::CCachedEnvVars::get()->getVar("ZEL_TEST_SECRETS", "");
    if (path.getText().empty())
    {
        throw zel::CError("Test error: path to test secrets file not defined in environment "
                          "variable ZEL_TEST_SECRETS.");
    }
    return path;
}

/// Reads as many bytes as the low 32 bits of the file's length say, signed.
void readFile(zel::CPosixFileInStream& file, Buffer& bytes)
{
    auto const length = static_cast<std::int32_t>(file.getLength());
    if (length <= 0)
    {
        return;
    }
    bytes.alloc(length);
    bytes.setUsed(length);
    int const read = file.read(bytes.getData(), length);
    // If the file has shrunk meanwhile, the rest must not be what the memory contained before.
    std::memset(bytes.getData() + read, 0, static_cast<std::size_t>(length - read));
}

/// The text ends at its first NUL anyway; parsing the NULs of a sparse file takes much memory.
void dropNulsAtEnd(Buffer& bytes)
{
    int used = bytes.getUsed();
    while (used > 0 && bytes[used - 1] == '\0')
    {
        --used;
    }
    bytes.setUsed(used);
}

/// wxFileConfig appends one NUL byte, and cannot read a text that does not consist of whole
/// characters then.
void padToWholeCharacters(Buffer& bytes)
{
    constexpr int characterSize = 4;
    int const oldUsed = bytes.getUsed();
    int const wholeCharacters = oldUsed / characterSize + 2;
    bytes.setUsed(wholeCharacters * characterSize - 1);
    std::memset(bytes.getData() + oldUsed, 0, static_cast<std::size_t>(bytes.getUsed() - oldUsed));
}

/// Reads the file as wxFileConfig takes it.
void readText(zel::CPath const& path, zel::CPosixFileInStream& file, Buffer& bytes)
{
    try
    {
        readFile(file, bytes);
        dropNulsAtEnd(bytes);
        padToWholeCharacters(bytes);
    }
    catch (std::bad_alloc const&)
    {
        throw zel::CError("Unable to read the test secrets file '" + path.getText() +
                          "': it is too large for the memory.");
    }
}

std::optional<zel::String> lookUp(Buffer const& bytes, zel::String const& lookupPath)
{
    wxMemoryInputStream stream(bytes.getData(), static_cast<std::size_t>(bytes.getUsed()));
    wxFileConfig const config(stream);
    wxString value;
    return config.Read(lookupPath, &value) ? std::optional<zel::String>(value) : std::nullopt;
}

void printDiagnostic(zel::CPath const& path, std::string const& diagnostic)
{
    std::string const line =
        "Warning: test secrets file '" + path.getText().toCPSafe() + "': " + diagnostic + ".\n";
    std::fputs(line.c_str(), stderr);
}

/// Looks up a value and prints a warning when the file is not well-formed.
std::optional<zel::String> lookUpCaptured(zel::CPath const& path, Buffer const& bytes,
                                          zel::String const& lookupPath)
{
    std::optional<zel::String> value;
    std::optional<std::string> diagnostic;
    {
        CWxLogCapture const capture;
        value = lookUp(bytes, lookupPath);
        diagnostic = capture.getDiagnostic();
    }
    if (diagnostic)
    {
        printDiagnostic(path, *diagnostic);
    }
    return value;
}

} // namespace

zel::String getTestSecret(zel::String const& section, zel::String const& key)
{
    zel::CPath const path = readSecretsPath();
    zel::CPosixFileInStream file(path);
    Buffer bytes;
    readText(path, file, bytes);
    zel::String const lookupPath = "/" + section + "/" + key;
    std::optional<zel::String> const value = lookUpCaptured(path, bytes, lookupPath);
    if (!value)
    {
        throw zel::CError("Unable to find value '" + lookupPath + "' in test secrets file.");
    }
    return *value;
}

} // namespace qix
