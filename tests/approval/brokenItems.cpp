// Items that do not keep to the rules: missing ones, throwing factories, strange names.
#include "suite.h"

#include <stdexcept>

using namespace suite;

namespace
{

Item failToCreate()
{
    throw std::runtime_error("the factory X\n\nof X is broken\n");
}

Item createNothing()
{
    return nullptr;
}

Item createTest()
{
    return leaf("made");
}

/// Fails once and then works.
test::CFunctionFactory::Create failOnce()
{
    return [calls = 0]() mutable { return calls++ == 0 ? failToCreate() : leaf("made at last"); };
}

void throwNumber(Self&, ITestRunner&)
{
    throw 42;
}

} // namespace

int main(int argc, char** argv)
{
    Item const lateGroup = lazyGroup("late", {createTest, failOnce(), createTest});
    addToRoot({group("outer", {leaf("before"), lazyGroup("inner", {createTest, failToCreate}),
                               leaf("never run")}),
               lazyGroup("top", {failToCreate}), leaf("throws a number", throwNumber),
               group("numbers", {leaf("first"), leaf("throws a number", throwNumber)}),
               leaf("100%s harmless %n"),
               group("50%% off", {leaf("%s",
                                       [](Self& self, ITestRunner&)
                                       {
                                           self.log("%d%n");
                                           throw std::runtime_error("%s%n");
                                       })}),
               lazyGroup("with a hole", {createTest, createNothing, createTest}),
               group("first use", {lateGroup}), group("second use", {lateGroup}), leaf("last")});
    qix::CTestItemGroup::global()->addFactory(zel::newObj<test::CFunctionFactory>(createNothing));
    return qix::runMain(argc, argv);
}
