#include "runner/consoleColors.h"

namespace qix
{

ConsoleColors consoleColors = withoutColors;

} // namespace qix
