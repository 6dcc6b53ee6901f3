#include "tests/faults/memory/excuses.h"

namespace faults::memory
{
std::vector<Excuse> excuses()
{
    return {
        {"library: AudioDevice::setFormat", "*", "*", "*", Kind::reuse,
         "A device puts back a format that differs from the one that it has read last. A format that was written, and "
         "for whose reading memory was missing, is the device's own by then."}};
}
}
