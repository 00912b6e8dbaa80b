#pragma once
#pragma GCC system_header

#include <qix/qix.h>
#include <zel/zel.h>

#include <map>
#include <sstream>
#include <stdexcept>

/// A leaf test with a name, a duration and a body.
class CLeaf : public zel::CBase, public virtual qix::ITestItem
{
public:
    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return m_duration; }
    bool isInteractive() const override { return m_interactive; }
    bool containsAnyInteractive() const override { return m_interactive; }
    void run(qix::ITestRunner* runner) override
    {
        m_runner = runner;
        body();
        if (m_failedRows > 0)
        {
            throw std::runtime_error(std::to_string(m_failedRows) + " sub-tests failed");
        }
    }
    void getSubItems(std::vector<zel::P<qix::ITestItem>>& out) override { out.clear(); }
    void log(zel::String const& line) override { m_lines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_lines; }

protected:
    enum InteractiveTag
    {
        Interactive
    };

    virtual void body() = 0;

    void init(char const* name) { m_name = name; }
    template <typename... Rest>
    void init(char const* name, Duration duration, Rest... rest)
    {
        m_duration = duration;
        init(name, rest...);
    }
    template <typename... Rest>
    void init(char const* name, InteractiveTag, Rest... rest)
    {
        m_interactive = true;
        init(name, rest...);
    }

    template <typename Body>
    void subTest(std::string const& name, Body const& row)
    {
        if (!m_runner->beginSubTest(name, Short, false, false))
        {
            return;
        }
        try
        {
            row();
        }
        catch (std::exception const& e)
        {
            ++m_failedRows;
            m_runner->endSubTest_Failed(e);
            return;
        }
        m_runner->endSubTest_Success();
    }

private:
    qix::ITestRunner* m_runner = nullptr;
    std::string m_name;
    Duration m_duration = Short;
    bool m_interactive = false;
    int m_failedRows = 0;
    std::vector<zel::String> m_lines;
};

/// The group of a dotted path; it is made with all that lie around it when it is not there yet.
inline zel::P<qix::CTestItemGroup> groupAt(std::string const& path)
{
    static std::map<std::string, zel::P<qix::CTestItemGroup>> groups;
    if (path.empty())
    {
        return qix::CTestItemGroup::global();
    }
    zel::P<qix::CTestItemGroup>& group = groups[path];
    if (group == nullptr)
    {
        std::size_t const dot = path.rfind('.');
        bool const nested = dot != std::string::npos;
        group = zel::newObj<qix::CTestItemGroup>(nested ? path.substr(dot + 1) : path);
        groupAt(nested ? path.substr(0, dot) : std::string())->addSubItem(group);
    }
    return group;
}

template <typename Test>
class TLeafFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    explicit TLeafFactory(char const* group)
    {
        groupAt(group)->addFactory(zel::P<qix::ITestItemFactory>::share(this));
    }
    zel::P<qix::ITestItem> createTestItem() override { return zel::newObj<Test>(); }
};

#define QIX_TEST(group, name, ...)                                                                 \
    namespace                                                                                      \
    {                                                                                              \
    class name : public CLeaf                                                                      \
    {                                                                                              \
    public:                                                                                        \
        name() { init(#name __VA_OPT__(, ) __VA_ARGS__); }                                         \
        void body() override;                                                                      \
    };                                                                                             \
    zel::P<TLeafFactory<name>> const name##_factory = zel::newObj<TLeafFactory<name>>(#group);     \
    }                                                                                              \
    void name::body()

#define QIX_REQUIRE(condition)                                                                     \
    do                                                                                             \
    {                                                                                              \
        if (!(condition))                                                                          \
        {                                                                                          \
            std::ostringstream message;                                                            \
            message << __FILE__ << ":" << __LINE__ << ": " << #condition;                          \
            throw std::runtime_error(message.str());                                               \
        }                                                                                          \
    } while (false)
#define QIX_CHECK(condition) QIX_REQUIRE(condition)
#define QIX_CHECK_THROWS_AS(expression, type)                                                      \
    do                                                                                             \
    {                                                                                              \
        bool caught = false;                                                                       \
        try                                                                                        \
        {                                                                                          \
            static_cast<void>(expression);                                                         \
        }                                                                                          \
        catch (type const&)                                                                        \
        {                                                                                          \
            caught = true;                                                                         \
        }                                                                                          \
        QIX_REQUIRE(caught);                                                                       \
    } while (false)
