#include <qix/detail/describe.h>
#include <zel/P.h>
#include <zel/String.h>
#include <zel/TBuffer.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace
{

using Buffer = zel::TBuffer<char>;

template <typename T>
std::string described(T const& value)
{
    qix::CValueWriter out;
    qix::detail::describe(out, value);
    return out.written();
}

std::string addressText(void const* address)
{
    qix::CValueWriter out;
    out.address(address);
    return out.written();
}

// Behind a smart pointer there is a character, or an array of them whose end nobody knows.
TEST(Describe, smartPointersAreAddressesOfWhatTheyPointTo)
{
    auto const character = std::make_unique<char>('x');
    auto const shared = std::make_shared<char const>('y');
    std::unique_ptr<char[]> const array(new char[1]{'z'});
    zel::P<zel::String> const null;

    EXPECT_EQ(described(character), addressText(character.get()) + " -> 'x'");
    EXPECT_EQ(described(shared), addressText(shared.get()) + " -> 'y'");
    EXPECT_EQ(described(array), addressText(array.get()));
    EXPECT_EQ(described(null), "nullptr");
}

// A buffer converts to a pointer that no NUL stands behind.
TEST(Describe, buffersShowWhatIsUsed)
{
    EXPECT_EQ(described(Buffer("ab\0c", 4, 16)), "<4 bytes: 61 62 00 63>");
    EXPECT_EQ(described(Buffer()), "<0 bytes:>");
    EXPECT_EQ(described(zel::TBuffer<unsigned char>(reinterpret_cast<unsigned char const*>("\xff"),
                                                    1, -1)),
              "<1 byte: ff>");
}

} // namespace
