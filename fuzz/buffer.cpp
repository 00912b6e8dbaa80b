/// Operations on byte buffers against a model that has a vector for the bytes.
///
/// Input: bytes. Each operation takes one that chooses it, one that chooses one of three buffers,
/// and those that are its arguments, brought into the range that is allowed.

#include "fuzz.h"

#include "../tests/models/BufferModel.h"

#include <zel/TBuffer.h>

#include <array>
#include <memory>
#include <vector>

namespace
{

constexpr int mostElements = 300;

using Element = unsigned char;
using Elements = std::vector<Element>;
using Buffer = zel::TBuffer<Element>;
using Model = models::BufferModel<Element>;

/// A buffer that hands its storage back by itself, and must get each piece exactly once.
class CountedBuffer : public Buffer
{
public:
    using TBuffer::TBuffer;
    CountedBuffer(CountedBuffer const&) = default;
    ~CountedBuffer() override { clear(); }

protected:
    void deleteData(Element* raw, int rawSize) override
    {
        fuzz::require(raw != nullptr && rawSize > 0, "only storage is freed");
        raw[rawSize - 1] = 0;
        TBuffer::deleteData(raw, rawSize);
    }
};

struct Pair
{
    std::unique_ptr<CountedBuffer> buffer = std::make_unique<CountedBuffer>();
    Model model;
    int alignment = 1;
    bool isAttached = false;
    Elements attached = Elements(mostElements); ///< outlives the use that the buffer makes of it
};

Elements contentsOf(Buffer const& buffer)
{
    return buffer.getUsed() == 0 ? Elements()
                                 : Elements(buffer.getData(), buffer.getData() + buffer.getUsed());
}

void compare(Pair& pair)
{
    Buffer& buffer = *pair.buffer;
    fuzz::require(buffer.getUsed() == pair.model.used(), "the same number of elements");
    fuzz::require(buffer.getAllocated() == pair.model.capacity, "the same capacity");
    fuzz::require(buffer.getFree() == pair.model.capacity - pair.model.used(), "the same room");
    fuzz::require(contentsOf(buffer) == pair.model.elements, "the same elements");
    fuzz::require(buffer.getFreePtr() == buffer.getData() + buffer.getUsed(), "where it is free");
    fuzz::require(pair.isAttached || pair.alignment < 2 ||
                      reinterpret_cast<std::uintptr_t>(buffer.getData()) %
                              static_cast<std::uintptr_t>(pair.alignment) ==
                          0,
                  "the alignment");
}

class Buffers
{
public:
    explicit Buffers(fuzz::Input& input) : m_input(input) {}

    void applyNext()
    {
        int const operation = m_input.byte() % 18;
        Pair& pair = choose();
        apply(operation, pair);
        pair.isAttached = pair.isAttached && pair.buffer->getData() == pair.attached.data();
        compare(pair);
        for (Pair& other : m_pairs)
        {
            bool const isSame = pair.model.elements == other.model.elements;
            fuzz::require((*pair.buffer == *other.buffer) == isSame, "equality");
            fuzz::require((*pair.buffer != *other.buffer) != isSame, "inequality");
        }
    }

private:
    void apply(int operation, Pair& pair)
    {
        Buffer& buffer = *pair.buffer;
        Model& model = pair.model;
        switch (operation)
        {
        case 0:
            return construct(pair, number(mostElements), number(mostElements) - 1);
        case 1:
            return constructFrom(pair, elements(), number(mostElements) - 1);
        case 2:
            return constructCopy(pair, choose());
        case 3:
            return init(pair, elements());
        case 4:
            return align(pair, 1 << number(6));
        case 5:
            return setFactor(pair, number(12) / 4.0);
        case 6:
            return attach(pair, number(mostElements));
        case 7:
            buffer.clear();
            return model.reallocate(0);
        case 8:
            return alloc(pair, number(mostElements));
        case 9:
            return ensureAllocated(pair, number(mostElements));
        case 10:
            return ensureFree(pair, number(mostElements - model.used()));
        case 11:
            return setUsed(pair, number(mostElements));
        case 12:
            return addUsed(pair, number(mostElements - model.used()));
        case 13:
            return insert(pair, number(model.used()), elements());
        case 14:
            return move(pair);
        case 15:
            return erase(pair, number(model.used()));
        case 16:
            return assign(pair, choose());
        default:
            return writeFree(pair, number(mostElements - model.used()));
        }
    }

    void construct(Pair& pair, int used, int allocate)
    {
        pair.buffer = std::make_unique<CountedBuffer>(used, allocate);
        pair.model = Model();
        pair.model.capacity = std::max(used, allocate);
        pair.model.setUsed(used, 0);
        fill(pair, 0);
        pair.alignment = 1;
    }

    void constructFrom(Pair& pair, Elements const& source, int allocate)
    {
        auto const length = static_cast<int>(source.size());
        pair.buffer = std::make_unique<CountedBuffer>(source.data(), length, allocate);
        pair.model = Model();
        pair.model.capacity = std::max(length, allocate);
        pair.model.init(source);
        pair.alignment = 1;
    }

    void constructCopy(Pair& pair, Pair const& other)
    {
        Model const model = other.model;
        pair.buffer = std::make_unique<CountedBuffer>(*other.buffer);
        pair.model = Model();
        pair.model.assign(model);
        pair.alignment = 1;
    }

    void init(Pair& pair, Elements const& source)
    {
        pair.buffer->init(source.data(), static_cast<int>(source.size()));
        pair.model.init(source);
    }

    void align(Pair& pair, int bytes)
    {
        pair.buffer->setAllocAlignBytes(bytes);
        pair.alignment = bytes;
    }

    void setFactor(Pair& pair, double factor)
    {
        pair.buffer->setMinGrowFactor(factor);
        pair.model.growFactor = factor;
        fuzz::require(pair.buffer->getMinGrowFactor() == factor, "the factor is kept");
    }

    void attach(Pair& pair, int count)
    {
        pair.buffer->attachNoDelete(pair.attached.data(), count);
        pair.model.elements.assign(pair.attached.begin(), pair.attached.begin() + count);
        pair.model.capacity = count;
        pair.isAttached = true;
    }

    void alloc(Pair& pair, int capacity)
    {
        pair.buffer->alloc(capacity);
        pair.model.reallocate(capacity);
    }

    void ensureAllocated(Pair& pair, int capacity)
    {
        pair.buffer->ensureAllocated(capacity);
        pair.model.grow(capacity);
    }

    void ensureFree(Pair& pair, int count)
    {
        pair.buffer->ensureFree(count);
        pair.model.grow(pair.model.used() + count);
    }

    void setUsed(Pair& pair, int used)
    {
        int const before = pair.model.used();
        pair.buffer->setUsed(used);
        pair.model.setUsed(used, 0);
        fill(pair, before);
    }

    void addUsed(Pair& pair, int count)
    {
        int const before = pair.model.used();
        pair.buffer->addUsed(count);
        pair.model.setUsed(before + count, 0);
        fill(pair, before);
    }

    void insert(Pair& pair, int position, Elements const& source)
    {
        if (pair.model.used() + static_cast<int>(source.size()) <= mostElements)
        {
            pair.buffer->insert(position, source.data(), static_cast<int>(source.size()));
            pair.model.insert(position, source);
        }
    }

    void move(Pair& pair)
    {
        int const to = number(pair.model.used());
        int const from = number(pair.model.used());
        int const count = number(pair.model.used() - std::max(to, from));
        pair.buffer->move(to, from, count);
        pair.model.move(to, from, count);
    }

    void erase(Pair& pair, int count)
    {
        pair.buffer->eraseFromStart(count);
        pair.model.eraseFromStart(count);
    }

    void assign(Pair& pair, Pair const& other)
    {
        Model const model = other.model;
        *pair.buffer = *other.buffer;
        pair.model.assign(model);
    }

    /// What is written into the room behind the elements is there when they are used.
    void writeFree(Pair& pair, int count)
    {
        Element* const free = pair.buffer->getFreePtr(count);
        std::fill(free, free + count, Element(7));
        pair.model.grow(pair.model.used() + count);
        pair.buffer->addUsed(count);
        pair.model.setUsed(pair.model.used() + count, 7);
    }

    /// Gives elements, whose values nobody has set, the values that the model has for them.
    static void fill(Pair& pair, int from)
    {
        for (int i = from; i < pair.model.used(); ++i)
        {
            (*pair.buffer)[i] = pair.model.elements[static_cast<std::size_t>(i)];
        }
    }

    Pair& choose() { return m_pairs[m_input.byte() % m_pairs.size()]; }

    /// From 0 to \p most, inclusive.
    int number(int most) { return (m_input.byte() * 256 + m_input.byte()) % (most + 1); }

    Elements elements()
    {
        Elements some(static_cast<std::size_t>(number(20)));
        std::generate(some.begin(), some.end(), [this] { return m_input.byte(); });
        return some;
    }

    fuzz::Input& m_input;
    std::array<Pair, 3> m_pairs;
};

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    fuzz::Input input(data, size);
    Buffers buffers(input);
    while (!input.isAtEnd())
    {
        buffers.applyNext();
    }
    return 0;
}
