#include "tests/faults/memory/excuses.h"

namespace faults::memory
{
std::vector<Excuse> excuses()
{
    const char* const format =
        "A device puts back a format that differs from the one that it has read last. A format that "
        "was written, and for whose reading memory was missing, is the device's own by then.";
    const char* const watch =
        "The end of a Watch neither waits nor throws. Without memory for its message to the worker "
        "the card stays watched until the System ends.";
    return {{"library: AudioDevice::setFormat", "*", "*", "*", Kind::reuse, format, "the objects know afterwards*"},
            {"client: watch", "*", "*:once", "*", Kind::reuse, watch, "the snapshot is not the truth: *"},
            {"client: watch", "*", "*:lasting", "*", Kind::reuse, watch, "the snapshot is not the truth: *"}};
}
}
