#include <zel/P.h>
#include <zel/TBuffer.h>

#include "models/BufferModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <new>
#include <random>
#include <string>
#include <vector>

namespace
{

template <typename T>
class TBuffer : public testing::Test
{
protected:
    using Buffer = zel::TBuffer<T>;

    static std::vector<T> bytes(std::string const& text)
    {
        return std::vector<T>(text.begin(), text.end());
    }

    static Buffer bufferOf(std::string const& text)
    {
        return Buffer(bytes(text).data(), static_cast<int>(text.size()), -1);
    }

    static std::string textOf(Buffer const& buffer)
    {
        T const* const data = buffer.getData();
        return std::string(data, data + buffer.getUsed());
    }

    static std::uintptr_t addressOf(Buffer& buffer)
    {
        return reinterpret_cast<std::uintptr_t>(buffer.getData());
    }
};

using Bytes = testing::Types<char, unsigned char>;
TYPED_TEST_SUITE(TBuffer, Bytes, );

TYPED_TEST(TBuffer, startsEmpty)
{
    zel::TBuffer<TypeParam> const buffer;
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_EQ(buffer.getAllocated(), 0);
    EXPECT_EQ(buffer.getUsed(), 0);
    EXPECT_EQ(buffer.getFree(), 0);
    EXPECT_EQ(buffer.getMinGrowFactor(), 0.0);
}

TYPED_TEST(TBuffer, isMadeWithUsedElementsAndCapacity)
{
    zel::TBuffer<TypeParam> const exact(3, -1);
    EXPECT_EQ(exact.getUsed(), 3);
    EXPECT_EQ(exact.getAllocated(), 3);
    zel::TBuffer<TypeParam> const roomy(3, 10);
    EXPECT_EQ(roomy.getAllocated(), 10);
    EXPECT_EQ(roomy.getFree(), 7);
    zel::TBuffer<TypeParam> const small(3, 1);
    EXPECT_EQ(small.getAllocated(), 3);
    zel::TBuffer<TypeParam> const none(0, -1);
    EXPECT_EQ(none.getData(), nullptr);
}

TYPED_TEST(TBuffer, isMadeOfACopy)
{
    EXPECT_EQ(this->textOf(this->bufferOf("abc")), "abc");
    auto const source = this->bytes("abc");
    zel::TBuffer<TypeParam> const roomy(source.data(), 3, 8);
    EXPECT_EQ(this->textOf(roomy), "abc");
    EXPECT_EQ(roomy.getAllocated(), 8);
}

TYPED_TEST(TBuffer, copyTakesTheCapacityButNotTheSettings)
{
    auto const source = this->bytes("abc");
    zel::TBuffer<TypeParam> buffer(source.data(), 3, 8);
    buffer.setMinGrowFactor(2.0);
    buffer.setAllocAlignBytes(16);
    buffer.addRef();
    zel::TBuffer<TypeParam> copy(buffer);
    buffer.release();
    EXPECT_EQ(this->textOf(copy), "abc");
    EXPECT_EQ(copy.getAllocated(), 8);
    EXPECT_EQ(copy.getMinGrowFactor(), 0.0);
    EXPECT_EQ(copy.getRefCount(), 1);
    TypeParam const* const data = copy.getData();
    EXPECT_NE(data, buffer.getData());
    copy.setAllocAlignBytes(16);
    EXPECT_NE(copy.getData(), data) << "the alignment is new to the copy";
}

TYPED_TEST(TBuffer, growsToWhatIsNeededOrByTheFactor)
{
    zel::TBuffer<TypeParam> buffer;
    buffer.ensureFree(10);
    EXPECT_EQ(buffer.getAllocated(), 10);
    EXPECT_EQ(buffer.getUsed(), 0);
    buffer.setMinGrowFactor(2.0);
    buffer.ensureFree(11);
    EXPECT_EQ(buffer.getAllocated(), 20);
    buffer.ensureFree(20);
    EXPECT_EQ(buffer.getAllocated(), 20);
}

TYPED_TEST(TBuffer, grownCapacityIsTruncated)
{
    zel::TBuffer<TypeParam> buffer(0, 3);
    buffer.setMinGrowFactor(1.5);
    buffer.ensureAllocated(4);
    EXPECT_EQ(buffer.getAllocated(), 4);
    buffer.ensureAllocated(5);
    EXPECT_EQ(buffer.getAllocated(), 6);
}

TYPED_TEST(TBuffer, senselessGrowFactorsAreIgnored)
{
    for (double const factor : {-3.0, 1e300, -1e300, HUGE_VAL, std::nan("")})
    {
        zel::TBuffer<TypeParam> buffer(0, 3);
        buffer.setMinGrowFactor(factor);
        buffer.ensureAllocated(4);
        EXPECT_EQ(buffer.getAllocated(), 4) << factor;
    }
}

TYPED_TEST(TBuffer, impossibleAlignmentLeavesTheOldOne)
{
    auto buffer = this->bufferOf("abc");
    EXPECT_THROW(buffer.setAllocAlignBytes(INT_MAX), std::bad_alloc);
    EXPECT_EQ(this->textOf(buffer), "abc");
    buffer.ensureAllocated(100);
    EXPECT_EQ(this->textOf(buffer), "abc");
}

TYPED_TEST(TBuffer, alignmentMovesTheElements)
{
    for (int const alignment : {2, 16, 64, 4096})
    {
        auto buffer = this->bufferOf("abcde");
        buffer.setAllocAlignBytes(alignment);
        EXPECT_EQ(this->addressOf(buffer) % static_cast<unsigned>(alignment), 0U);
        EXPECT_EQ(this->textOf(buffer), "abcde");
        EXPECT_EQ(buffer.getAllocated(), 5);
        buffer.alloc(1000);
        EXPECT_EQ(this->addressOf(buffer) % static_cast<unsigned>(alignment), 0U);
        EXPECT_EQ(this->textOf(buffer), "abcde");
    }
}

TYPED_TEST(TBuffer, alignmentOfOneOrTheSameMovesNothing)
{
    auto buffer = this->bufferOf("abc");
    buffer.setAllocAlignBytes(16);
    TypeParam const* const data = buffer.getData();
    buffer.setAllocAlignBytes(16);
    EXPECT_EQ(buffer.getData(), data);
    buffer.setAllocAlignBytes(1);
    EXPECT_EQ(buffer.getData(), data);
    zel::TBuffer<TypeParam> empty;
    empty.setAllocAlignBytes(16);
    EXPECT_EQ(empty.getData(), nullptr);
}

TYPED_TEST(TBuffer, attachedMemoryStaysWithItsOwner)
{
    auto memory = this->bytes("abc");
    {
        zel::TBuffer<TypeParam> buffer(5, 5);
        buffer.attachNoDelete(memory.data(), 3);
        EXPECT_EQ(buffer.getData(), memory.data());
        EXPECT_EQ(buffer.getAllocated(), 3);
        buffer[0] = 'x';
    }
    EXPECT_EQ(memory, this->bytes("xbc"));
}

TYPED_TEST(TBuffer, attachedMemoryIsCopiedByWhatReallocates)
{
    auto memory = this->bytes("abc");
    zel::TBuffer<TypeParam> buffer;
    buffer.attachNoDelete(memory.data(), 3);
    buffer.setAllocAlignBytes(16);
    EXPECT_NE(buffer.getData(), memory.data());
    EXPECT_EQ(this->textOf(buffer), "abc");
    buffer.attachNoDelete(memory.data(), 3);
    buffer.addUsed(1);
    buffer[3] = 'd';
    EXPECT_EQ(this->textOf(buffer), "abcd");
    buffer.attachNoDelete(memory.data(), 3);
    buffer.clear();
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_EQ(memory, this->bytes("abc"));
}

TYPED_TEST(TBuffer, allocSetsTheCapacityAlsoToLess)
{
    auto buffer = this->bufferOf("abcde");
    buffer.setMinGrowFactor(10.0);
    buffer.alloc(2);
    EXPECT_EQ(buffer.getUsed(), 2);
    EXPECT_EQ(this->textOf(buffer), "ab");
    buffer.alloc(3);
    EXPECT_EQ(buffer.getAllocated(), 3);
    buffer.alloc(0);
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_EQ(buffer.getUsed(), 0);
}

TYPED_TEST(TBuffer, setUsedAndAddUsedGrow)
{
    zel::TBuffer<TypeParam> buffer;
    buffer.setUsed(4);
    EXPECT_EQ(buffer.getAllocated(), 4);
    buffer.setUsed(1);
    EXPECT_EQ(buffer.getAllocated(), 4);
    EXPECT_EQ(buffer.getUsed(), 1);
    buffer.addUsed(5);
    EXPECT_EQ(buffer.getUsed(), 6);
    EXPECT_EQ(buffer.getAllocated(), 6);
}

TYPED_TEST(TBuffer, freePointerLiesBehindTheUsedElements)
{
    auto buffer = this->bufferOf("abc");
    EXPECT_EQ(buffer.getFreePtr(), buffer.getData() + 3);
    TypeParam* const free = buffer.getFreePtr(2);
    EXPECT_EQ(free, buffer.getData() + 3);
    EXPECT_EQ(buffer.getUsed(), 3);
    EXPECT_EQ(buffer.getFree(), 2);
    free[0] = 'd';
    free[1] = 'e';
    buffer.addUsed(2);
    EXPECT_EQ(this->textOf(buffer), "abcde");
}

TYPED_TEST(TBuffer, insertsAtTheStartInTheMiddleAndAtTheEnd)
{
    auto buffer = this->bufferOf("cd");
    buffer.insert(0, "ab", 2);
    EXPECT_EQ(this->textOf(buffer), "abcd");
    buffer.insert(2, "--", 2);
    EXPECT_EQ(this->textOf(buffer), "ab--cd");
    buffer.insert(6, "ef", 2);
    EXPECT_EQ(this->textOf(buffer), "ab--cdef");
    buffer.insert(0, nullptr, 0);
    EXPECT_EQ(this->textOf(buffer), "ab--cdef");
}

TYPED_TEST(TBuffer, movesOverlappingElements)
{
    auto buffer = this->bufferOf("abcdef");
    buffer.move(1, 0, 4);
    EXPECT_EQ(this->textOf(buffer), "aabcdf");
    buffer.move(0, 0, 0);
    EXPECT_EQ(this->textOf(buffer), "aabcdf");
    zel::TBuffer<TypeParam>().move(0, 0, 0);
}

TYPED_TEST(TBuffer, erasesFromTheStart)
{
    auto buffer = this->bufferOf("abc");
    buffer.eraseFromStart(1);
    EXPECT_EQ(this->textOf(buffer), "bc");
    EXPECT_EQ(buffer.getAllocated(), 3);
    buffer.eraseFromStart(2);
    EXPECT_EQ(this->textOf(buffer), "");
}

TYPED_TEST(TBuffer, assignTakesCapacityAndElements)
{
    auto const source = this->bytes("abc");
    zel::TBuffer<TypeParam> const roomy(source.data(), 3, 9);
    auto buffer = this->bufferOf("0123456789");
    buffer.assign(roomy);
    EXPECT_EQ(this->textOf(buffer), "abc");
    EXPECT_EQ(buffer.getAllocated(), 9);
    zel::TBuffer<TypeParam> other;
    other = buffer;
    EXPECT_EQ(this->textOf(other), "abc");
    zel::TBuffer<TypeParam> const& self = other;
    other = self;
    EXPECT_EQ(this->textOf(other), "abc");
}

TYPED_TEST(TBuffer, initReplacesWhatIsThere)
{
    auto buffer = this->bufferOf("abcdef");
    buffer.init(this->bytes("xy").data(), 2);
    EXPECT_EQ(this->textOf(buffer), "xy");
    EXPECT_EQ(buffer.getAllocated(), 6);
    buffer.init(this->bytes("0123456789").data(), 10);
    EXPECT_EQ(this->textOf(buffer), "0123456789");
    EXPECT_EQ(buffer.getAllocated(), 10);
}

TYPED_TEST(TBuffer, isEqualByUsedElementsAlone)
{
    auto const buffer = this->bufferOf("abc");
    auto const source = this->bytes("abc");
    EXPECT_TRUE(buffer == (zel::TBuffer<TypeParam>(source.data(), 3, 9)));
    EXPECT_TRUE(buffer != this->bufferOf("abd"));
    EXPECT_TRUE(buffer != this->bufferOf("ab"));
    EXPECT_TRUE(zel::TBuffer<TypeParam>() == (zel::TBuffer<TypeParam>(0, 9)));
    EXPECT_TRUE(buffer.equals(buffer));
}

TYPED_TEST(TBuffer, isUsedAsAnArray)
{
    auto buffer = this->bufferOf("abc");
    EXPECT_EQ(buffer[2], 'c');
    TypeParam* const data = buffer;
    EXPECT_EQ(data, buffer.getData());
    zel::TBuffer<TypeParam> const& constant = buffer;
    TypeParam const* const constantData = constant;
    EXPECT_EQ(constantData, data);
    EXPECT_EQ(&constant[1], data + 1);
}

TYPED_TEST(TBuffer, keepsWhatItHasWhenMemoryIsExhausted)
{
    auto buffer = this->bufferOf("abc");
    buffer.setAllocAlignBytes(16);
    TypeParam const* const data = buffer.getData();
    EXPECT_THROW(buffer.alloc(INT_MAX), std::bad_alloc);
    EXPECT_THROW(buffer.ensureFree(INT_MAX), std::bad_alloc);
    EXPECT_THROW(buffer.addUsed(INT_MAX), std::bad_alloc);
    EXPECT_EQ(buffer.getData(), data);
    EXPECT_EQ(buffer.getAllocated(), 3);
    EXPECT_EQ(this->textOf(buffer), "abc");
}

/// Counts the storage that it gives away.
class CCountingBuffer : public zel::TBuffer<char>
{
public:
    CCountingBuffer(int& count, int& size) : m_count(count), m_size(size) {}
    ~CCountingBuffer() override { clear(); }

protected:
    // g++ would inline it, as a guess, where other buffers free their storage, and then warn that
    // those lack the fields.
    [[gnu::noinline]] void deleteData(char* raw, int rawSize) override
    {
        ++m_count;
        m_size += rawSize;
        delete[] raw;
    }

private:
    int& m_count;
    int& m_size;
};

TEST(TBufferDerived, freesItsStorageItself)
{
    int count = 0;
    int size = 0;
    {
        CCountingBuffer buffer(count, size);
        buffer.setUsed(10);
        EXPECT_EQ(count, 0);
        buffer.setAllocAlignBytes(16);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(size, 10);
        buffer.alloc(20);
        EXPECT_EQ(size, 10 + 25) << "10 elements with 15 to align them";
    }
    EXPECT_EQ(count, 3);
    EXPECT_EQ(size, 10 + 25 + 35);
}

/// One buffer beside what it should hold.
class CModelledBuffer
{
public:
    explicit CModelledBuffer(std::mt19937& random) : m_random(random) {}

    void doOneThing(CModelledBuffer& other)
    {
        switch (pick(17))
        {
        case 0:
            addUsed(pick(40));
            break;
        case 1:
            setUsed(pick(60));
            break;
        case 2:
            insert(pick(20));
            break;
        case 3:
            eraseFromStart(pick(size() + 1));
            break;
        case 4:
            moveInside();
            break;
        case 5:
            alloc(pick(80));
            break;
        case 6:
            ensureAllocated(pick(80));
            break;
        case 7:
            ensureFree(pick(20));
            break;
        case 8:
            m_buffer.setAllocAlignBytes(1 << pick(8));
            break;
        case 9:
            setFactor(pick(40) / 10.0);
            break;
        case 10:
            attach(pick(30));
            break;
        case 11:
            clear();
            break;
        case 12:
            init(pick(50));
            break;
        case 13:
            m_buffer = other.m_buffer;
            m_model.assign(other.m_model);
            break;
        case 14:
            appendThroughFreePtr(pick(20));
            break;
        case 15:
            compareWithCopy();
            break;
        default:
            change();
        }
    }

    void compare()
    {
        ASSERT_EQ(m_buffer.getUsed(), size());
        ASSERT_EQ(m_buffer.getAllocated(), m_model.capacity);
        ASSERT_EQ(m_buffer.getFree(), m_model.capacity - size());
        ASSERT_TRUE(
            std::equal(m_model.elements.begin(), m_model.elements.end(), m_buffer.getData()));
    }

private:
    int pick(int end)
    {
        return static_cast<int>(m_random() % static_cast<unsigned>(std::max(end, 1)));
    }
    int size() const { return m_model.used(); }

    std::vector<char> someBytes(int count)
    {
        std::vector<char> bytes(static_cast<std::size_t>(count));
        std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<char>(pick(256)); });
        return bytes;
    }

    /// What a buffer newly uses is not set, so that it is set here.
    void fillFrom(int first)
    {
        for (int i = first; i < size(); ++i)
        {
            m_buffer[i] = m_model.elements[static_cast<std::size_t>(i)] =
                static_cast<char>(pick(256));
        }
    }

    void alloc(int capacity)
    {
        m_buffer.alloc(capacity);
        m_model.reallocate(capacity);
    }

    void ensureAllocated(int capacity)
    {
        m_buffer.ensureAllocated(capacity);
        m_model.grow(capacity);
    }

    void ensureFree(int count)
    {
        m_buffer.ensureFree(count);
        m_model.grow(size() + count);
    }

    void setFactor(double factor)
    {
        m_buffer.setMinGrowFactor(factor);
        m_model.growFactor = factor;
    }

    void addUsed(int count)
    {
        int const old = size();
        m_buffer.addUsed(count);
        m_model.setUsed(old + count, 0);
        fillFrom(old);
    }

    void setUsed(int count)
    {
        int const old = size();
        m_buffer.setUsed(count);
        m_model.setUsed(count, 0);
        fillFrom(old);
    }

    void insert(int count)
    {
        int const position = pick(size() + 1);
        auto const bytes = someBytes(count);
        m_buffer.insert(position, bytes.data(), count);
        m_model.insert(position, bytes);
    }

    void eraseFromStart(int count)
    {
        m_buffer.eraseFromStart(count);
        m_model.eraseFromStart(count);
    }

    void moveInside()
    {
        int const count = pick(size() + 1);
        int const from = pick(size() - count + 1);
        int const to = pick(size() - count + 1);
        m_buffer.move(to, from, count);
        m_model.move(to, from, count);
    }

    void attach(int count)
    {
        auto const bytes = someBytes(count);
        std::vector<char> memory(bytes);
        m_buffer.attachNoDelete(memory.data(), count);
        m_memory.swap(memory);
        m_model.elements = bytes;
        m_model.capacity = count;
    }

    void clear()
    {
        m_buffer.clear();
        m_model.reallocate(0);
    }

    void init(int count)
    {
        auto const bytes = someBytes(count);
        m_buffer.init(bytes.data(), count);
        m_model.init(bytes);
    }

    void appendThroughFreePtr(int count)
    {
        auto const bytes = someBytes(count);
        char* const free = m_buffer.getFreePtr(count);
        std::copy(bytes.begin(), bytes.end(), free);
        m_buffer.addUsed(count);
        m_model.insert(size(), bytes);
    }

    void compareWithCopy()
    {
        zel::TBuffer<char> copy(m_buffer);
        EXPECT_EQ(copy.getAllocated(), m_model.capacity);
        EXPECT_TRUE(copy == m_buffer);
        if (size() > 0)
        {
            ++copy[pick(size())];
            EXPECT_TRUE(copy != m_buffer);
        }
    }

    void change()
    {
        if (size() > 0)
        {
            int const position = pick(size());
            ++m_buffer[position];
            ++m_model.elements[static_cast<std::size_t>(position)];
        }
    }

    std::mt19937& m_random;
    std::vector<char> m_memory; ///< what the buffer may be attached to
    zel::TBuffer<char> m_buffer;
    models::BufferModel<char> m_model;
};

TEST(TBufferModel, holdsWhatAVectorHolds)
{
    constexpr int sequences = 300;
    constexpr int steps = 500;
    for (unsigned seed = 0; seed < sequences; ++seed)
    {
        std::mt19937 random(seed);
        CModelledBuffer first(random);
        CModelledBuffer second(random);
        for (int step = 0; step < steps; ++step)
        {
            CModelledBuffer& changed = random() % 2 == 0 ? first : second;
            changed.doOneThing(&changed == &first ? second : first);
            changed.compare();
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << step;
        }
    }
    std::printf("%d sequences of %d operations\n", sequences, steps);
}

} // namespace
