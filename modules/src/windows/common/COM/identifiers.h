/// The identifiers that the library passes to the platform or compares with the platform's answers.
///
/// Interfaces, classes and node types keep their SDK names (IID_IPart, CLSID_MMDeviceEnumerator, KSNODETYPE_SPEAKER,
/// ...) and come with the platform's declarations. The SDK has no names for some of the property keys; all keys that
/// the library reads or writes are in `propertykeys`.
#pragma once

#include "platform/coreaudio.h"
#include "platform/propertykeys.h"

namespace propertykeys = platform::propertykeys;
