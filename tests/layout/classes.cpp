// The classes whose layout is a promise: one line for each, and a file under expected/.

#include <qix/qix.h>
#include <zel/zel.h>

#define SHOW(...) static_assert(sizeof(__VA_ARGS__) > 0)

SHOW(zel::IBase);
SHOW(zel::CBase);
SHOW(zel::P<zel::CBase>);
SHOW(zel::String);
SHOW(zel::CProps);
SHOW(zel::CError);
SHOW(zel::CInvalidArgError);
SHOW(zel::CBadPathError);
SHOW(zel::CMutexLock);
SHOW(zel::CSafeGlobalGuard);
SHOW(zel::TSafeGlobalPointer<zel::CCachedEnvVars>);
SHOW(zel::CPathTraitsBase);
SHOW(zel::CUnixPathTraits);
SHOW(zel::TPathImpl<zel::CUnixPathTraits>);
SHOW(zel::TList<zel::String>);
SHOW(zel::TBuffer<char>);

SHOW(qix::ITestItem);
SHOW(qix::ITestRunner);
SHOW(qix::ITestListener);
SHOW(qix::ILocatedItem);
SHOW(qix::ITaggedItem);
SHOW(qix::CheckFailure);
SHOW(qix::TestOutcome);
SHOW(qix::TestInfo);
SHOW(qix::RunInfo);
SHOW(qix::RunCounts);
SHOW(qix::ITestItemFactory);
SHOW(qix::CTestAbortedException);
SHOW(qix::CTestSkippedException);
SHOW(qix::CTestSkippedWithReasonException);
SHOW(qix::CTestFailedException);
SHOW(qix::CTestItemGroup);
SHOW(qix::CConsoleTestRunner);
SHOW(qix::CTestFolder);

struct Nested : qix::CConsoleTestRunner
{
    SHOW(qix::CConsoleTestRunner::RunningRecord);
    SHOW(qix::CConsoleTestRunner::FailInfo);
};
