/// How the process opens property stores, and the calls that the journal shows.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"

namespace support
{
inline constexpr const char* opening = "IMMDevice::OpenPropertyStore";
inline constexpr const char* openingForBoth = "IMMDevice::OpenPropertyStore(2)";
inline constexpr const char* openingForReading = "IMMDevice::OpenPropertyStore(0)";

/// Sets the way in which the process opens stores, until the end of the object's life.
class ChosenAccess
{
public:
    explicit ChosenAccess(StoreAccess access) { AudioDevice::setStoreAccess(access); }
    ~ChosenAccess() { AudioDevice::setStoreAccess(StoreAccess::readWrite); }
    ChosenAccess(const ChosenAccess&) = delete;
    ChosenAccess& operator=(const ChosenAccess&) = delete;
};
}
