// What the process may do: it depends on the user, and on a secret from outside the code.

#include <qix/CTestFolder.h>
#include <qix/secret.h>
#include <qix/test.h>
#include <qix/util.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace fs = std::filesystem;

namespace
{

fs::path makeClosedFile(qix::CTestFolder const& folder)
{
    fs::path const path = folder.getPath().getText().toCPSafe() + "/closed";
    std::ofstream(path) << "text";
    fs::permissions(path, fs::perms::none);
    return path;
}

} // namespace

QIX_TEST(account, administratorReadsClosedFile)
{
    qix::throwSkippedExceptionIfNotAdmin();
    qix::CTestFolder const folder("administratorReadsClosedFile");
    QIX_CHECK(std::ifstream(makeClosedFile(folder)).is_open());
}

QIX_TEST(account, othersDoNotReadClosedFile)
{
    qix::throwSkippedExceptionIfAdmin();
    qix::CTestFolder const folder("othersDoNotReadClosedFile");
    QIX_CHECK(!std::ifstream(makeClosedFile(folder)).is_open());
}

// A check shows the values that it compares when it fails: compare a secret to true or false.
QIX_TEST(account, passwordIsStrong)
{
    if (std::getenv("ZEL_TEST_SECRETS") == nullptr)
    {
        log("ZEL_TEST_SECRETS does not name a secrets file.");
        QIX_SKIP();
    }
    std::string const password = qix::getTestSecret("database", "password").toCPSafe();
    bool const isStrong = std::regex_search(password, std::regex(".{12}")) &&
                          std::regex_search(password, std::regex("[0-9].*[0-9]"));
    QIX_CHECK(isStrong);
}
