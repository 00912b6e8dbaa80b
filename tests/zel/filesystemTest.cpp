#include <zel/filesystem.h>

#include "CTempWorkDirectory.h"
#include "Locale.h"
#include "TranslatedMessage.h"
#include "countDescriptors.h"
#include "errorOf.h"
#include "passesAsOrdinaryUser.h"
#include "readFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

using test::errorOf;
using testing::HasSubstr;
using zel::CPath;
using zel::ensureFolderExists;
using zel::String;
using zel::unlinkFolder;

void writeFile(fs::path const& path, std::string const& text)
{
    std::ofstream(path) << text;
}

bool isThere(fs::path const& path)
{
    return fs::exists(fs::symlink_status(path));
}

mode_t modeOf(char const* path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path, &status), 0) << path;
    return status.st_mode & 07777U;
}

/// Each test works in an empty folder of its own, into which everybody may write.
class filesystem : public testing::Test
{
protected:
    filesystem() { fs::permissions(".", fs::perms::all); }

    test::CTempWorkDirectory const m_folder;
};

using filesystemInUtf8Locale = test::Utf8LocaleTest;
using filesystemInCLocale = test::CLocaleTest;

char const deepName[] = "a name so long that the whole path is too long";

/// Makes folders of one name inside each other, and a file in the innermost.
void makeDeepTree(int depth)
{
    int folder = open(".", O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth; ++i)
    {
        ASSERT_EQ(mkdirat(folder, deepName, 0777), 0);
        int const inner = openat(folder, deepName, O_RDONLY | O_DIRECTORY);
        ASSERT_GE(inner, 0);
        close(folder);
        folder = inner;
    }
    int const file = openat(folder, "file", O_CREAT | O_WRONLY, 0666);
    ASSERT_GE(file, 0);
    close(file);
    close(folder);
}

TEST_F(filesystem, removingNothingIsQuiet)
{
    writeFile("file", "text");
    unlinkFolder("missing");
    unlinkFolder("missing/below");
    unlinkFolder("file/below");
    unlinkFolder("");
    EXPECT_TRUE(isThere("file"));
}

TEST_F(filesystem, removesAFolderWithEverythingInIt)
{
    fs::create_directories("data/a/b/c");
    fs::create_directories("data/empty");
    writeFile("data/file", "text");
    writeFile("data/a/b/.hidden", "text");
    mkfifo("data/a/pipe", 0666);
    unlinkFolder("data/");
    EXPECT_FALSE(isThere("data"));
}

TEST_F(filesystem, removesFilesWhoseNamesAreNoTextOfTheLocale)
{
    fs::create_directories("data/\xff\xfe");
    writeFile("data/\xff\xfe/\n\xe4", "text");
    unlinkFolder("data");
    EXPECT_FALSE(isThere("data"));
}

TEST_F(filesystem, doesNotFollowLinksInside)
{
    fs::create_directories("target/inner");
    writeFile("target/inner/file", "text");
    fs::create_directory("data");
    fs::create_directory_symlink(fs::absolute("target"), "data/folder");
    fs::create_directory_symlink("..", "data/up");
    fs::create_symlink("../target/inner/file", "data/file");
    fs::create_symlink("nowhere", "data/dangling");
    unlinkFolder("data");
    EXPECT_FALSE(isThere("data"));
    EXPECT_EQ(test::readFile("target/inner/file"), "text");
}

TEST_F(filesystem, removesALinkAtThePathItselfAsALink)
{
    fs::create_directory("target");
    writeFile("target/file", "text");
    for (char const* path : {"link", "link/", "link//"})
    {
        fs::create_directory_symlink("target", "link");
        unlinkFolder(path);
        EXPECT_FALSE(isThere("link")) << path;
    }
    fs::create_symlink("nowhere", "dangling");
    unlinkFolder("dangling");
    EXPECT_FALSE(isThere("dangling"));
    EXPECT_EQ(test::readFile("target/file"), "text");
}

TEST_F(filesystem, aFileAtThePathStays)
{
    writeFile("file", "text");
    EXPECT_EQ(errorOf([] { unlinkFolder("file"); }),
              "Unable to remove the folder 'file': it is a file.");
    EXPECT_EQ(test::readFile("file"), "text");
}

TEST_F(filesystem, aFolderIsNotRemovedThroughDots)
{
    fs::create_directories("data/inner");
    for (char const* path : {".", "..", "data/.", "data/..", "data/inner/../"})
    {
        EXPECT_EQ(errorOf([path] { unlinkFolder(path); }), "Unable to remove the folder '" +
                                                               std::string(path) +
                                                               "': the path ends in '.' or '..'.")
            << path;
    }
    EXPECT_TRUE(isThere("data/inner"));
}

TEST_F(filesystem, opensUpFoldersThatItMayNotEnter)
{
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            fs::create_directories("data/closed/inner");
            fs::create_directories("data/readOnly/inner");
            writeFile("data/closed/inner/file", "text");
            writeFile("data/readOnly/file", "text");
            fs::permissions("data/closed/inner", fs::perms::none);
            fs::permissions("data/closed", fs::perms::none);
            fs::permissions("data/readOnly", fs::perms::owner_read | fs::perms::owner_exec);
            fs::permissions("data", fs::perms::none);
            unlinkFolder("data");
            EXPECT_FALSE(isThere("data"));
        }));
}

TEST_F(filesystem, whatCannotBeRemovedIsAnError)
{
    fs::create_directories("data/foreign");
    writeFile("data/foreign/file", "text");
    fs::permissions("data", fs::perms::all);
    fs::permissions("data/foreign",
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "needs a folder of another user";
    }
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_EQ(errorOf([] { unlinkFolder("data"); }),
                      "Unable to remove the folder 'data': Permission denied.");
            EXPECT_TRUE(isThere("data/foreign/file"));
        }));
}

TEST_F(filesystem, aNameThatIsTooLongIsAnError)
{
    std::string const name(300, 'x');
    EXPECT_EQ(errorOf([&name] { unlinkFolder(zel::String(name)); }),
              "Unable to remove the folder '" + name + "': File name too long.");
    EXPECT_EQ(errorOf([&name] { unlinkFolder(zel::String(name + "/data")); }),
              "Unable to remove the folder '" + name + "/data': File name too long.");
}

TEST_F(filesystem, aLinkInAFolderOfAnotherUserStays)
{
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "needs a folder of another user";
    }
    fs::create_directory("foreign");
    fs::create_directory_symlink("nowhere", "foreign/link");
    fs::permissions("foreign",
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_EQ(errorOf([] { unlinkFolder("foreign/link"); }),
                      "Unable to remove the folder 'foreign/link': Permission denied.");
        }));
}

TEST_F(filesystem, removesTreesWhosePathsAreTooLong)
{
    makeDeepTree(300);
    unlinkFolder(deepName);
    EXPECT_FALSE(isThere(deepName));
}

TEST_F(filesystem, leavesNoDescriptorOpen)
{
    auto const before = test::countDescriptors();
    fs::create_directories("data/a/b");
    unlinkFolder("data");
    writeFile("data", "text");
    EXPECT_NE(errorOf([] { unlinkFolder("data"); }), "");
    EXPECT_EQ(test::countDescriptors(), before);
}

TEST_F(filesystem, isNotLedOutByLinksThatAppearMeanwhile)
{
    fs::create_directories("target/inner");
    writeFile("target/inner/file", "text");
    std::atomic<bool> done{false};
    std::thread swapper(
        [&done]
        {
            while (!done)
            {
                std::error_code ignored;
                fs::create_directories("data/a/inner", ignored);
                fs::rename("data/a", "moved", ignored);
                fs::create_directory_symlink("../target", "data/a", ignored);
                fs::remove_all("moved", ignored);
            }
        });
    for (int i = 0; i < 300; ++i)
    {
        // Whether it gets everything is up to the other thread.
        errorOf([] { unlinkFolder("data"); });
    }
    done = true;
    swapper.join();
    EXPECT_EQ(test::readFile("target/inner/file"), "text");
}

TEST_F(filesystem, makesAFolderWithThoseAboveIt)
{
    ensureFolderExists("a//b/./c/../d/", 0777);
    EXPECT_TRUE(fs::is_directory("a/b/d"));
    ensureFolderExists(String(fs::absolute("x/y").string()), 0777);
    EXPECT_TRUE(fs::is_directory("x/y"));
}

TEST_F(filesystem, isContentWithAFolderThatIsThere)
{
    fs::create_directory("a");
    fs::create_directory_symlink("a", "link");
    ensureFolderExists("a", 0700);
    ensureFolderExists("link", 0700);
    ensureFolderExists("/", 0700);
    ensureFolderExists(".", 0700);
    EXPECT_TRUE(fs::is_directory("a"));
}

TEST_F(filesystem, newFoldersHaveTheModeWithoutTheUmask)
{
    mode_t const oldMask = umask(027);
    ensureFolderExists("a/b", 0777);
    ensureFolderExists("c/d", 0400);
    umask(oldMask);
    EXPECT_EQ(modeOf("a"), 0750U);
    EXPECT_EQ(modeOf("a/b"), 0750U);
    EXPECT_EQ(modeOf("c"), 0700U);
    EXPECT_EQ(modeOf("c/d"), 0400U);
}

TEST_F(filesystem, aFileInTheWayIsNamed)
{
    fs::create_directory("a");
    writeFile("a/file", "text");
    EXPECT_EQ(errorOf([] { ensureFolderExists("a/file/b/c", 0777); }),
              "Unable to create the folder 'a/file/b/c': a file is in the way: 'a/file'.");
    EXPECT_EQ(errorOf([] { ensureFolderExists("a/file", 0777); }),
              "Unable to create the folder 'a/file': a file is in the way: 'a/file'.");
    EXPECT_EQ(test::readFile("a/file"), "text");
}

TEST_F(filesystem, errorsOfMakingAFolderTellTheReason)
{
    EXPECT_EQ(errorOf([] { ensureFolderExists("", 0777); }),
              "Unable to create the folder '': No such file or directory.");
    EXPECT_THAT(errorOf([] { ensureFolderExists(String(std::string(300, 'x')), 0777); }),
                HasSubstr("': File name too long."));
    fs::permissions(".", fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                             fs::perms::others_exec);
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_EQ(errorOf([] { ensureFolderExists("a", 0777); }),
                      "Unable to create the folder 'a': Permission denied.");
        }));
}

TEST_F(filesystem, aPathWithANulIsRefused)
{
    String const path(std::string("data\0more", 9));
    fs::create_directory("data");
    EXPECT_THAT(errorOf([&] { unlinkFolder(path); }), HasSubstr("contains a NUL character."));
    EXPECT_THAT(errorOf([&] { ensureFolderExists(path, 0777); }),
                HasSubstr("contains a NUL character."));
    EXPECT_TRUE(isThere("data"));
}

TEST_F(filesystem, tellsTheCurrentFolder)
{
    EXPECT_EQ(zel::getCurrentWorkDirectoryAsString(), m_folder.getPath().string());
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(m_folder.getPath() / "gone");
    EXPECT_EQ(errorOf([] { zel::getCurrentWorkDirectoryAsString(); }),
              "Unable to determine the current folder '.': No such file or directory.");
    fs::current_path(m_folder.getPath());
}

TEST_F(filesystemInUtf8Locale, pathsReachTheSystemInUtf8)
{
    test::CTempWorkDirectory const folder;
    ensureFolderExists(String(L"\u00e4\u20ac"), 0777);
    EXPECT_TRUE(fs::is_directory("\xc3\xa4\xe2\x82\xac"));
    fs::current_path("\xc3\xa4\xe2\x82\xac");
    EXPECT_TRUE(zel::getCurrentWorkDirectoryAsString().EndsWith(L"/\u00e4\u20ac"));
    fs::current_path("..");
    unlinkFolder(String(L"\u00e4\u20ac"));
    EXPECT_FALSE(isThere("\xc3\xa4\xe2\x82\xac"));
}

TEST_F(filesystemInUtf8Locale, errorsDecodeTheReason)
{
    test::TranslatedMessage const german("No such file or directory", "Fehlt v\xc3\xb6llig");
    EXPECT_EQ(errorOf([] { ensureFolderExists("", 0777); }),
              "Unable to create the folder '': Fehlt v\xc3\xb6llig.");
}

TEST_F(filesystemInUtf8Locale, aCurrentFolderThatIsNoUtf8IsAnError)
{
    test::CTempWorkDirectory const folder;
    fs::create_directory("\xe4");
    fs::current_path("\xe4");
    EXPECT_THAT(errorOf([] { zel::getCurrentWorkDirectoryAsString(); }),
                HasSubstr("not valid in the encoding of the locale."));
}

TEST_F(filesystemInCLocale, aPathThatCannotBeEncodedIsAnErrorAndNoOtherPath)
{
    test::CTempWorkDirectory const folder;
    fs::create_directory("?");
    String const path(L"\u20ac");
    EXPECT_THAT(errorOf([&] { unlinkFolder(path); }), HasSubstr("lacks one of its characters."));
    EXPECT_TRUE(isThere("?"));
    EXPECT_NE(errorOf([&] { ensureFolderExists(path, 0777); }), "");
}

TEST_F(filesystemInCLocale, anyBytesArePathsAgain)
{
    test::CTempWorkDirectory const folder;
    fs::create_directory("\xc3\xa4\xff");
    fs::current_path("\xc3\xa4\xff");
    String const path = zel::getCurrentWorkDirectoryAsString();
    fs::current_path("..");
    unlinkFolder(path);
    EXPECT_FALSE(isThere("\xc3\xa4\xff"));
}

} // namespace
