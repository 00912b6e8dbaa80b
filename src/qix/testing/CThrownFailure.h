#pragma once

#include <qix/CTestFailedException.h>

#include <exception>

namespace qix
{

/// Tells of an exception that has left a test what it is and where the test is written. It is made
/// while that is being handled, and has it nested in it.
class CThrownFailure : public CTestFailedException, public std::nested_exception
{
public:
    using CTestFailedException::CTestFailedException;

    zel::P<zel::CError> clone() const override { return zel::newObj<CThrownFailure>(*this); }
    [[noreturn]] void throwClone() const override { throw CThrownFailure(*this); }
};

} // namespace qix
