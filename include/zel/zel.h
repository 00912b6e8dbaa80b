#pragma once

/// \file
/// Everything of the base library.

/// \namespace zel
/// The base library: shared objects, strings, errors, paths, buffers, files.

#include <zel/CBadPathError.h>
#include <zel/CBase.h>
#include <zel/CCachedEnvVars.h>
#include <zel/CError.h>
#include <zel/CInvalidArgError.h>
#include <zel/CMutex.h>
#include <zel/CMutexLock.h>
#include <zel/CPathTraitsBase.h>
#include <zel/CPosixFileInStream.h>
#include <zel/CPosixFileStream.h>
#include <zel/CProps.h>
#include <zel/CSafeGlobalGuard.h>
#include <zel/CSystemAccountManager.h>
#include <zel/CUnixPathTraits.h>
#include <zel/IBase.h>
#include <zel/P.h>
#include <zel/String.h>
#include <zel/TBuffer.h>
#include <zel/TList.h>
#include <zel/TPathImpl.h>
#include <zel/TSafeGlobalPointer.h>
#include <zel/debug.h>
#include <zel/export.h>
#include <zel/filesystem.h>
#include <zel/thread.h>
