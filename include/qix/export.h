#pragma once

#include <zel/language.h>

/// Marks what libqix shows to others; everything else in the library is hidden.
#define QIX_EXPORT __attribute__((visibility("default")))
