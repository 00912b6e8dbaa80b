#pragma once

namespace qix
{

/// Which attributes a JUnit report may have: one too many, and Jenkins' xUnit plug-in drops the
/// whole file.
enum class JUnitSchema
{
    Plain,
    Jenkins
};

} // namespace qix
