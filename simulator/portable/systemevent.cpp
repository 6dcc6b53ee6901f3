#include "simulator/core/streamengine.h"

namespace sim
{
void setSystemEvent(HANDLE) {}
}
