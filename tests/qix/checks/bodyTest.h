#pragma once

#include <qix/test.h>

#include <functional>
#include <string>

namespace test
{

/// A test whose body is a function.
class CBodyTest : public qix::CTestItem
{
public:
    explicit CBodyTest(std::function<void()> body) : CTestItem("test"), m_body(std::move(body)) {}

protected:
    void body() override { m_body(); }

private:
    std::function<void()> m_body;
};

/// Runs the body as a test without sub-tests. Returns what() of its failure, or "ok".
inline std::string run(std::function<void()> body)
{
    CBodyTest item(std::move(body));
    try
    {
        item.run(nullptr);
        return "ok";
    }
    catch (std::exception const& e)
    {
        return e.what();
    }
}

/// The text with every "folders/file.cpp:123: " in it removed.
inline std::string withoutPlaces(std::string text)
{
    std::string const file = ".cpp:";
    for (std::size_t at; (at = text.find(file)) != std::string::npos;)
    {
        std::size_t const begin = text.find_last_of(" \n", at) + 1;
        std::size_t const end = text.find(": ", at + file.size()) + 2;
        text.erase(begin, end - begin);
    }
    return text;
}

/// The second line of a failure without its indentation: what the check tells of the values.
inline std::string valuesOf(std::function<void()> body)
{
    std::string const text = run(std::move(body));
    std::size_t const line = text.find("\n    ");
    return line == std::string::npos ? "(none)" : text.substr(line + 5);
}

} // namespace test
