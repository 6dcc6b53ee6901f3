#include "libSonavit/audiodeviceendpoint.h"

#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"
#include "libSonavit/audiodeviceendpoint/propertystore.h"
#include "libSonavit/precondition.h"

#include <cstring>

bool AudioDevice::setFormat(const WAVEFORMATEXTENSIBLE& format)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::setFormat");
    precondition::check(m_propertyStore.get() != nullptr, __FILE__, __LINE__, "m_propertyStore.get() != NULL");
    HRESULT result = writeFormat(format);
    if (FAILED(result))
    {
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("IPropertyStore::SetValue failed ").append(hexText(result)));
        return false;
    }
    m_propertyStore = nullptr; // Required: the properties are read from a new store
    if (m_device.get() == nullptr)
        return false; // initialize() has been given a null device since
    IPropertyStore* store = nullptr;
    result = propertystore::open(*m_device.get(), store);
    if (FAILED(result))
    {
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("Cannot open a new property store ").append(hexText(result)));
        return false; // a pointer along with the failure code is ignored
    }
    m_propertyStore = store;
    return refreshDeviceInformation();
}

/// Stores @p format in the open store; needs no memory. @return the HRESULT of SetValue; that of Commit is ignored
HRESULT AudioDevice::writeFormat(const WAVEFORMATEXTENSIBLE& format)
{
    PROPVARIANT variant; // refers to the caller's format, so it must not be cleared
    std::memset(&variant, 0, sizeof(variant));
    variant.vt = VT_BLOB;
    variant.blob.cbSize = sizeof(format);
    variant.blob.pBlobData = reinterpret_cast<BYTE*>(const_cast<WAVEFORMATEXTENSIBLE*>(&format));
    const HRESULT result = m_propertyStore->SetValue(m_deviceFormat, variant);
    if (SUCCEEDED(result))
        m_propertyStore->Commit();
    return result;
}

bool operator==(const WAVEFORMATEX& left, const WAVEFORMATEX& right)
{
    return left.cbSize == right.cbSize && left.nAvgBytesPerSec == right.nAvgBytesPerSec &&
           left.nBlockAlign == right.nBlockAlign && left.nChannels == right.nChannels &&
           left.nSamplesPerSec == right.nSamplesPerSec && left.wBitsPerSample == right.wBitsPerSample &&
           left.wFormatTag == right.wFormatTag;
}

bool operator!=(const WAVEFORMATEX& left, const WAVEFORMATEX& right)
{
    return !(left == right);
}

bool operator==(const WAVEFORMATEXTENSIBLE& left, const WAVEFORMATEXTENSIBLE& right)
{
    return left.Format == right.Format && left.dwChannelMask == right.dwChannelMask &&
           left.Samples.wValidBitsPerSample == right.Samples.wValidBitsPerSample &&
           std::memcmp(&left.SubFormat, &right.SubFormat, sizeof(left.SubFormat)) == 0;
}

bool operator!=(const WAVEFORMATEXTENSIBLE& left, const WAVEFORMATEXTENSIBLE& right)
{
    return !(left == right);
}
