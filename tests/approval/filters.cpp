// Tests of every duration, with and without a human, in groups and alone. The clock stands still
// unless a test moves it, so that each test takes as long as its class wants.
#include "suite.h"

#include <CFakeClock.h>

using namespace suite;

namespace
{

test::CFakeClock clockOfTests;

Self::Work lasting(std::time_t seconds)
{
    return [seconds](Self&, ITestRunner&) { clockOfTests.advance(seconds); };
}

/// An interactive test that says so only at one of the two places.
class CForgetful : public Self
{
public:
    using Self::Self;
    bool isInteractive() const override { return true; }
};

Items makeItems()
{
    return {
        leaf("none", succeed, ITestItem::None),
        leaf("short"),
        leaf("long", lasting(60), ITestItem::Long),
        leaf("very long", lasting(600), ITestItem::VeryLong),
        leaf("hours", lasting(7200), ITestItem::Hours),
        leaf("beyond", succeed, static_cast<ITestItem::Duration>(5)),
        leaf("below", succeed, static_cast<ITestItem::Duration>(-1)),
        interactive("human"),
        interactive("long human", lasting(60), ITestItem::Long),
        group("durations", {leaf("short"), leaf("long", lasting(60), ITestItem::Long),
                            leaf("very long", lasting(600), ITestItem::VeryLong),
                            leaf("hours", lasting(7200), ITestItem::Hours)}),
        group("mixed", {leaf("quiet"), interactive("human"), group("deep", {leaf("quiet")}),
                        group("deeper", {group("still", {interactive("human")})})}),
        group("quiet", {leaf("one"), leaf("two")}),
        group("long and human", {leaf("long", lasting(60), ITestItem::Long), interactive("human")}),
        lazyGroup("lazy", {[] { return interactive("human"); }}),
        zel::newObj<CForgetful>("forgetful"),
        group("empty")};
}

} // namespace

int main(int argc, char** argv)
{
    return run(argc, argv, makeItems());
}
