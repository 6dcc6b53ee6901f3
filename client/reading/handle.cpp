#include "client/reading/handle.h"

#include <atomic>

namespace sonavit::reading
{
namespace
{
std::atomic<std::size_t> failed{0};
}

void countFailedRelease() noexcept
{
    ++failed;
}

std::size_t failedReleases() noexcept
{
    return failed.load();
}
}
