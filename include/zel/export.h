#pragma once

#include <zel/language.h>

/// Marks what libzel shows to others; everything else in the library is hidden.
#define ZEL_EXPORT __attribute__((visibility("default")))
