#include <zel/TSafeGlobalPointer.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using zel::CSafeGlobalGuard;
using zel::P;

constexpr std::uint64_t constructed = 0x47a592fe710a82bcULL;
constexpr std::uint64_t failed = 0xfe3493ad1f6783bdULL;

class CThing : public zel::CBase
{
};

using Global = zel::TSafeGlobalPointer<CThing>;

static_assert(sizeof(CSafeGlobalGuard) == 1);
static_assert(sizeof(Global) == 16);

/// Storage in which a test makes and destroys globals, and whose state word it looks at.
class Storage
{
public:
    explicit Storage(std::uint64_t state)
    {
        m_bytes.fill(0x5a);
        setState(state);
    }

    void setState(std::uint64_t state) { __atomic_store_n(stateWord(), state, __ATOMIC_SEQ_CST); }

    std::uint64_t getState() { return __atomic_load_n(stateWord(), __ATOMIC_SEQ_CST); }

    void* getAddress() { return m_bytes.data(); }

private:
    std::uint64_t* stateWord() { return reinterpret_cast<std::uint64_t*>(m_bytes.data() + 8); }

    alignas(Global) std::array<unsigned char, sizeof(Global)> m_bytes;
};

CSafeGlobalGuard g_guard;
std::atomic<int> g_creations{0};
P<CThing> g_lastMade;
std::string g_failWith;

CSafeGlobalGuard& guard()
{
    return g_guard;
}

P<CThing> create()
{
    ++g_creations;
    if (!g_failWith.empty())
    {
        throw std::runtime_error(g_failWith);
    }
    g_lastMade = zel::newObj<CThing>();
    return g_lastMade;
}

P<CThing> throwNumber()
{
    throw 7;
}

class TSafeGlobalPointer : public testing::Test
{
protected:
    TSafeGlobalPointer()
    {
        g_guard.reset();
        g_creations = 0;
        g_failWith.clear();
    }

    ~TSafeGlobalPointer() override { g_lastMade = nullptr; }
};

TEST_F(TSafeGlobalPointer, makesTheObject)
{
    Storage storage(1);
    Global* const global = new (storage.getAddress()) Global(&guard, &create);

    EXPECT_EQ(storage.getState(), constructed);
    EXPECT_TRUE(g_guard.isStarted());
    EXPECT_EQ(global->get(), g_lastMade);
    EXPECT_EQ(g_lastMade->getRefCount(), 2);

    global->~Global();
}

TEST_F(TSafeGlobalPointer, mayBeAllocated)
{
    auto const global = std::make_unique<Global>(&guard, &create);
    EXPECT_EQ(global->get(), g_lastMade);
}

TEST_F(TSafeGlobalPointer, destructorSetsTheStateToZeroAndReleases)
{
    Storage storage(1);
    Global* const global = new (storage.getAddress()) Global(&guard, &create);
    global->~Global();

    EXPECT_EQ(storage.getState(), 0u);
    EXPECT_EQ(g_lastMade->getRefCount(), 1);
    CThing* leftBehind = nullptr;
    std::memcpy(&leftBehind, storage.getAddress(), sizeof(leftBehind));
    EXPECT_EQ(leftBehind, g_lastMade.get());
}

TEST_F(TSafeGlobalPointer, leavesTheStateWhenTheGuardIsSet)
{
    g_guard.setStarted();
    for (std::uint64_t const state : {std::uint64_t{5}, failed})
    {
        Storage storage(state);
        Global* const global = new (storage.getAddress()) Global(&guard, &create);

        EXPECT_EQ(storage.getState(), state);
        EXPECT_EQ(g_creations, 0);
        CThing* object = g_lastMade.get();
        std::memcpy(&object, storage.getAddress(), sizeof(object));
        EXPECT_EQ(object, nullptr);

        global->~Global();
    }
}

TEST_F(TSafeGlobalPointer, passesOnTheErrorOfTheCreatorAndForgetsTheStart)
{
    g_failWith = "not now";
    Storage storage(1);
    try
    {
        new (storage.getAddress()) Global(&guard, &create);
        FAIL() << "no error";
    }
    catch (std::runtime_error const& e)
    {
        EXPECT_STREQ(e.what(), "not now");
    }
    EXPECT_EQ(storage.getState(), failed);
    EXPECT_FALSE(g_guard.isStarted());
}

TEST_F(TSafeGlobalPointer, leavesGuardAndStateAfterAnythingElseThatIsThrown)
{
    Storage storage(1);
    EXPECT_THROW(new (storage.getAddress()) Global(&guard, &throwNumber), int);
    EXPECT_EQ(storage.getState(), 0u);
    EXPECT_TRUE(g_guard.isStarted());
}

TEST_F(TSafeGlobalPointer, everyAccessToAFailedGlobalThrows)
{
    Storage storage(1);
    Global* const global = new (storage.getAddress()) Global(&guard, &create);
    storage.setState(failed);
    for (int i = 0; i < 2; ++i)
    {
        try
        {
            global->get();
            FAIL() << "no error";
        }
        catch (zel::CError const& e)
        {
            EXPECT_EQ(e.getMessage(), "Construction of static object has failed.");
            EXPECT_TRUE(e.getSecondText().empty());
            EXPECT_EQ(e.getCode(), -1);
            EXPECT_TRUE(e.getProps().isEmpty());
            EXPECT_EQ(e.getCause(), nullptr);
        }
        EXPECT_EQ(storage.getState(), failed);
    }
    global->~Global();
}

TEST_F(TSafeGlobalPointer, accessWaitsWhileTheGlobalIsNotUsable)
{
    Storage storage(1);
    Global* const global = new (storage.getAddress()) Global(&guard, &create);
    storage.setState(3);
    std::atomic<bool> returned{false};
    std::thread reader(
        [&]
        {
            EXPECT_EQ(global->get(), g_lastMade);
            returned = true;
        });
    for (int i = 0; i < 3; ++i)
    {
        zel::threadYield(true);
        EXPECT_FALSE(returned);
    }
    storage.setState(constructed);
    reader.join();
    EXPECT_TRUE(returned);
    global->~Global();
}

/// An accessor as the library's own are.
P<CThing> getRetried()
{
    static Global g_pInstance(&guard, &create);
    return g_pInstance.get();
}

TEST_F(TSafeGlobalPointer, failedCreationIsTriedAgainByTheNextAccess)
{
    g_failWith = "not now";
    EXPECT_THROW(getRetried(), std::runtime_error);
    EXPECT_THROW(getRetried(), std::runtime_error);
    g_failWith.clear();

    P<CThing> const thing = getRetried();

    EXPECT_EQ(g_creations, 3);
    EXPECT_EQ(thing, g_lastMade);
    EXPECT_EQ(getRetried(), thing);
    EXPECT_EQ(g_creations, 3);
}

P<CThing> getRaced()
{
    static Global g_pInstance(&guard, &create);
    return g_pInstance.get();
}

TEST_F(TSafeGlobalPointer, threadsThatComeFirstTogetherGetOneObject)
{
    std::atomic<bool> go{false};
    std::vector<P<CThing>> seen(8);
    std::vector<std::thread> threads;
    for (P<CThing>& mine : seen)
    {
        threads.emplace_back(
            [&go, &mine]
            {
                while (!go)
                {
                    zel::threadYield(false);
                }
                mine = getRaced();
            });
    }
    go = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(g_creations, 1);
    for (P<CThing> const& thing : seen)
    {
        EXPECT_EQ(thing, g_lastMade);
    }
}

TEST_F(TSafeGlobalPointer, instancesOfTwoModulesMayBeMadeAtTheSameTime)
{
    for (int round = 1; round <= 200; ++round)
    {
        g_guard.reset();
        std::atomic<int> waiting{2};
        auto const makeInstance = [&waiting]
        {
            Storage storage(1);
            --waiting;
            while (waiting > 0)
            {
                zel::threadYield(false);
            }
            Global* const global = new (storage.getAddress()) Global(&guard, &create);
            global->~Global();
        };
        std::thread thread(makeInstance);
        makeInstance();
        thread.join();
        ASSERT_EQ(g_creations, round);
    }
}

CSafeGlobalGuard g_outerGuard;

CSafeGlobalGuard& outerGuard()
{
    return g_outerGuard;
}

P<CThing> getInner()
{
    static Global g_pInstance(&guard, &create);
    return g_pInstance.get();
}

TEST_F(TSafeGlobalPointer, creatorMayUseAnotherGlobalForTheFirstTime)
{
    Global const outer(&outerGuard, &getInner);
    EXPECT_EQ(outer.get(), g_lastMade);
    EXPECT_EQ(g_creations, 1);
}

} // namespace
