#include <qix/secret.h>
#include <zel/CError.h>

#include "CChildProcess.h"
#include "COutputCapture.h"
#include "CScopedEnvVar.h"
#include "CTempWorkDirectory.h"
#include "errorOf.h"
#include "isSanitized.h"
#include "passesAsOrdinaryUser.h"

#include <wx/debug.h>
#include <wx/init.h>
#include <wx/log.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace std::string_literals;

using qix::getTestSecret;
using test::CScopedEnvVar;
using test::errorOf;
using testing::HasSubstr;
using testing::Not;

/// Stands for what must not be told: it is in the files, and in no output and no message.
char const secret[] = "hunter2";

char const notFound[] = "Unable to find value '/a/key' in test secrets file.";

std::string wide(std::string const& text, std::size_t before, std::size_t behind)
{
    std::string bytes;
    for (char const character : text)
    {
        bytes += std::string(before, '\0') + character + std::string(behind, '\0');
    }
    return bytes;
}

/// What one look-up gives.
struct Outcome
{
    zel::String value;
    std::string error;    ///< its message; empty without one
    std::string standard; ///< what stands on standard output
    std::string warning;  ///< what stands on standard error
};

/// Each test has a secrets file of its own in an empty folder of its own.
class secretTest : public testing::Test
{
protected:
    static void writeSecrets(std::string const& bytes)
    {
        std::ofstream("secrets", std::ios::binary) << bytes;
    }

    static Outcome lookUp(zel::String const& section = "a", zel::String const& key = "key")
    {
        Outcome outcome;
        test::COutputCapture const output;
        testing::internal::CaptureStderr();
        outcome.error = errorOf([&] { outcome.value = getTestSecret(section, key); });
        outcome.warning = testing::internal::GetCapturedStderr();
        outcome.standard = output.getText();
        EXPECT_EQ(outcome.standard, "");
        EXPECT_THAT(outcome.warning + outcome.error, Not(HasSubstr(secret)));
        return outcome;
    }

    static Outcome lookUpIn(std::string const& bytes)
    {
        writeSecrets(bytes);
        return lookUp();
    }

    /// The file gives the value, and one line on standard error tells what is wrong with it.
    static void expectValueAndWarning(std::string const& bytes, zel::String const& value,
                                      std::string const& warning)
    {
        Outcome const outcome = lookUpIn(bytes);
        EXPECT_EQ(outcome.error, "");
        EXPECT_TRUE(outcome.value == value) << outcome.value.toCPSafe();
        EXPECT_EQ(outcome.warning, "Warning: test secrets file 'secrets': " + warning + ".\n");
    }

    static void expectValue(std::string const& bytes, zel::String const& value = secret)
    {
        Outcome const outcome = lookUpIn(bytes);
        EXPECT_EQ(outcome.error, "");
        EXPECT_TRUE(outcome.value == value) << outcome.value.toCPSafe();
        EXPECT_EQ(outcome.warning, "");
    }

    static void expectNotFound(std::string const& bytes)
    {
        Outcome const outcome = lookUpIn(bytes);
        EXPECT_EQ(outcome.error, notFound);
        EXPECT_EQ(outcome.warning, "");
    }

    test::CTempWorkDirectory const m_folder;
    CScopedEnvVar const m_variable{"ZEL_TEST_SECRETS", "secrets"};
};

TEST_F(secretTest, variableThatIsNotSetOrEmptyIsAnErrorBeforeAnyFileIsTouched)
{
    std::optional<std::string> const values[] = {std::nullopt, ""};
    for (auto const& value : values)
    {
        CScopedEnvVar const variable("ZEL_TEST_SECRETS", value);
        try
        {
            getTestSecret("a", "key");
            FAIL() << "no error";
        }
        catch (zel::CError const& e)
        {
            EXPECT_STREQ(e.what(), "Test error: path to test secrets file not defined in "
                                   "environment variable ZEL_TEST_SECRETS.");
            EXPECT_EQ(typeid(e), typeid(zel::CError));
            EXPECT_EQ(e.getCode(), -1);
            EXPECT_TRUE(e.getSecondText().empty());
            EXPECT_TRUE(e.getProps().isEmpty());
            EXPECT_EQ(e.getCause(), nullptr);
        }
    }
}

TEST_F(secretTest, fileThatCannotBeReadIsTheErrorOfItsOpening)
{
    EXPECT_EQ(lookUp().error, "Unable to open the file 'secrets': No such file or directory.");
    fs::create_directory("secrets");
    EXPECT_EQ(lookUp().error, "Unable to open the file 'secrets': Is a directory.");
    fs::remove("secrets");
    mkfifo("secrets", 0666);
    int const other = open("secrets", O_RDWR);
    EXPECT_EQ(lookUp().error,
              "Unable to determine the length of the file 'secrets': Illegal seek.");
    close(other);
}

TEST_F(secretTest, fileWithoutReadPermissionIsTheErrorOfItsOpening)
{
    writeSecrets("[a]\nkey=hunter2\n");
    fs::permissions(".", fs::perms::all);
    fs::permissions("secrets", fs::perms::none);
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_EQ(errorOf([] { getTestSecret("a", "key"); }),
                      "Unable to open the file 'secrets': Permission denied.");
        }));
}

TEST_F(secretTest, missingEntryIsAnErrorThatNamesItsPath)
{
    writeSecrets("");
    try
    {
        getTestSecret("s", "k");
        FAIL() << "no error";
    }
    catch (zel::CError const& e)
    {
        EXPECT_STREQ(e.what(), "Unable to find value '/s/k' in test secrets file.");
        EXPECT_EQ(typeid(e), typeid(zel::CError));
        EXPECT_EQ(e.getCode(), -1);
        EXPECT_TRUE(e.getSecondText().empty());
        EXPECT_TRUE(e.getProps().isEmpty());
        EXPECT_EQ(e.getCause(), nullptr);
    }
}

TEST_F(secretTest, entryOfAnotherGroupIsNotFound)
{
    expectNotFound("[b]\nkey=hunter2\n[a]\nother=hunter2\n");
}

TEST_F(secretTest, givesTheValueOfTheEntry)
{
    expectValue("# a comment\n\n[b]\nkey=no\n[a]\nkey = hunter2\n");
    expectValue("[a]\nkey=\n", "");
    expectValue("[a]\nkey=\"  hunter2  \"\n", "  hunter2  ");
    expectValue("[a]\nkey=hunter2\\n\\\\\n", "hunter2\n\\");
}

TEST_F(secretTest, sectionWithASlashIsANestedGroup)
{
    writeSecrets("[a/b]\nk=hunter2\n[a]\nb=no\n");
    EXPECT_EQ(lookUp("a/b", "k").value, secret);
    EXPECT_EQ(lookUp("a", "b/k").value, secret);
}

TEST_F(secretTest, oddLookUpsAreAnsweredToo)
{
    writeSecrets("top=hunter2\n[a]\nkey=hunter2\n");
    EXPECT_EQ(lookUp("", "top").value, secret);
    EXPECT_EQ(lookUp("a", "").error, "Unable to find value '/a/' in test secrets file.");
    EXPECT_EQ(lookUp("", "").error, "Unable to find value '//' in test secrets file.");
    EXPECT_EQ(lookUp("a", "..").error, "Unable to find value '/a/..' in test secrets file.");
    EXPECT_EQ(lookUp("../..", "top").value, secret);
    EXPECT_EQ(lookUp("hunter", L"\u20ac").error.substr(0, 14), "Unable to find");
}

TEST_F(secretTest, relativeFileIsLookedForInTheFolderThatIsCurrent)
{
    fs::create_directory("other");
    writeSecrets("[a]\nkey=one\n");
    EXPECT_EQ(lookUp().value, "one");
    fs::current_path("other");
    EXPECT_EQ(lookUp().error, "Unable to open the file 'secrets': No such file or directory.");
    writeSecrets("[a]\nkey=two\n");
    EXPECT_EQ(lookUp().value, "two");
    fs::current_path("..");
}

TEST_F(secretTest, eachCallReadsTheFileAnew)
{
    expectValue("[a]\nkey=one\n", "one");
    expectValue("[a]\nkey=two and more\n", "two and more");
    expectNotFound("[a]\n");
}

TEST_F(secretTest, environmentVariablesInAValueAreExpanded)
{
    CScopedEnvVar const home("HOME", "/home/tester");
    expectValue("[a]\nkey=$HOME/x ${HOME} $(HOME)\n", "/home/tester/x /home/tester /home/tester");
    expectValue("[a]\nkey=\\\\$HOME\n", "$HOME");
}

TEST_F(secretTest, endOfTheFileAndLineEndsMakeNoDifference)
{
    expectValue("[a]\nkey=hunter2");
    expectValue("[a]\r\nkey=hunter2\r\n");
    expectValue("[a]\nkey=hunter2\n\n\n");
}

TEST_F(secretTest, encodingsAreTold)
{
    expectValue("[a]\nkey=\xc3\xa4\xe2\x82\xac\n", L"\u00e4\u20ac");
    expectValue("\xef\xbb\xbf[a]\nkey=\xc3\xa4\n", L"\u00e4");
    expectValue("[a]\nkey=\xe4\n", L"\u00e4");
    for (std::string const text : {"[a]\nkey=hunter2", "[a]\nkey=hunter2\n", "\n[a]\nkey=hunter2"})
    {
        expectValue("\xff\xfe" + wide(text, 0, 1));
        expectValue("\xfe\xff" + wide(text, 1, 0));
        expectValue("\xff\xfe\0\0"s + wide(text, 0, 3));
        expectValue("\0\0\xfe\xff"s + wide(text, 3, 0));
    }
}

TEST_F(secretTest, bytesThatAreNotValidInTheMarkedEncodingAreTold)
{
    Outcome const outcome = lookUpIn("\xef\xbb\xbf[a]\nkey=hunter2\xe4\n");
    EXPECT_EQ(outcome.error, notFound);
    EXPECT_EQ(outcome.warning, "Warning: test secrets file 'secrets': it is not well-formed.\n");
}

TEST_F(secretTest, brokenLinesAreToldAndNotQuoted)
{
    expectValueAndWarning("[a]\nhunter2\nkey=v\n", "v", "it is not well-formed in line 2");
    expectValueAndWarning("[a] hunter2\nkey=v\n", "v", "it is not well-formed in line 1");
    expectValueAndWarning("[hunter2\n[a]\nkey=v\n", "v", "it is not well-formed");
    expectValueAndWarning("[a]\nkey=v\nkey=hunter2\n", secret, "it is not well-formed in line 3");
    expectValueAndWarning("[a]\nother=\"hunter2\" hunter2\nkey=v\n", "v", "it is not well-formed");
    expectValueAndWarning("[a]\nother=hunter2\\\nkey=v\n", "v", "it is not well-formed");
    expectValueAndWarning("[a]\n!key=v\nkey=hunter2\n", "v", "it is not well-formed in line 3");
    expectValueAndWarning("[a/../..]\nkey=v\n[a]\nkey=v\n", "v", "it is not well-formed");
}

TEST_F(secretTest, aLineNumberInAValueIsNotQuoted)
{
    expectValueAndWarning("[a]\nother=line 42\\\nkey=v\n", "v", "it is not well-formed");
}

TEST_F(secretTest, ofSeveralFaultsTheFirstIsTold)
{
    expectValueAndWarning("[a]\nhunter2\nhunter2\n[a] hunter2\nkey=v\n", "v",
                          "it is not well-formed in line 2");
}

TEST_F(secretTest, groupThatStandsTwiceIsToldAndBothPartsAreFound)
{
    expectValueAndWarning("[a]\nkey=v\n[a]\nother=hunter2\n", "v", "it is not well-formed");
    EXPECT_EQ(lookUp("a", "other").value, secret);
}

TEST_F(secretTest, referenceThatIsNotClosedIsToldAndNotQuoted)
{
    writeSecrets("[a]\nkey=hunter2${HOME\n");
    Outcome const outcome = lookUp();
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.warning, "Warning: test secrets file 'secrets': it is not well-formed.\n");
}

TEST_F(secretTest, everyPrefixOfAFileGivesTheValueOrTheError)
{
    std::string const whole = "\n[b]\nx=1\n[a] ;\nq=\"r\\\"\"\nkey = \"hunter2\" # \n[a/c]\n=\n";
    for (std::size_t length = 0; length <= whole.size(); ++length)
    {
        for (std::string const& tail : {""s, "\\"s, "["s, "\""s, "\0"s, "\xff"s, "$("s})
        {
            Outcome const outcome = lookUpIn(whole.substr(0, length) + tail);
            EXPECT_TRUE(outcome.error.empty() || outcome.error == notFound) << outcome.error;
        }
    }
}

TEST_F(secretTest, aNulEndsTheText)
{
    expectValue("[a]\nkey=hunter2\n\0key=no\n"s);
    expectValue("[a]\nkey=hunter2"s + std::string(1000, '\0'));
    expectNotFound(std::string(1000, '\0'));
}

TEST_F(secretTest, theLengthCountsWith32Bits)
{
    writeSecrets("[a]\nkey=hunter2\n");
    ASSERT_EQ(truncate("secrets", std::int64_t{16} << 20), 0);
    EXPECT_EQ(lookUp().value, secret);
    ASSERT_EQ(truncate("secrets", (std::int64_t{4} << 30) + 15), 0);
    EXPECT_EQ(lookUp().value, secret);
    for (std::int64_t const length :
         {std::int64_t{2} << 30, std::int64_t{3} << 30, std::int64_t{4} << 30})
    {
        ASSERT_EQ(truncate("secrets", length), 0);
        EXPECT_EQ(lookUp().error, notFound) << length;
    }
}

TEST_F(secretTest, devicesAndFilesOfTheKernelAreEmpty)
{
    for (char const* path : {"/dev/null", "/proc/self/status"})
    {
        CScopedEnvVar const variable("ZEL_TEST_SECRETS", path);
        EXPECT_EQ(lookUp().error, notFound) << path;
    }
}

/// Counts what reaches it.
class CCountingLog : public wxLog
{
public:
    std::atomic<int> m_count{0};

protected:
    void DoLogRecord(wxLogLevel, wxString const&, wxLogRecordInfo const&) override { ++m_count; }
};

TEST_F(secretTest, messagesOfOthersGoWhereTheyWentBefore)
{
    CCountingLog log;
    wxLog* const old = wxLog::SetActiveTarget(&log);
    lookUpIn("[a] hunter2\nhunter2\nkey=v\n");
    EXPECT_EQ(log.m_count, 0);
    EXPECT_EQ(wxLog::GetActiveTarget(), &log);
    wxLogError("after");
    EXPECT_EQ(log.m_count, 1);
    wxLog::SetActiveTarget(old);
}

std::atomic<int> countedAssertions{0};

void countAssertion(wxString const&, int, wxString const&, wxString const&, wxString const&)
{
    ++countedAssertions;
}

/// Logs and asserts on a thread of its own while it lives.
class CTalker
{
public:
    CTalker()
    {
        while (m_count == 0)
        {
            std::this_thread::yield();
        }
    }

    int stop()
    {
        m_isStopped = true;
        m_thread.join();
        return m_count;
    }

private:
    void talk()
    {
        while (!m_isStopped)
        {
            wxLogError("talk");
            wxFAIL_MSG("talk");
            ++m_count;
        }
    }

    std::atomic<bool> m_isStopped{false};
    std::atomic<int> m_count{0};
    std::thread m_thread{&CTalker::talk, this};
};

/// How often the other thread's message stands in the text.
std::size_t countTalk(std::string const& text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find("talk\n", at)) != std::string::npos; ++at)
    {
        ++count;
    }
    return count;
}

/// So many lines that much is said by others while it is read.
std::string manyLines()
{
    std::string text = "[a]\nkey=hunter2\n";
    for (int i = 0; i < 5000; ++i)
    {
        text += "key" + std::to_string(i) + "=hunter2\n";
    }
    return text;
}

class talkativeThreadTest : public secretTest
{
protected:
    void SetUp() override
    {
        if (test::isThreadSanitized)
        {
            GTEST_SKIP() << "wxWidgets looks without a lock who gets messages";
        }
    }
};

TEST_F(talkativeThreadTest, messagesOfOtherThreadsGoWhereTheyWentBefore)
{
    CCountingLog log;
    countedAssertions = 0;
    wxLog* const oldLog = wxLog::SetActiveTarget(&log);
    wxAssertHandler_t const oldHandler = wxSetAssertHandler(&countAssertion);
    writeSecrets(manyLines());
    CTalker talker;
    for (int i = 0; i < 10; ++i)
    {
        EXPECT_EQ(lookUp().warning, "");
    }
    int const said = talker.stop();
    EXPECT_EQ(log.m_count, said);
    EXPECT_EQ(countedAssertions, said);
    wxSetAssertHandler(oldHandler);
    wxLog::SetActiveTarget(oldLog);
}

TEST_F(talkativeThreadTest, messagesOfOtherThreadsGoToStandardErrorWithoutATarget)
{
    wxLog* const oldLog = wxLog::SetActiveTarget(nullptr);
    wxAssertHandler_t const oldHandler = wxSetAssertHandler(nullptr);
    writeSecrets(manyLines());
    testing::internal::CaptureStderr();
    CTalker talker;
    for (int i = 0; i < 10; ++i)
    {
        EXPECT_EQ(getTestSecret("a", "key"), secret);
    }
    auto const said = static_cast<std::size_t>(talker.stop());
    std::string const heard = testing::internal::GetCapturedStderr();
    EXPECT_EQ(countTalk(heard), said);
    EXPECT_THAT(heard, Not(HasSubstr(secret)));
    wxSetAssertHandler(oldHandler);
    delete wxLog::SetActiveTarget(oldLog);
}

TEST_F(talkativeThreadTest, messagesOfOtherThreadsAreNotLostWhereNoTargetIsMade)
{
    writeSecrets(manyLines());
    testing::internal::CaptureStderr();
    test::CChildProcess child(
        []
        {
            wxLog::DontCreateOnDemand();
            delete wxLog::SetActiveTarget(nullptr);
            wxSetAssertHandler(nullptr);
            CTalker talker;
            for (int i = 0; i < 10; ++i)
            {
                getTestSecret("a", "key");
            }
            talker.stop();
            return 0;
        });
    EXPECT_EQ(child.waitForExit(), 0);
    EXPECT_GT(countTalk(testing::internal::GetCapturedStderr()), 0U);
}

/// A handler that comes and goes is called when it has gone: wxWidgets looks twice.
TEST_F(talkativeThreadTest, assertionsThatAreDisabledStayDisabled)
{
    writeSecrets(manyLines());
    wxAssertHandler_t const oldHandler = wxSetAssertHandler(nullptr);
    std::atomic<bool> isStopped{false};
    bool isDisabled = true;
    std::thread thread(
        [&]
        {
            while (!isStopped)
            {
                isDisabled = isDisabled && wxTheAssertHandler == nullptr;
                std::this_thread::yield();
            }
        });
    for (int i = 0; i < 10; ++i)
    {
        EXPECT_EQ(getTestSecret("a", "key"), secret);
    }
    isStopped = true;
    thread.join();
    EXPECT_TRUE(isDisabled);
    wxSetAssertHandler(oldHandler);
}

TEST_F(talkativeThreadTest, anAssertHandlerThatIsSetMeanwhileStays)
{
    writeSecrets(manyLines());
    wxAssertHandler_t const oldHandler = wxTheAssertHandler;
    std::atomic<bool> isSet{false};
    std::thread thread(
        [&isSet, oldHandler]
        {
            // Waits for the look-up's own handler.
            while (wxTheAssertHandler == oldHandler)
            {
                std::this_thread::yield();
            }
            wxSetAssertHandler(&countAssertion);
            isSet = true;
        });
    while (!isSet)
    {
        getTestSecret("a", "key");
    }
    thread.join();
    EXPECT_EQ(wxTheAssertHandler, &countAssertion);
    wxSetAssertHandler(oldHandler);
}

TEST_F(secretTest, isToldToThreadsBesideTheMainOneOfWxWidgets)
{
    test::CChildProcess child(
        []
        {
            wxInitializer const initializer;
            std::thread(
                [] {
                    expectValueAndWarning("[a] hunter2\nkey=v\n", "v",
                                          "it is not well-formed in line 1");
                })
                .join();
            return testing::Test::HasFailure() ? 1 : 0;
        });
    EXPECT_EQ(child.waitForExit(), 0);
}

/// How many bytes of addresses the process has taken, used or not.
std::size_t takenAddresses()
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

constexpr int cannotBeLimited = 98;

/// Emulators of another processor take the limit and do not heed it; they tell when they are asked.
bool limitAddresses(rlim_t limit)
{
    rlimit addresses = {limit, limit};
    return setrlimit(RLIMIT_AS, &addresses) == 0 && getrlimit(RLIMIT_AS, &addresses) == 0 &&
           addresses.rlim_cur == limit;
}

/// A look-up with little memory in the file whose text has NULs behind it.
void expectWithLittleMemory(std::int64_t length, zel::String const& value, std::string const& error)
{
    if (test::isSanitized)
    {
        GTEST_SKIP() << "sanitizers take all addresses";
    }
    ASSERT_EQ(truncate("secrets", length), 0);
    test::CChildProcess child(
        [&value, &error]
        {
            rlim_t const limit = takenAddresses() + (std::size_t{256} << 20);
            if (!limitAddresses(limit))
            {
                return cannotBeLimited;
            }
            zel::String found;
            bool const asExpected =
                errorOf([&found] { found = getTestSecret("a", "key"); }) == error && found == value;
            return asExpected ? 0 : 1;
        });
    int const status = child.waitForExit();
    if (status == cannotBeLimited)
    {
        GTEST_SKIP() << "memory cannot be limited here";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(secretTest, aFileThatIsTooLargeForTheMemoryIsAnError)
{
    writeSecrets("[a]\nkey=hunter2\n");
    expectWithLittleMemory(std::int64_t{1} << 30, "",
                           "Unable to read the test secrets file 'secrets': it is too large for "
                           "the memory.");
}

TEST_F(secretTest, nulsBehindTheTextAreNotParsed)
{
    writeSecrets("[a]\nkey=hunter2\n");
    expectWithLittleMemory(std::int64_t{64} << 20, secret, "");
}

TEST_F(secretTest, severalThreadsMayAskAtOnce)
{
    writeSecrets("[a] hunter2\nhunter2\nkey=${HOME\nkey=hunter2\n[a]\nother=hunter2\n");
    testing::internal::CaptureStderr();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            []
            {
                for (int j = 0; j < 50; ++j)
                {
                    EXPECT_EQ(getTestSecret("a", "key"), secret);
                    EXPECT_EQ(errorOf([] { getTestSecret("b", "key"); }),
                              "Unable to find value '/b/key' in test secrets file.");
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(), Not(HasSubstr(secret)));
}

} // namespace
