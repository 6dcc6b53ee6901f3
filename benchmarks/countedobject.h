#pragma once

#include "platform/coreaudio.h"

#include <memory>

namespace bench
{
/// An object as the platform makes them, behind its interface: its operations are calls that nobody sees through, its
/// count is changed in one atomic step. It has one reference, which is the caller's.
IUnknown* newCountedObject();

/// The same kind of object in the standard library's care.
std::shared_ptr<IUnknown> newSharedObject();
}
