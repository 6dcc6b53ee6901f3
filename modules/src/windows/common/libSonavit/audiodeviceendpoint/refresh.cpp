#include "libSonavit/audiodeviceendpoint.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"

#include <cstring>

const PROPERTYKEY AudioDevice::m_friendlyName = propertykeys::friendlyName;
const PROPERTYKEY AudioDevice::m_instancePathKey = propertykeys::instancePath;
const PROPERTYKEY AudioDevice::m_driverNodeStrongName = propertykeys::driverNodeStrongName;
const PROPERTYKEY AudioDevice::m_speakerConfig = propertykeys::physicalSpeakers;
const PROPERTYKEY AudioDevice::m_directSoundGUID = propertykeys::directSoundGuid;
const PROPERTYKEY AudioDevice::m_deviceFormat = propertykeys::deviceFormat;

bool AudioDevice::refreshDeviceInformation()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::refreshDeviceInformation()");
    if (m_propertyStore.get() == nullptr)
    {
        IPropertyStore* store = nullptr;
        const HRESULT result = m_device->OpenPropertyStore(STGM_READWRITE, &store); // setFormat() writes to it
        m_propertyStore = store;
        if (FAILED(result) || store == nullptr)
        {
            SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("OpenPropertyStore returns ").append(hexText(result)));
            return false;
        }
    }
    if (!getDeviceData(propertykeys::deviceDescription, m_properties.endpointType))
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("m_propertyStore->GetValue(PKEY_Device_DeviceDesc, &deviceProperty) fails "));
    if (!getDeviceData(m_deviceFormat, m_properties.format))
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("m_propertyStore->GetValue(PKEY_AudioEngine_DeviceFormat, &deviceProperty) fails"));
    if (!getDeviceData(m_instancePathKey, m_properties.instancePath))
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("Fail to get instancePathKey value "));
    if (!getDeviceData(m_driverNodeStrongName, m_properties.driverNodeStrongName))
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("Fail to get driverNodeStrongName value "));
    if (!getDeviceData(m_friendlyName, m_properties.friendlyName))
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("Fail to get device friendly name "));
    if (!getDeviceData(m_speakerConfig, m_properties.speakerConfig))
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("Fail to get physical speaker config "));
    readDirectSoundGuid();
    refreshDeviceState();
    if (isEndpoint())
        readJackType();
    m_properties.logPropertyInfo();
    return true;
}

template<class DataType>
bool AudioDevice::getDeviceData(const PROPERTYKEY& key, DataType& value)
{
    SONAVIT_TRACE(endpointlog, "bool AudioDevice::getDeviceData(const PROPERTYKEY& key, DataType& value)");
    PROPVARIANT variant;
    std::memset(&variant, 0, sizeof(variant));
    if (FAILED(m_propertyStore->GetValue(key, &variant)))
        return false;
    const bool converted = getPropVariantValue(variant, value);
    PropVariantClear(&variant);
    return converted;
}

template bool AudioDevice::getDeviceData(const PROPERTYKEY& key, qor::String& value);
template bool AudioDevice::getDeviceData(const PROPERTYKEY& key, unsigned int& value);
template bool AudioDevice::getDeviceData(const PROPERTYKEY& key, WAVEFORMATEXTENSIBLE& value);

template<>
bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, qor::String& value)
{
    if (variant.vt != VT_LPWSTR)
        return false;
    value = platform::ucs2(variant.pwszVal);
    return true;
}

template<>
bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, unsigned int& value)
{
    if (variant.vt != VT_UI4)
        return false;
    value = variant.ulVal;
    return true;
}

/// An endpoint without a stored format is no failure, one with a format of another size is.
template<>
bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, WAVEFORMATEXTENSIBLE& value)
{
    if (variant.vt != VT_BLOB)
        return true;
    if (variant.blob.cbSize != sizeof(value))
        return false;
    std::memcpy(&value, variant.blob.pBlobData, sizeof(value));
    return true;
}

/// Read apart from the others, and meant to stay so: the type tag is not looked at, a property that cannot be had is
/// passed over in silence, and the variant is not cleared, so that each read leaves one text with the platform. Those
/// who match the log or count the platform's memory know it this way.
void AudioDevice::readDirectSoundGuid()
{
    PROPVARIANT variant;
    std::memset(&variant, 0, sizeof(variant));
    if (FAILED(m_propertyStore->GetValue(m_directSoundGUID, &variant)))
        return;
    if (FAILED(CLSIDFromString(variant.pwszVal, &m_properties.directSoundGuid)))
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("CLSIDFromString cannot convert sting guid to direct sound guid"));
}

/// Only the first connector counts, and without a far side the kind of jack stays what it was.
void AudioDevice::readJackType()
{
    qor::Array<AudioComponent<IConnector>> connectors;
    if (connector(connectors) == 0)
        return;
    const COMPtr<IConnector>::pointer first = connectors[0].component();
    if (first.get() == nullptr)
        return;
    IConnector* farConnector = nullptr;
    if (FAILED(first->GetConnectedTo(&farConnector)))
        return;
    const AudioComponent<IConnector> jack(farConnector);
    m_properties.subType = jack.subType();
}
