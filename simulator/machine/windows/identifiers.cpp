// The platform leaves the definition of its identifiers to each program; those of the simulator are here, for whoever
// links it. This include stays the first one.
#include "platform/windows/defineidentifiers.h"
