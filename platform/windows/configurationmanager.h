/// @file
/// The configuration manager, which keeps the tree of device instances. Windows only.
#pragma once

#include "platform/coreaudio.h"

#include <cfgmgr32.h>
