#pragma once

#include "CScopedEnvVar.h"
#include "CTempWorkDirectory.h"

#include <clocale>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include <libintl.h>

namespace test
{

/// While it lives the C library tells one of its messages in another language, in whose name a
/// locale exists in an empty folder of its own: the C library translates nothing for the locale C,
/// nor, from glibc 2.41 on, for C.UTF-8.
class TranslatedMessage
{
public:
    TranslatedMessage(std::string const& message, std::string const& translation)
        : m_locales("LOCPATH", m_folder.getPath().string()),
          m_language("LANGUAGE", std::nullopt),
          m_oldFolder(bindtextdomain("libc", nullptr))
    {
        std::filesystem::create_directories("xx/LC_MESSAGES");
        writeCatalogue("xx/LC_MESSAGES/libc.mo", message, translation);
        bindtextdomain("libc", m_folder.getPath().c_str());
        makeLocale("xx.UTF-8");
    }
    TranslatedMessage(TranslatedMessage const&) = delete;
    TranslatedMessage& operator=(TranslatedMessage const&) = delete;

    ~TranslatedMessage()
    {
        std::setlocale(LC_MESSAGES, "C");
        bindtextdomain("libc", m_oldFolder.c_str());
    }

private:
    /// A copy of C.UTF-8 by another name.
    static void makeLocale(char const* name)
    {
        std::filesystem::path const all = "/usr/lib/locale";
        char const* const original = std::filesystem::exists(all / "C.utf8") ? "C.utf8" : "C.UTF-8";
        std::filesystem::create_directory_symlink(all / original, name);
        if (std::setlocale(LC_MESSAGES, name) == nullptr)
        {
            throw std::runtime_error("The C library does not take a locale by another name.");
        }
    }

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
    CScopedEnvVar const m_locales;
    CScopedEnvVar const m_language;
    std::string const m_oldFolder;
};

} // namespace test
