#include <qix/CTestFolder.h>
#include <zel/CBadPathError.h>
#include <zel/CInvalidArgError.h>
#include <zel/P.h>

#include "COutputCapture.h"
#include "CTempWorkDirectory.h"
#include "errorOf.h"
#include "passesAsOrdinaryUser.h"
#include "readFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

using qix::CTestFolder;
using test::errorOf;

void writeFile(fs::path const& path, std::string const& text)
{
    std::ofstream(path) << text;
}

std::string textOf(CTestFolder const& folder)
{
    return folder.getPath().getText().toCPSafe();
}

bool isEmptyFolder(fs::path const& path)
{
    return fs::is_directory(fs::symlink_status(path)) && fs::is_empty(path);
}

/// Each test works in an empty folder of its own, into which everybody may write.
class CTestFolderTest : public testing::Test
{
protected:
    CTestFolderTest() { fs::permissions(".", fs::perms::all); }

    std::string inWorkDirectory(std::string const& name) const
    {
        return (m_folder.getPath() / name).string();
    }

    test::CTempWorkDirectory const m_folder;
};

TEST_F(CTestFolderTest, anEmptyNameIsRefusedAndNothingIsTouched)
{
    writeFile("file", "text");
    EXPECT_THROW(CTestFolder(""), zel::CInvalidArgError);
    EXPECT_EQ(errorOf([] { CTestFolder(""); }),
              "Invalid argument passed to 'CTestFolder constructor': the name must not be empty.");
    EXPECT_EQ(test::readFile("file"), "text");
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 1);
}

TEST_F(CTestFolderTest, namesAreNormalizedBehindTheCurrentFolder)
{
    for (char const* name : {"data", "sub/../data", "./data", "data//"})
    {
        CTestFolder const folder(name);
        EXPECT_EQ(textOf(folder), inWorkDirectory("data")) << name;
        EXPECT_TRUE(folder.getPath().isNormalized());
        EXPECT_TRUE(isEmptyFolder("data")) << name;
    }
    EXPECT_FALSE(fs::exists("sub"));
}

TEST_F(CTestFolderTest, anAbsoluteNameIsTakenAsItIs)
{
    std::string const name = inWorkDirectory("abs/dir");
    {
        CTestFolder const folder{zel::String(name)};
        EXPECT_EQ(textOf(folder), name);
        EXPECT_TRUE(isEmptyFolder(name));
    }
    EXPECT_FALSE(fs::exists(name));
    EXPECT_TRUE(isEmptyFolder("abs")) << "a folder above stays";
}

TEST_F(CTestFolderTest, aNameOfBlanksIsAName)
{
    CTestFolder const folder("  ");
    EXPECT_TRUE(isEmptyFolder("  "));
}

TEST_F(CTestFolderTest, whatWasThereIsWiped)
{
    fs::create_directories("data/old/inner");
    writeFile("data/old/file", "text");
    writeFile("data/file", "text");
    fs::permissions("data", fs::perms::owner_all);
    CTestFolder const folder("data");
    EXPECT_TRUE(isEmptyFolder("data"));
}

TEST_F(CTestFolderTest, isOpenToAllButForTheUmask)
{
    mode_t const oldMask = umask(022);
    CTestFolder const folder("data");
    umask(oldMask);
    EXPECT_EQ(fs::status("data").permissions(), static_cast<fs::perms>(0755));
}

TEST_F(CTestFolderTest, goesWithEverythingInIt)
{
    {
        CTestFolder const folder("data");
        fs::create_directories("data/a/b/c");
        writeFile("data/file", "text");
        writeFile("data/a/b/c/file", "text");
    }
    EXPECT_FALSE(fs::exists("data"));
}

TEST_F(CTestFolderTest, targetsOfLinksSurvive)
{
    fs::create_directory("target");
    writeFile("target/file", "text");
    {
        CTestFolder const folder("data");
        fs::create_directory_symlink("../target", "data/link");
        fs::create_directory_symlink("/", "data/root");
    }
    EXPECT_FALSE(fs::exists("data"));
    EXPECT_EQ(test::readFile("target/file"), "text");
}

TEST_F(CTestFolderTest, aLinkInItsPlaceIsReplacedByAFolder)
{
    fs::create_directory("target");
    writeFile("target/file", "text");
    fs::create_directory_symlink("target", "data");
    CTestFolder const folder("data");
    EXPECT_TRUE(isEmptyFolder("data"));
    EXPECT_EQ(test::readFile("target/file"), "text");
}

TEST_F(CTestFolderTest, foldersWithoutPermissionsGoToo)
{
    auto const leaveClosedFolders = []
    {
        {
            CTestFolder const folder("data");
            fs::create_directories("data/closed/inner");
            writeFile("data/closed/inner/file", "text");
            fs::permissions("data/closed/inner", fs::perms::none);
            fs::permissions("data/closed", fs::perms::none);
            fs::permissions("data", fs::perms::none);
        }
        EXPECT_FALSE(fs::exists("data"));
    };
    leaveClosedFolders();
    EXPECT_TRUE(test::passesAsOrdinaryUser(leaveClosedFolders));
}

TEST_F(CTestFolderTest, staysWhereItIsWhenTheCurrentFolderChanges)
{
    fs::create_directory("other");
    fs::create_directory("other/data");
    {
        CTestFolder const folder("data");
        fs::current_path("other");
        EXPECT_EQ(textOf(folder), inWorkDirectory("data"));
    }
    EXPECT_FALSE(fs::exists(inWorkDirectory("data")));
    EXPECT_TRUE(fs::exists(inWorkDirectory("other/data")));
}

TEST_F(CTestFolderTest, aFolderThatTheTestRemovedIsNoProblem)
{
    test::COutputCapture const output;
    {
        CTestFolder const folder("data");
        fs::remove("data");
    }
    EXPECT_EQ(output.getText(), "");
}

TEST_F(CTestFolderTest, theEndIsSilentWhenItCannotBeRemoved)
{
    test::COutputCapture const output;
    {
        CTestFolder const folder("data");
        fs::remove("data");
        writeFile("data", "a file in its place");
    }
    EXPECT_EQ(output.getText(), "");
    EXPECT_EQ(test::readFile("data"), "a file in its place");
}

TEST_F(CTestFolderTest, twoOfOneNameShareTheFolder)
{
    auto first = std::make_unique<CTestFolder>("data");
    writeFile("data/file", "text");
    auto const second = std::make_unique<CTestFolder>("data");
    EXPECT_TRUE(isEmptyFolder("data"));
    first.reset();
    EXPECT_FALSE(fs::exists("data"));
}

TEST_F(CTestFolderTest, aNameThatClimbsAboveTheRootIsRefused)
{
    EXPECT_THROW(CTestFolder("/../data"), zel::CBadPathError);
    EXPECT_EQ(errorOf([] { CTestFolder("/../data"); }), "Invalid path: /../data");
}

TEST_F(CTestFolderTest, theParentOfTheCurrentFolderIsANameToo)
{
    fs::create_directories("parent/current");
    writeFile("parent/file", "text");
    fs::current_path("parent/current");
    {
        CTestFolder const folder("..");
        EXPECT_EQ(textOf(folder), inWorkDirectory("parent"));
        EXPECT_TRUE(isEmptyFolder(inWorkDirectory("parent")));
    }
    EXPECT_FALSE(fs::exists(inWorkDirectory("parent")));
}

TEST_F(CTestFolderTest, aFileInTheWayIsAnErrorAndStays)
{
    writeFile("data", "text");
    EXPECT_EQ(errorOf([] { CTestFolder("data"); }),
              "Unable to remove the folder '" + inWorkDirectory("data") + "': it is a file.");
    EXPECT_EQ(errorOf([] { CTestFolder("data/inner"); }),
              "Unable to create the folder '" + inWorkDirectory("data/inner") +
                  "': a file is in the way: '" + inWorkDirectory("data") + "'.");
    EXPECT_EQ(test::readFile("data"), "text");
}

TEST_F(CTestFolderTest, aConstructionThatFailsHalfWayLeavesTheOldFolderGone)
{
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "needs a folder of another user";
    }
    // Whoever may remove a folder may make it again: only its contents go before the error.
    fs::create_directories("closed/data");
    writeFile("closed/data/file", "text");
    fs::permissions("closed/data", fs::perms::all);
    fs::permissions("closed", static_cast<fs::perms>(0755));
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_THAT(errorOf([] { CTestFolder("closed/data"); }),
                        testing::HasSubstr("Permission denied."));
        }));
    EXPECT_TRUE(isEmptyFolder("closed/data"));
}

TEST_F(CTestFolderTest, isShared)
{
    zel::P<CTestFolder> folder = zel::newObj<CTestFolder>("data");
    zel::P<CTestFolder> const other = folder;
    EXPECT_EQ(folder->getRefCount(), 2);
    folder = nullptr;
    EXPECT_TRUE(isEmptyFolder("data"));
}

} // namespace
