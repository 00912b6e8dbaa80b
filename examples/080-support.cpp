// What tests use while they run: folders, secrets, and the rights of the user.

#include <qix/CTestFolder.h>
#include <qix/hidden.h>
#include <qix/secret.h>
#include <qix/test.h>
#include <qix/util.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

// The folder is empty, whatever an earlier run left behind, and goes away with the object.
QIX_TEST(folder, startsEmpty)
{
    qix::CTestFolder const folder("scratch");
    std::string const path = folder.getPath().getText().toCPSafe();
    QIX_CHECK(std::filesystem::is_empty(path));

    std::ofstream(path + "/notes.txt") << "gone after the test";
    log("wrote " + std::filesystem::path(path).filename().string() + "/notes.txt");
}

// The password is in a file that an environment variable names, and not in the code. Without it
// the lookup throws, which fails the test.
QIX_TEST(secret, logsIn)
{
    zel::String const password = qix::getTestSecret("database", "password");
    // A check that fails shows its values, and so what is secret is hidden from it.
    QIX_CHECK(qix::hidden(password) != "");
}

// Runs as root only, and is skipped for everybody else.
QIX_TEST(privileges, changesOwner)
{
    qix::throwSkippedExceptionIfNotAdmin();
    qix::CTestFolder const folder("owned");
    std::string const path = folder.getPath().getText().toCPSafe();
    QIX_CHECK(chown(path.c_str(), 65534, 65534) == 0);
}

// Root may write everywhere, so there is nothing to be refused.
QIX_TEST(privileges, refusesSystemFolder)
{
    qix::throwSkippedExceptionIfAdmin();
    QIX_CHECK_THROWS_AS(std::filesystem::create_directory("/qix"),
                        std::filesystem::filesystem_error);
}
