#include "measurement.h"

// Comes with callgrind. The measurements begin anywhere, so only a client request of its own tells callgrind to begin.
#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#define SONAVIT_INSTRUMENT(state) CALLGRIND_##state##_INSTRUMENTATION
#else
#define SONAVIT_INSTRUMENT(state) static_cast<void>(0)
#endif

namespace bench
{
void beginMeasurement()
{
    SONAVIT_INSTRUMENT(START);
}

void endMeasurement()
{
    SONAVIT_INSTRUMENT(STOP);
}

void printMeasurement() {}
}
