#pragma once

#include <qix/export.h>

namespace qix
{

/// What a test executable's main does: takes the character type of the locale from the
/// environment and hands the arguments behind the program's name to CConsoleTestRunner::doMain().
///
/// Arguments that begin with "--" and a letter are options; --help tells all of them. With options
/// a run goes its own way, by which single tests can be run, listed, left out, ordered and
/// repeated, and remembers in the working folder how they end. A lone "--" ends the options.
///
/// Without arguments, and with a standard input that is at its end already (closed, /dev/null, an
/// empty file, a pipe that nobody writes to any more), it prints how to select tests instead of
/// opening a menu that nobody can answer. An exception that leaves the run ends in one line on
/// standard error.
///
/// The log is written only to a regular file that belongs to the user, or to the owner of the
/// folder that it is in. A symbolic link, a named pipe, a device, a file of another user, and the
/// log of a run of this process that is still going on are refused before any test is run.
///
/// A run does not end with 0 before its time: when a test calls exit(), or when standard output
/// cannot be written, a line on standard error says so.
/// \return the exit status: 0 when no test failed; 1 when one failed, a selection was rejected or
///         the working directory could not be entered; 2 when an option was wrong, nothing could be
///         run, or the log was refused, or the run was ended by an exception or by exit(), or all
///         passed but output was lost
QIX_EXPORT int runMain(int argc, char** argv);

} // namespace qix
