// Where the platform leaves the definition of its identifiers to each program, they are defined here. This include
// stays first.
#include "platform/windows/defineidentifiers.h"

#include "COM/identifiers.h"
