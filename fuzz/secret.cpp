/// Secrets files of any content, asked for any entry: a value comes back or a zel::CError, and
/// nothing of the file is ever printed.
///
/// Input: a line with the section, a line with the key, and then the file.

#include "fuzz.h"

#include <qix/secret.h>
#include <zel/CError.h>

#include <optional>
#include <regex>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

/// The file that ZEL_TEST_SECRETS names. It is in memory only.
class SecretsFile
{
public:
    SecretsFile() : m_descriptor(memfd_create("secrets", MFD_CLOEXEC))
    {
        fuzz::require(m_descriptor >= 0, "there is memory for the file");
        setenv("ZEL_TEST_SECRETS", path().c_str(), 1);
        setenv("HOME", "/home/tester", 1);
    }
    ~SecretsFile() { close(m_descriptor); }
    SecretsFile(SecretsFile const&) = delete;
    SecretsFile& operator=(SecretsFile const&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

    void write(std::string const& bytes)
    {
        bool const isEmpty = ftruncate(m_descriptor, 0) == 0;
        auto const written = pwrite(m_descriptor, bytes.data(), bytes.size(), 0);
        fuzz::require(isEmpty && written == static_cast<ssize_t>(bytes.size()), "it is written");
    }

private:
    int m_descriptor;
};

/// All that may be printed, whatever is in the file.
bool isHarmless(std::string const& printed, std::string const& path)
{
    static std::regex const warning("Warning: test secrets file '([^']*)': it is not well-formed"
                                    "( in line \\d+)?\\.\n");
    std::smatch match;
    return printed.empty() || (std::regex_match(printed, match, warning) && match[1] == path);
}

/// The value, or nothing when there is no such entry.
std::optional<zel::String> read(zel::String const& section, zel::String const& key)
{
    try
    {
        return qix::getTestSecret(section, key);
    }
    catch (zel::CError const& e)
    {
        zel::String const expected =
            "Unable to find value '/" + section + "/" + key + "' in test secrets file.";
        fuzz::requireEqual(e.getMessage().toCPSafe(), expected.toCPSafe(), "the message");
        return std::nullopt;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static SecretsFile file;
    fuzz::Input input(data, size);
    zel::String const section(input.line());
    zel::String const key(input.line());
    file.write(input.rest());

    std::optional<zel::String> value;
    std::string output;
    std::string errors;
    {
        fuzz::CapturedStream const capturedOutput(stdout);
        fuzz::CapturedStream const capturedErrors(stderr);
        value = read(section, key);
        output = capturedOutput.text();
        errors = capturedErrors.text();
    }
    fuzz::requireEqual(output, "", "nothing on standard output");
    fuzz::require(isHarmless(errors, file.path()), "what is printed quotes nothing:\n" + errors);
    fuzz::require(read(section, key) == value, "a second call gives the same");
    return 0;
}
