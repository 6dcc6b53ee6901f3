// The platform leaves the definition of its identifiers to each program. This file defines those of the client layer.
// This include stays the first one.
#include "platform/windows/defineidentifiers.h"
