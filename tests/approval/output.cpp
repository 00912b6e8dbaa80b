// Tests and groups that record output, some of it beyond ASCII.
#include "suite.h"

#include <stdexcept>

using namespace suite;

namespace
{

class CTalkingGroup : public qix::CTestItemGroup
{
public:
    explicit CTalkingGroup(std::string const& name) : qix::CTestItemGroup(name)
    {
        addSubItem(leaf("child"));
    }

    void run(ITestRunner* runner) override
    {
        log("before the child");
        log(L"gr\u00fc\u00df \u20ac");
        qix::CTestItemGroup::run(runner);
        log("");
    }
};

void speak(Self& self, ITestRunner&)
{
    self.log("plain");
    self.log("");
    self.log("two\nlines");
    self.log("100%");
    self.log("bytes \xe4\xf6\xfc");
    self.log(L"wide \u00e4\u00f6\u00fc");
    self.log(L"beyond \u20ac \U0001f600 \u4e2d");
}

void failBeyondAscii(Self&, ITestRunner&)
{
    throw zel::CError(L"\u00e4 and \u20ac");
}

} // namespace

int main(int argc, char** argv)
{
    return run(argc, argv,
               {leaf("speaks", speak), leaf("is silent"),
                group("group", {leaf("speaks", speak), leaf("is silent")}),
                zel::newObj<CTalkingGroup>("talks"), leaf("fails", failBeyondAscii)});
}
