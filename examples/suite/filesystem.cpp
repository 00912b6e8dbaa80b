// Tests of std::filesystem, each in a folder of its own below the working directory.

#include <qix/CTestFolder.h>
#include <qix/test.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace fs = std::filesystem;

namespace
{

/// A test folder, as the paths of the library that is tested.
class CScratchFolder
{
public:
    explicit CScratchFolder(std::string const& name) : m_folder(name) {}

    fs::path path() const { return m_folder.getPath().getText().toCPSafe(); }
    fs::path operator/(std::string const& name) const { return path() / name; }

private:
    qix::CTestFolder m_folder;
};

void writeFile(fs::path const& path, std::string const& text)
{
    std::ofstream(path) << text;
}

std::string readFile(fs::path const& path)
{
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace

QIX_TEST(filesystem, listsWholeTree)
{
    CScratchFolder const folder("listsWholeTree");
    fs::create_directories(folder / "a/b/c");
    writeFile(folder / "a/b/file", "text");

    std::set<std::string> found;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder.path()))
    {
        found.insert(fs::relative(entry.path(), folder.path()).string());
    }
    for (std::string const& name : found)
    {
        log(name);
    }
    QIX_CHECK(found == (std::set<std::string>{"a", "a/b", "a/b/c", "a/b/file"}));
}

QIX_TEST(filesystem, renameReplacesTarget)
{
    CScratchFolder const folder("renameReplacesTarget");
    writeFile(folder / "old", "old");
    writeFile(folder / "new", "new");

    fs::rename(folder / "new", folder / "old");

    QIX_CHECK(readFile(folder / "old") == "new");
    QIX_CHECK(!fs::exists(folder / "new"));
}

QIX_TEST(filesystem, reportsFreeSpace)
{
    fs::space_info const space = fs::space(fs::current_path());
    QIX_CHECK(space.available <= space.capacity);
}

QIX_TEST(filesystem, namesIgnoreCase)
{
    CScratchFolder const folder("namesIgnoreCase");
    writeFile(folder / "name", "text");
    if (!fs::exists(folder / "NAME"))
    {
        log("Names of different case are different names here.");
        QIX_SKIP();
    }
    QIX_CHECK(fs::equivalent(folder / "name", folder / "NAME"));
}

QIX_TEST(filesystem.links, readThroughLink)
{
    CScratchFolder const folder("readThroughLink");
    writeFile(folder / "target", "text");
    fs::create_symlink("target", folder / "link");

    QIX_CHECK(fs::is_symlink(folder / "link"));
    QIX_CHECK(readFile(folder / "link") == "text");
}

QIX_TEST(filesystem.links, removingLinkKeepsTarget)
{
    CScratchFolder const folder("removingLinkKeepsTarget");
    fs::create_directory(folder / "target");
    writeFile(folder / "target/file", "text");
    fs::create_directory_symlink("target", folder / "link");

    QIX_CHECK(fs::remove_all(folder / "link") == 1);
    QIX_CHECK(readFile(folder / "target/file") == "text");
}

QIX_TEST(filesystem.links, circleIsAnError)
{
    CScratchFolder const folder("circleIsAnError");
    fs::create_symlink("b", folder / "a");
    fs::create_symlink("a", folder / "b");

    std::error_code error;
    static_cast<void>(fs::canonical(folder / "a", error));
    QIX_CHECK(error == std::errc::too_many_symbolic_link_levels);
}
