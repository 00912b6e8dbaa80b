#pragma once

#include <cxxabi.h>

/// For functions that catch and rethrow abi::__forced_unwind, by which a thread is cancelled. No
/// object of that type exists, so the sanitizer reports the reference to it as null.
#define QIX_CATCHES_FORCED_UNWIND __attribute__((no_sanitize("null")))
