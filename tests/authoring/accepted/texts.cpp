// Texts of all kinds of characters, where the headers of wxWidgets are known, too.

#include <qix/test.h>
#include <zel/String.h>

#include <string>

namespace accepted
{

QIX_TEST(accepted, texts)
{
    zel::String const text("text");
    QIX_CHECK(text == "text");
    QIX_CHECK(std::wstring(L"text") == L"text") << text;
    QIX_CHECK(std::u16string(u"text") == u"text");
    QIX_CHECK(U"text" == std::u32string(U"text"));
#ifdef __cpp_char8_t
    QIX_CHECK(std::u8string(u8"text") == u8"text");
    QIX_CHECK(u8't' == u8't');
#endif
}

} // namespace accepted
