// The platform leaves the definition of its identifiers to each program; the program has them here. This include stays
// the first one.
#include "platform/windows/defineidentifiers.h"
