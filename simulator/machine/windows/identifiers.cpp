// The platform leaves the definition of its identifiers to each program; this library defines those that it uses. This
// include must be the first one.
#include "platform/windows/defineidentifiers.h"
