#pragma once

/// \file
/// Everything of the test framework.

/// \namespace qix
/// The test framework: test items, and the runner that runs and reports them.

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestFolder.h>
#include <qix/CTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/CTestSkippedException.h>
#include <qix/CTestSkippedWithReasonException.h>
#include <qix/CValueWriter.h>
#include <qix/CheckFailure.h>
#include <qix/ILocatedItem.h>
#include <qix/ITaggedItem.h>
#include <qix/ITestItem.h>
#include <qix/ITestItemFactory.h>
#include <qix/ITestListener.h>
#include <qix/ITestRunner.h>
#include <qix/RunCounts.h>
#include <qix/RunInfo.h>
#include <qix/SourceLocation.h>
#include <qix/TestInfo.h>
#include <qix/TestOutcome.h>
#include <qix/approx.h>
#include <qix/combine.h>
#include <qix/export.h>
#include <qix/hidden.h>
#include <qix/main.h>
#include <qix/secret.h>
#include <qix/test.h>
#include <qix/util.h>
