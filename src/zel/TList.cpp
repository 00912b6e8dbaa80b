#include <zel/TList.h>

namespace zel
{

template class TList<String>;

} // namespace zel
