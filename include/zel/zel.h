#pragma once

/// \file
/// Everything of the base library.

/// \namespace zel
/// The base library: shared objects, strings, errors.

#include <zel/CBase.h>
#include <zel/CCachedEnvVars.h>
#include <zel/CError.h>
#include <zel/CInvalidArgError.h>
#include <zel/CMutex.h>
#include <zel/CMutexLock.h>
#include <zel/CProps.h>
#include <zel/CSafeGlobalGuard.h>
#include <zel/CSystemAccountManager.h>
#include <zel/IBase.h>
#include <zel/P.h>
#include <zel/String.h>
#include <zel/TSafeGlobalPointer.h>
#include <zel/debug.h>
#include <zel/export.h>
#include <zel/thread.h>
