/// The steps of listing endpoints; included by this module's source files only.
#pragma once

#include "COM/comptr.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodeviceendpoint/lastuse.h"
#include "qor/array.h"

namespace endpointlisting
{
/// A snapshot of the endpoints of @p flow whose state is in the mask @p states; nil if the platform stores none. The
/// HRESULT is ignored on purpose.
inline COMPtr<IMMDeviceCollection>::pointer collectionOf(IMMDeviceEnumerator& enumerator, EDataFlow flow, DWORD states)
{
    IMMDeviceCollection* collection = nullptr;
    enumerator.EnumAudioEndpoints(flow, states, &collection);
    return collection;
}

/// The number of endpoints; 0 for a nil @p collection and if the platform stores none.
inline UINT countOf(const COMPtr<IMMDeviceCollection>::pointer& collection)
{
    UINT count = 0;
    if (collection.get() != nullptr)
        collection->GetCount(&count);
    return count;
}

/// Appends the first @p count endpoints. An endpoint that cannot be obtained or read keeps its place, as an AudioDevice
/// that is empty or failed to initialize. Each AudioDevice adopts the reference of its IMMDevice.
inline void append(const COMPtr<IMMDeviceCollection>::pointer& collection, UINT count, qor::Array<AudioDevice>& devices)
{
    for (UINT index = 0; index < count; ++index)
    {
        IMMDevice* device = nullptr;
        collection->Item(index, &device);
        AudioDevice temporary(device);
        libSonavit::lastuse::append(temporary, devices);
    }
}
}
