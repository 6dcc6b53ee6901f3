#pragma once

#include "platform/coreaudio.h"

#include <memory>

namespace bench
{
/// An object like those of the platform: the compiler cannot inline its operations, and it changes its count
/// atomically. It has one reference, which the caller owns.
IUnknown* newCountedObject();

/// The same kind of object, owned by a pointer of the standard library.
std::shared_ptr<IUnknown> newSharedObject();
}
