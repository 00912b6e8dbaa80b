#include "testing/capturedText.h"

#include <utility>

namespace qix
{

namespace
{

thread_local std::string capturedText;

} // namespace

std::string takeCapturedText()
{
    return std::exchange(capturedText, std::string());
}

void setCapturedText(std::string text)
{
    capturedText = std::move(text);
}

} // namespace qix
