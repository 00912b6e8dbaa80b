#pragma once

#include "CScopedEnvVar.h"
#include "CTempWorkDirectory.h"

#include <clocale>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <libintl.h>

namespace test
{

/// While it lives the C library tells one of its messages in another language. Works in an empty
/// folder of its own.
class TranslatedMessage
{
public:
    TranslatedMessage(std::string const& message, std::string const& translation)
        : m_language("LANGUAGE", "xx"), m_oldFolder(bindtextdomain("libc", nullptr))
    {
        std::filesystem::create_directories("xx/LC_MESSAGES");
        writeCatalogue("xx/LC_MESSAGES/libc.mo", message, translation);
        bindtextdomain("libc", m_folder.getPath().c_str());
        std::setlocale(LC_MESSAGES, "C.UTF-8");
    }
    TranslatedMessage(TranslatedMessage const&) = delete;
    TranslatedMessage& operator=(TranslatedMessage const&) = delete;

    ~TranslatedMessage()
    {
        std::setlocale(LC_MESSAGES, "C");
        bindtextdomain("libc", m_oldFolder.c_str());
    }

private:
    /// The format of msgfmt with one message: magic number, revision, number of messages, offsets
    /// of the two tables, size and offset of no hash table, the tables, and the texts.
    static void writeCatalogue(char const* path, std::string const& message,
                               std::string const& translation)
    {
        auto const messageLength = static_cast<std::uint32_t>(message.size());
        auto const translationLength = static_cast<std::uint32_t>(translation.size());
        std::uint32_t const numbers[] = {0x950412de,
                                         0,
                                         1,
                                         28,
                                         36,
                                         0,
                                         0,
                                         messageLength,
                                         44,
                                         translationLength,
                                         44 + messageLength + 1};
        std::ofstream file(path, std::ios::binary);
        file.write(reinterpret_cast<char const*>(numbers), sizeof(numbers));
        file << message << '\0' << translation << '\0';
    }

    CTempWorkDirectory const m_folder;
    CScopedEnvVar const m_language;
    std::string const m_oldFolder;
};

} // namespace test
