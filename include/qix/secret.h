#pragma once

#include <qix/export.h>
#include <zel/String.h>

namespace qix
{

/// The value of the entry \p key of the group \p section in the test secrets file, which the
/// environment variable ZEL_TEST_SECRETS names.
///
/// The file has the syntax of wxFileConfig. It is read anew by every call; a relative name is
/// looked for in the current folder. References such as $HOME in the value are replaced by the
/// environment variables that they name. A "/" in \p section leads into nested groups.
///
/// When the file is not well-formed, one line on standard error says so and quotes nothing of it;
/// the messages of wxWidgets, which quote, are suppressed on this thread meanwhile.
/// Throws zel::CError when the variable is not set, when the file cannot be read or is too large
/// for the memory, and when the entry is missing. Safe to call from several threads.
QIX_EXPORT zel::String getTestSecret(zel::String const& section, zel::String const& key);

} // namespace qix
