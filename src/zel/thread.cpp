#include <zel/thread.h>

#include <chrono>
#include <thread>

namespace zel
{

void threadYield(bool giveAway)
{
    if (giveAway)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    else
    {
        std::this_thread::yield();
    }
}

} // namespace zel
