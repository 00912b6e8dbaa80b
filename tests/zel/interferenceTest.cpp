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

// The folders are opened in this order: "data" by its name and as ".", "inner", ".", "deep", ".";
// then on the way up ".." of "deep" and of "inner".
constexpr int openingData = 1;
constexpr int readingData = 2;
constexpr int openingInner = 3;
constexpr int readingInner = 4;
constexpr int leavingDeep = 7;

// Before it both files are removed, and both folders are tried as files.
constexpr int removingDeep = 5;

TEST_F(interference, anErrorOfTheDiskIsToldWithItsPlace)
{
    EXPECT_EQ(errorWhen("openat", openingData, EIO),
              "Unable to remove the folder 'data': Input/output error.");
    EXPECT_EQ(errorWhen("openat", readingData, EMFILE),
              "Unable to remove the folder 'data': Too many open files.");
    EXPECT_EQ(errorWhen("fdopendir", 1, ENOMEM),
              "Unable to remove the folder 'data': Cannot allocate memory.");
    EXPECT_EQ(errorWhen("readdir", 1, EIO),
              "Unable to remove the folder 'data': Input/output error.");
    EXPECT_EQ(errorWhen("fstat", 1, EIO),
              "Unable to remove the folder 'data': Input/output error.");
    EXPECT_EQ(errorWhen("fstatat", 1, EIO),
              "Unable to remove the folder 'data': Input/output error.");
    EXPECT_EQ(test::readFile("data/inner/deep/file"), "text");
    EXPECT_EQ(errorWhen("openat", openingInner, EIO),
              "Unable to remove the folder 'data/inner': Input/output error.");
    EXPECT_EQ(errorWhen("openat", readingInner, EMFILE),
              "Unable to remove the folder 'data/inner': Too many open files.");
    EXPECT_EQ(errorWhen("openat", leavingDeep, EACCES),
              "Unable to remove the folder 'data/inner/deep/..': Permission denied.");
    constexpr int lookingAbove = 4; // behind those of "data", "inner" and "deep"
    EXPECT_EQ(errorWhen("fstat", lookingAbove, EIO),
              "Unable to remove the folder 'data/inner/deep/..': Input/output error.");
    EXPECT_TRUE(fs::exists("data/inner/deep"));
}

TEST_F(interference, aFolderThatStaysIsToldWithItsPlace)
{
    fs::remove("data/file");
    fs::remove("data/inner/deep/file");
    EXPECT_EQ(errorWhen("unlinkat", removingDeep - 2, EBUSY),
              "Unable to remove the folder 'data/inner/deep': Device or resource busy.");
    EXPECT_EQ(errorWhen("unlinkat", 1, EIO),
              "Unable to remove the folder 'data/inner': Input/output error.");
}

TEST_F(interference, aFolderThatCannotBeOpenedUpTellsWhyItIsClosed)
{
    CBeforeCall const closed("openat", openingInner, EACCES);
    CBeforeCall const stillClosed("openat", openingInner + 1, EACCES);
    EXPECT_EQ(errorWhen("fchmodat", 1, EPERM),
              "Unable to remove the folder 'data/inner': Permission denied.");
    EXPECT_TRUE(closed.hasHappened() && stillClosed.hasHappened());
}

TEST_F(interference, whatHasGoneMeanwhileIsRemoved)
{
    fs::copy("data", "again", fs::copy_options::recursive);
    expectRemoved("openat", openingData, [] { fs::remove_all("data"); });
    fs::rename("again", "data");
    fs::copy("data", "again", fs::copy_options::recursive);
    expectRemoved("openat", openingInner, [] { fs::remove_all("data/inner"); });
    fs::rename("again", "data");
    fs::copy("data", "again", fs::copy_options::recursive);
    expectRemoved("unlinkat", 1,
                  []
                  {
                      fs::remove_all("data/file");
                      fs::remove_all("data/inner");
                  });
    fs::rename("again", "data");
    expectRemoved("unlinkat", removingDeep, [] { fs::remove("data/inner/deep"); });
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

TEST_F(interference, aFolderThatHasBecomeALinkIsNotFollowed)
{
    fs::create_directory("target");
    std::ofstream("target/file") << "text";
    expectRemoved("openat", openingInner,
                  []
                  {
                      fs::remove_all("data/inner");
                      fs::create_directory_symlink("../target", "data/inner");
                  });
    EXPECT_EQ(test::readFile("target/file"), "text");
}

TEST_F(interference, aFolderThatIsFilledAgainIsEmptiedAgain)
{
    expectRemoved("unlinkat", removingDeep, [] { std::ofstream("data/inner/deep/new") << "text"; });
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
              "Unable to remove the folder 'data/inner/deep': Directory not empty.");
}

TEST_F(interference, aFolderThatIsMovedAwayTakesNothingWithIt)
{
    fs::create_directory("elsewhere");
    std::ofstream("elsewhere/file") << "text";
    CBeforeCall const moving("openat", leavingDeep,
                             []
                             {
                                 fs::rename("data/inner/deep", "elsewhere/deep");
                                 return 0;
                             });
    EXPECT_EQ(errorOf([] { unlinkFolder("data"); }),
              "Unable to remove the folder 'data': a folder inside it was moved away meanwhile.");
    EXPECT_EQ(test::readFile("elsewhere/file"), "text");
}

TEST_F(interference, aLinkThatHasGoneMeanwhileIsRemoved)
{
    fs::remove_all("data");
    fs::create_directory_symlink("nowhere", "data");
    expectRemoved("unlinkat", 1, [] { fs::remove("data"); });
    fs::create_directory_symlink("nowhere", "data");
    EXPECT_EQ(errorWhen("unlinkat", 1, EIO),
              "Unable to remove the folder 'data': Input/output error.");
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
              "Unable to tell the length of the file 'data/file': Input/output error.");
}

} // namespace
