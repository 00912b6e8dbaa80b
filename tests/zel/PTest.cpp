#include <zel/CBase.h>
#include <zel/P.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>
#include <utility>

namespace
{

using zel::CBase;
using zel::IBase;
using zel::P;

class CNumber : public CBase
{
public:
    explicit CNumber(int value) : m_value(value) {}

    int m_value;
};

class CThrowing : public CBase
{
public:
    CThrowing() { throw std::runtime_error("no object"); }
};

static_assert(sizeof(P<CNumber>) == sizeof(CNumber*));
static_assert(!std::is_convertible_v<P<CNumber>, bool>, "a pointer is no number");
static_assert(!std::is_convertible_v<CNumber*, P<CNumber>>, "adopting has to be said");
static_assert(!std::is_convertible_v<P<CBase>, P<CNumber>>, "down casts have to be said");
static_assert(std::is_nothrow_move_constructible_v<P<CNumber>>);

TEST(P, isNullByDefaultAndFromNullptr)
{
    P<CNumber> const byDefault;
    P<CNumber> const fromNullptr = nullptr;

    EXPECT_EQ(byDefault.get(), nullptr);
    EXPECT_EQ(fromNullptr.get(), nullptr);
    EXPECT_FALSE(byDefault);
    EXPECT_TRUE(byDefault == nullptr);
    EXPECT_TRUE(nullptr == byDefault);
}

TEST(P, adoptsTheReferenceOfARawPointer)
{
    P<CNumber> const number(new CNumber(3));
    EXPECT_EQ(number->getRefCount(), 1);
    EXPECT_EQ((*number).m_value, 3);
    EXPECT_EQ(number->m_value, number.get()->m_value);
    EXPECT_TRUE(number);
}

TEST(P, shareTakesAReferenceOfItsOwn)
{
    CNumber local(3);
    {
        P<CNumber> const shared = P<CNumber>::share(&local);
        EXPECT_EQ(local.getRefCount(), 2);
        EXPECT_EQ(shared.get(), &local);
    }
    EXPECT_EQ(local.getRefCount(), 1);
    EXPECT_EQ(P<CNumber>::share(nullptr), nullptr);
}

TEST(P, copyTakesAReference)
{
    P<CNumber> const number = zel::newObj<CNumber>(3);
    P<CNumber> const copy = number;
    EXPECT_EQ(number->getRefCount(), 2);
    EXPECT_EQ(copy, number);
}

TEST(P, copiesFromADerivedClass)
{
    P<CNumber> const number = zel::newObj<CNumber>(3);
    P<IBase> const base = number;
    EXPECT_EQ(number->getRefCount(), 2);
    EXPECT_EQ(base, number);
    EXPECT_FALSE(base != number);
}

TEST(P, movePassesTheReferenceOn)
{
    P<CNumber> number = zel::newObj<CNumber>(3);
    CNumber* const raw = number.get();

    P<CNumber> moved = std::move(number);
    EXPECT_EQ(number, nullptr); // NOLINT(bugprone-use-after-move): that it is null is the point
    EXPECT_EQ(moved.get(), raw);

    P<CBase> const asBase = std::move(moved);
    EXPECT_EQ(moved, nullptr); // NOLINT(bugprone-use-after-move): that it is null is the point
    EXPECT_EQ(raw->getRefCount(), 1);
    EXPECT_EQ(asBase.get(), raw);
}

TEST(P, assignmentReleasesTheOldTarget)
{
    P<CNumber> const old = zel::newObj<CNumber>(1);
    P<CNumber> const other = zel::newObj<CNumber>(2);
    P<CNumber> pointer = old;

    pointer = other;
    EXPECT_EQ(old->getRefCount(), 1);
    EXPECT_EQ(other->getRefCount(), 2);

    pointer = nullptr;
    EXPECT_EQ(other->getRefCount(), 1);
}

TEST(P, assignmentToItselfKeepsTheObject)
{
    P<CNumber> number = zel::newObj<CNumber>(3);
    P<CNumber> const& same = number;

    number = same;

    ASSERT_NE(number, nullptr);
    EXPECT_EQ(number->getRefCount(), 1);
}

TEST(P, comparesByTarget)
{
    P<CNumber> const one = zel::newObj<CNumber>(1);
    P<CNumber> const equalValue = zel::newObj<CNumber>(1);
    EXPECT_TRUE(one != equalValue);
    EXPECT_FALSE(one == equalValue);
    EXPECT_TRUE(one != nullptr);
    EXPECT_TRUE(nullptr != one);
}

TEST(P, newObjPassesOnWhatTheConstructorThrows)
{
    EXPECT_THROW(zel::newObj<CThrowing>(), std::runtime_error);
}

} // namespace
