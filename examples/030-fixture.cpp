// A fixture prepares what several tests need. Each test has an object of its own, and its hooks
// are called around the body: clean, setUp, the body, tearDown, clean.

#include <qix/test.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace
{

class CFileFixture : public qix::CTestItem
{
protected:
    // What an earlier run left behind when it crashed is gone before the test, and what this one
    // leaves behind is gone after it.
    void clean() override { std::filesystem::remove_all("notes"); }

    void setUp() override
    {
        std::filesystem::create_directory("notes");
        std::ofstream(m_file) << "one\ntwo\n";
    }

    void tearDown() override { log("had " + std::to_string(countLines()) + " lines"); }

    int countLines() const
    {
        std::ifstream file(m_file);
        int count = 0;
        for (std::string line; std::getline(file, line);)
        {
            ++count;
        }
        return count;
    }

    std::string m_file = "notes/today.txt";
};

} // namespace

QIX_TEST_F(CFileFixture, notes, countsLines)
{
    QIX_CHECK(countLines() == 2);
}

QIX_TEST_F(CFileFixture, notes, appends)
{
    std::ofstream(m_file, std::ios::app) << "three\n";
    QIX_CHECK(countLines() == 3);
}

// A dotted group lies in another one. Long tests run when the selection has a "+".
QIX_TEST_F(CFileFixture, notes.backup, survivesRemoval, Long)
{
    std::filesystem::remove(m_file);
    QIX_CHECK(countLines() == 0);
}
