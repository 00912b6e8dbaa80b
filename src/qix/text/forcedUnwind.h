#pragma once

#include <cxxabi.h>

/// For a function that catches abi::__forced_unwind, by which a thread is cancelled, to throw it
/// on. There is no object of that type, and a reference to nothing is what sanitizers complain
/// about.
#define QIX_CATCHES_FORCED_UNWIND __attribute__((no_sanitize("null")))
