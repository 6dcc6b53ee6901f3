/// The steps that all lists of endpoints share; included by this module's source files only.
#pragma once

#include "COM/comptr.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "qor/array.h"

namespace endpointlisting
{
/// The endpoints of @p flow in one of the states of @p states, as they are now; nil if the platform gives no
/// collection.
inline COMPtr<IMMDeviceCollection>::pointer collectionOf(IMMDeviceEnumerator& enumerator, EDataFlow flow, DWORD states)
{
    IMMDeviceCollection* collection = nullptr;
    enumerator.EnumAudioEndpoints(flow, states, &collection);
    return collection;
}

inline UINT countOf(const COMPtr<IMMDeviceCollection>::pointer& collection)
{
    UINT count = 0;
    if (collection.get() != nullptr)
        collection->GetCount(&count);
    return count;
}

/// Appends the first @p count endpoints. One that cannot be had or read takes its place all the same.
inline void append(const COMPtr<IMMDeviceCollection>::pointer& collection, UINT count, qor::Array<AudioDevice>& devices)
{
    for (UINT index = 0; index < count; ++index)
    {
        IMMDevice* device = nullptr;
        collection->Item(index, &device);
        devices.append(AudioDevice(device));
    }
}
}
