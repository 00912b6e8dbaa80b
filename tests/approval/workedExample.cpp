// One group with a test that succeeds and one that fails.
#include "suite.h"

#include <stdexcept>

using namespace suite;

namespace
{

void sayHelloAndFail(Self& self, ITestRunner&)
{
    self.log("hello");
    throw std::runtime_error("boom");
}

} // namespace

int main(int argc, char** argv)
{
    return run(argc, argv, {group("A", {leaf("t1"), leaf("t2", sayHelloAndFail)})});
}
