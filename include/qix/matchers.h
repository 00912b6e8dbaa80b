#pragma once

/// \file
/// Matchers, which stand in QIX_CHECK_THAT and in the checks of messages: all of them.

/// \namespace qix::matchers
/// What is expected of a value. In the place of a matcher that is an argument of another one, a
/// value may stand, which is to be equal.
///
/// A matcher of your own is a class with two operations, and a third one if you like:
/// \code
/// struct IsEven
/// {
///     bool matches(int value) const { return value % 2 == 0; }
///     void describe(qix::CValueWriter& out) const { out.text("is even"); }
///     void explain(qix::CValueWriter& out, int value) const { … } // what is different
/// };
/// \endcode
/// Matchers own what they are made of. They may be used by several threads when what they compare
/// may be.

#include <qix/matchers/combinations.h>
#include <qix/matchers/containers.h>
#include <qix/matchers/numbers.h>
#include <qix/matchers/objects.h>
#include <qix/matchers/texts.h>
