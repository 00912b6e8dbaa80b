#pragma once

namespace qix
{

/// Sends to standard error what is printed on standard output while it lives.
class CDivertedOutput
{
public:
    CDivertedOutput();
    ~CDivertedOutput();
    CDivertedOutput(CDivertedOutput const&) = delete;
    CDivertedOutput& operator=(CDivertedOutput const&) = delete;

private:
    int m_output;
};

} // namespace qix
