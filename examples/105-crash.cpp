// A test that uses a pointer to nothing, between two that are right.

#include <qix/test.h>

#include <map>
#include <string>

namespace
{

struct Article
{
    std::string name;
    int price;
};

std::map<std::string, Article> const stock = {{"apple", {"apple", 2}}};

Article const* findArticle(std::string const& name)
{
    auto const found = stock.find(name);
    return found == stock.end() ? nullptr : &found->second;
}

int priceOf(Article const* article)
{
    return article->price;
}

} // namespace

QIX_TEST(prices, apple)
{
    QIX_CHECK(priceOf(findArticle("apple")) == 2);
}

QIX_TEST(prices, pear)
{
    QIX_CHECK(findArticle("plum") == nullptr);
    QIX_CHECK(priceOf(findArticle("pear")) == 3);
}

QIX_TEST(prices, apples)
{
    QIX_CHECK(2 * priceOf(findArticle("apple")) == 4);
}
