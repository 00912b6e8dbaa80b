#include <zel/CBase.h>
#include <zel/P.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{

using zel::CBase;
using zel::P;

constexpr int countUnderDestruction = -1073741824;

/// Tells about its destruction.
class CWatched : public CBase
{
public:
    explicit CWatched(int& destructions, int* countSeen = nullptr)
        : m_destructions(destructions), m_countSeen(countSeen)
    {
    }

    ~CWatched() override
    {
        ++m_destructions;
        if (m_countSeen != nullptr)
        {
            *m_countSeen = getRefCount();
        }
    }

private:
    int& m_destructions;
    int* m_countSeen;
};

/// Hands itself out while it is being destroyed.
class CSharedInDestructor : public CBase
{
public:
    explicit CSharedInDestructor(int& destructions) : m_destructions(destructions) {}

    ~CSharedInDestructor() override
    {
        ++m_destructions;
        P<CSharedInDestructor> const self = P<CSharedInDestructor>::share(this);
        P<CSharedInDestructor> const another = self;
        EXPECT_EQ(getRefCount(), countUnderDestruction + 2);
    }

private:
    int& m_destructions;
};

/// Comes from elsewhere and is not deleted.
class CNotDeleted : public CBase
{
public:
    void deleteThis() override { ++m_calls; }

    int m_calls = 0;
};

TEST(CBase, newObjectHasOneReference)
{
    EXPECT_EQ(zel::newObj<CBase>()->getRefCount(), 1);
}

TEST(CBase, lastPointerOutOfScopeDestroys)
{
    int destructions = 0;
    {
        P<CWatched> const object = zel::newObj<CWatched>(destructions);
        EXPECT_EQ(destructions, 0);
    }
    EXPECT_EQ(destructions, 1);
}

TEST(CBase, referenceTakenAndGivenBackLeavesTheObjectAlive)
{
    int destructions = 0;
    P<CWatched> const object = zel::newObj<CWatched>(destructions);

    object->addRef();
    EXPECT_EQ(object->getRefCount(), 2);
    object->release();

    EXPECT_EQ(object->getRefCount(), 1);
    EXPECT_EQ(destructions, 0);
}

TEST(CBase, countIsFarBelowZeroInTheDestructor)
{
    int destructions = 0;
    int countSeen = 0;

    zel::newObj<CWatched>(destructions, &countSeen);

    EXPECT_EQ(countSeen, countUnderDestruction);
}

TEST(CBase, referencesTakenInTheDestructorDoNotDestroyAgain)
{
    int destructions = 0;

    zel::newObj<CSharedInDestructor>(destructions);

    EXPECT_EQ(destructions, 1);
}

TEST(CBase, copyIsBornWithACountOfItsOwn)
{
    P<CBase> const original = zel::newObj<CBase>();
    P<CBase> const second = original;

    EXPECT_EQ(zel::newObj<CBase>(*original)->getRefCount(), 1);
    EXPECT_EQ(original->getRefCount(), 2);
}

TEST(CBase, assignmentLeavesBothCounts)
{
    P<CBase> const left = zel::newObj<CBase>();
    P<CBase> const right = zel::newObj<CBase>();
    P<CBase> const another = right;

    *left = *right;

    EXPECT_EQ(left->getRefCount(), 1);
    EXPECT_EQ(right->getRefCount(), 2);
}

TEST(CBase, anyCastIsAllowed)
{
    CBase const object;
    EXPECT_TRUE(object.checkCastAllowed(typeid(CBase)));
    EXPECT_TRUE(object.checkCastAllowed(typeid(std::string)));
}

TEST(CBase, lastReleaseGoesThroughDeleteThis)
{
    CNotDeleted object;
    object.addRef();

    object.release();
    EXPECT_EQ(object.m_calls, 0);
    object.release();

    EXPECT_EQ(object.m_calls, 1);
    EXPECT_EQ(object.getRefCount(), countUnderDestruction);
}

TEST(CBase, countsReferencesOfSeveralThreads)
{
    int destructions = 0;
    P<CWatched> object = zel::newObj<CWatched>(destructions);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [shared = object]
            {
                for (int j = 0; j < 2000; ++j)
                {
                    P<CWatched> const copy = shared;
                    EXPECT_GT(copy->getRefCount(), 1);
                }
            });
    }
    object = nullptr;

    for (std::thread& thread : threads)
    {
        thread.join();
    }
    threads.clear();

    EXPECT_EQ(destructions, 1);
}

} // namespace
