// A static test folder is removed when the process ends. By then the separators of paths, which
// were made after it, have gone, and whoever asks for them waits for ever.

#include <qix/CTestFolder.h>
#include <zel/TPathImpl.h>

#include "CChildProcess.h"
#include "CTempWorkDirectory.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace
{

namespace fs = std::filesystem;

/// An absolute name is not joined, so that the folder is made before the separators are.
int useStaticFolder(fs::path const& path)
{
    static qix::CTestFolder const folder{zel::String(path.string())};
    fs::create_directories(path / "a/b");
    fs::create_directory_symlink("/", path / "a/link");
    std::ofstream(path / "a/file") << "text";
    zel::CPath const joined = folder.getPath() << "a"
                                               << "file";
    std::exit(fs::exists(joined.getText().toCPSafe()) ? 0 : 1);
}

} // namespace

int main()
{
    test::CTempWorkDirectory const work;
    fs::path const path = work.getPath() / "data";
    test::CChildProcess child([&path] { return useStaticFolder(path); });
    int const status = child.waitForExit();
    bool const isGone = !fs::exists(path);
    std::printf("exit status %d, the folder %s\n", status, isGone ? "has gone" : "is there");
    return status == 0 && isGone ? 0 : 1;
}
