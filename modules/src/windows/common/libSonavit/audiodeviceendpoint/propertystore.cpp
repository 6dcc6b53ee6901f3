#include "libSonavit/audiodeviceendpoint/propertystore.h"

#include "libSonavit/audiodeviceendpoint.h"

#include <atomic>

namespace
{
std::atomic<StoreAccess> processAccess{StoreAccess::readWrite};
}

void AudioDevice::setStoreAccess(StoreAccess access) noexcept
{
    processAccess = access;
}

StoreAccess AudioDevice::storeAccess() noexcept
{
    return processAccess;
}

/// For writing too, even if only properties are read: a later setFormat() uses the store that is open.
HRESULT propertystore::open(IMMDevice& device, IPropertyStore*& store)
{
    const HRESULT result = device.OpenPropertyStore(STGM_READWRITE, &store);
    if (result != E_ACCESSDENIED || AudioDevice::storeAccess() != StoreAccess::writeElseRead)
        return result;
    store = nullptr; // a pointer along with the refusal is ignored
    return device.OpenPropertyStore(STGM_READ, &store);
}
