#pragma once

#include <zel/export.h>

namespace zel
{

/// The common base of the path syntaxes, so that code can ask whether a type is one.
class ZEL_EXPORT CPathTraitsBase
{
};

} // namespace zel
