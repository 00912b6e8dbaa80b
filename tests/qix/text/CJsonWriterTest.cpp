#include "text/CJsonWriter.h"

#include <gtest/gtest.h>

namespace
{

using qix::CJsonWriter;

std::string quoted(std::string_view text)
{
    CJsonWriter writer;
    writer.value(text);
    return writer.text();
}

TEST(CJsonWriter, movesItsTextAndBeginsAnew)
{
    CJsonWriter writer;
    std::string text = "before";
    writer.value("first");
    writer.moveTo(text);
    EXPECT_EQ(text, "\"first\"");
    writer.value("second");
    EXPECT_EQ(writer.text(), "\"second\"");
}

TEST(CJsonWriter, separatesValues)
{
    CJsonWriter writer;
    writer.beginObject();
    writer.key("a");
    writer.beginArray();
    writer.value("x");
    writer.value(true);
    writer.beginObject();
    writer.endObject();
    writer.value(std::uint64_t{18446744073709551615U});
    writer.endArray();
    writer.key("b");
    writer.seconds(1000001);
    writer.endObject();
    EXPECT_EQ(writer.take(), R"({"a":["x",true,{},18446744073709551615],"b":1.000001})");
    writer.value(false);
    EXPECT_EQ(writer.text(), "false");
}

TEST(CJsonWriter, takesWhatIsWrittenAlready)
{
    CJsonWriter writer;
    writer.key("a");
    writer.value("x");
    writer.written(R"("b":1,"c":2)");
    writer.key("d");
    writer.seconds(999999);
    EXPECT_EQ(writer.text(), R"("a":"x","b":1,"c":2,"d":0.999999)");
    writer.clear();
    writer.value(true);
    EXPECT_EQ(writer.text(), "true");
}

TEST(CJsonWriter, escapesWhatJsonDoesNotTake)
{
    EXPECT_EQ(quoted("a\"b\\c/d"), R"("a\"b\\c/d")");
    EXPECT_EQ(quoted(std::string_view("\0\n\x1F\x7F", 4)), R"("\u0000\u000A\u001F\u007F")");
    EXPECT_EQ(quoted("\xC3\xBC\xF0\x9F\x98\x80"), "\"\xC3\xBC\xF0\x9F\x98\x80\"");
}

TEST(CJsonWriter, showsBytesThatAreNoUtf8)
{
    EXPECT_EQ(quoted("a\xFF"), R"("a[NON-UTF-8-BYTE-0xFF]")");
    EXPECT_EQ(quoted("\xED\xA0\x80"),
              R"("[NON-UTF-8-BYTE-0xED][NON-UTF-8-BYTE-0xA0][NON-UTF-8-BYTE-0x80]")");
    EXPECT_EQ(quoted("[NON-UTF-8-BYTE-0xFF]"), R"("[NON-UTF-8-BYTE-0x5B]NON-UTF-8-BYTE-0xFF]")");
    EXPECT_EQ(quoted("[NON"), R"("[NON")");
}

} // namespace
