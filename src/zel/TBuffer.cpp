#include <zel/TBuffer.h>

namespace zel
{

template class TBuffer<char>;
template class TBuffer<unsigned char>;

} // namespace zel
