// What happens when a disk fails, or another process changes files between two calls.

#include <zel/CPosixFileInStream.h>
#include <zel/filesystem.h>

#include "CBeforeCall.h"
#include "CChildProcess.h"
#include "CTempWorkDirectory.h"
#include "errorOf.h"
#include "readFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

using test::CBeforeCall;
using test::errorOf;
using zel::ensureFolderExists;
using zel::unlinkFolder;

/// There is "data/file" and "data/inner/deep/file" in an empty folder.
class interference : public testing::Test
{
protected:
    interference()
    {
        fs::create_directories("data/inner/deep");
        std::ofstream("data/file") << "text";
        std::ofstream("data/inner/deep/file") << "text";
    }

    /// The error of removing "data" while a call fails.
    static std::string errorWhen(char const* function, int number, int error)
    {
        CBeforeCall const failing(function, number, error);
        std::string const message = errorOf([] { unlinkFolder("data"); });
        EXPECT_TRUE(failing.hasHappened());
        return message;
    }

    /// Removes "data" while something happens before a call. Nothing of it must be left.
    static void expectRemoved(char const* function, int number, std::function<void()> const& event)
    {
        CBeforeCall const meanwhile(function, number,
                                    [&event]
                                    {
                                        event();
                                        return 0;
                                    });
        EXPECT_EQ(errorOf([] { unlinkFolder("data"); }), "");
        EXPECT_TRUE(meanwhile.hasHappened());
        EXPECT_FALSE(fs::exists(fs::symlink_status("data")));
    }

    test::CTempWorkDirectory const m_folder;
};

// The folders are opened in this order: "data", "inner", "deep".
constexpr int openingData = 1;
constexpr int openingInner = 2;

TEST_F(interference, anErrorOfTheDiskIsToldAndNothingElseRemoved)
{
    EXPECT_EQ(errorWhen("openat", CBeforeCall::everyCall, EIO),
              "Unable to remove the folder 'data': Input/output error.");
    EXPECT_EQ(errorWhen("unlinkat", CBeforeCall::everyCall, EBUSY),
              "Unable to remove the folder 'data': Device or resource busy.");
    EXPECT_EQ(test::readFile("data/inner/deep/file"), "text");
}

TEST_F(interference, whatHasGoneMeanwhileIsRemoved)
{
    fs::copy("data", "again", fs::copy_options::recursive);
    expectRemoved("openat", openingData, [] { fs::remove_all("data"); });
    fs::rename("again", "data");
    fs::copy("data", "again", fs::copy_options::recursive);
    expectRemoved("openat", openingInner, [] { fs::remove_all("data/inner"); });
    fs::rename("again", "data");
    expectRemoved("unlinkat", 1,
                  []
                  {
                      fs::remove_all("data/file");
                      fs::remove_all("data/inner");
                  });
}

TEST_F(interference, aFolderThatHasBecomeAFileIsRemoved)
{
    expectRemoved("openat", openingInner,
                  []
                  {
                      fs::remove_all("data/inner");
                      std::ofstream("data/inner") << "text";
                  });
}

void swapForALink(char const* folder)
{
    fs::remove_all(folder);
    fs::create_directory_symlink("../target", folder);
}

TEST_F(interference, aFolderThatHasBecomeALinkIsNotFollowed)
{
    fs::create_directory("target");
    std::ofstream("target/file") << "text";
    expectRemoved("openat", openingInner, [] { swapForALink("data/inner"); });
    EXPECT_EQ(test::readFile("target/file"), "text");
}

TEST_F(interference, aFolderThatHasBecomeALinkIsNotOpenedUp)
{
    fs::create_directories("target/deep");
    fs::permissions("target/deep", fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions("target", fs::perms::owner_read | fs::perms::owner_exec);
    CBeforeCall const closed("openat", openingData, EACCES);
    // The folders are opened up in the same order once the removal has failed.
    expectRemoved("openat", openingData + openingInner, [] { swapForALink("data/inner"); });
    EXPECT_TRUE(closed.hasHappened());
    EXPECT_EQ(fs::status("target").permissions(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(fs::status("target/deep").permissions(),
              fs::perms::owner_read | fs::perms::owner_exec);
}

TEST_F(interference, aFolderThatIsOpenedUpAndSwappedForALinkLeavesTheTargetAsItIs)
{
    fs::create_directories("target/deep");
    fs::permissions("target/deep", fs::perms::owner_read | fs::perms::owner_exec);
    CBeforeCall const closed("openat", openingData, EACCES);
    // "inner" is open by now, and "deep" is opened from there.
    expectRemoved("openat", openingData + openingInner + 1,
                  []
                  {
                      fs::rename("data/inner", "moved");
                      fs::create_directory_symlink("../target", "data/inner");
                  });
    EXPECT_TRUE(closed.hasHappened());
    EXPECT_EQ(fs::status("target/deep").permissions(),
              fs::perms::owner_read | fs::perms::owner_exec);
}

TEST_F(interference, aFolderThatIsFilledWithoutEndIsGivenUp)
{
    CBeforeCall const filling("unlinkat", CBeforeCall::everyCall,
                              []
                              {
                                  std::ofstream("data/inner/deep/new") << "text";
                                  return 0;
                              });
    EXPECT_EQ(errorOf([] { unlinkFolder("data"); }),
              "Unable to remove the folder 'data': Directory not empty.");
}

TEST_F(interference, aFolderThatIsMovedAwayTakesNothingWithIt)
{
    fs::create_directory("elsewhere");
    std::ofstream("elsewhere/file") << "text";
    CBeforeCall const moving("unlinkat", CBeforeCall::everyCall,
                             []
                             {
                                 std::error_code ignored;
                                 if (!fs::exists("data/inner/deep/file"))
                                 {
                                     fs::rename("data/inner/deep", "elsewhere/deep", ignored);
                                 }
                                 return 0;
                             });
    EXPECT_EQ(errorOf([] { unlinkFolder("data"); }), "");
    EXPECT_TRUE(fs::exists("elsewhere/deep"));
    EXPECT_EQ(test::readFile("elsewhere/file"), "text");
}

TEST_F(interference, aFolderThatSomebodyElseMakesMeanwhileIsThere)
{
    CBeforeCall const meanwhile("mkdir", 1,
                                []
                                {
                                    fs::create_directory("new");
                                    return 0;
                                });
    ensureFolderExists("new/inner", 0777);
    EXPECT_TRUE(meanwhile.hasHappened());
    EXPECT_TRUE(fs::is_directory("new/inner"));
}

TEST_F(interference, openingAFileIsRepeatedWhenItIsInterrupted)
{
    CBeforeCall const interrupted("open", 1, EINTR);
    zel::CPosixFileInStream const file("data/file");
    EXPECT_TRUE(interrupted.hasHappened());
    EXPECT_EQ(file.getLength(), 4);
}

TEST_F(interference, anOldInterruptionIsNotTakenForOneOfTheFirstDescriptor)
{
    test::CChildProcess child(
        []
        {
            close(STDIN_FILENO);
            {
                errno = EINTR;
                zel::CPosixFileInStream const file("data/file");
            }
            return fcntl(STDIN_FILENO, F_GETFD) == -1 ? 0 : 1;
        });
    EXPECT_EQ(child.waitForExit(), 0);
}

TEST_F(interference, aFileThatTellsNothingOfItselfIsAnError)
{
    {
        CBeforeCall const failing("fstat", 1, EIO);
        EXPECT_EQ(errorOf([] { zel::CPosixFileInStream const file("data/file"); }),
                  "Unable to open the file 'data/file': Input/output error.");
    }
    zel::CPosixFileInStream const file("data/file");
    CBeforeCall const failing("fstat", 1, EIO);
    EXPECT_EQ(errorOf([&file] { static_cast<void>(file.getLength()); }),
              "Unable to determine the length of the file 'data/file': Input/output error.");
}

} // namespace
