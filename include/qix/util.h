#pragma once

#include <qix/export.h>

namespace qix
{

/// Returns when the process runs with administrator rights, and ends the test as skipped by
/// throwing CTestSkippedException otherwise. The rights are looked up on every call.
/// Safe to call from several threads.
QIX_EXPORT void throwSkippedExceptionIfNotAdmin();

/// Returns when the process runs without administrator rights, and ends the test as skipped by
/// throwing CTestSkippedException otherwise. The rights are looked up on every call.
/// Safe to call from several threads.
QIX_EXPORT void throwSkippedExceptionIfAdmin();

} // namespace qix
