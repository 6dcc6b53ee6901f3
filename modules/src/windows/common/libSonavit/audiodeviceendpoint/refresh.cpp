#include "libSonavit/audiodeviceendpoint.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/inpassing.h"
#include "libSonavit/audiodeviceendpoint/log.h"
#include "libSonavit/audiodeviceendpoint/propertystore.h"
#include "libSonavit/audiodevicetopology/topologyview.h"
#include "libSonavit/audiopart/partview.h"
#include "libSonavit/audiopart/passingcomponent.h"

#include <cstring>

namespace
{
/// Clears a variant that GetValue has filled at the end of the scope, even if an exception leaves the scope.
class VariantClearer
{
public:
    explicit VariantClearer(PROPVARIANT& variant) noexcept : m_variant(variant) {}
    VariantClearer(const VariantClearer&) = delete;
    VariantClearer& operator=(const VariantClearer&) = delete;
    ~VariantClearer() { PropVariantClear(&m_variant); }

private:
    PROPVARIANT& m_variant;
};

template<class Component>
IConnector* firstOf(const qor::Array<Component>& connectors)
{
    return connectors.size() == 0 ? nullptr : libSonavit::PartView::component(connectors[0]);
}
}

const PROPERTYKEY AudioDevice::m_friendlyName = propertykeys::friendlyName;
const PROPERTYKEY AudioDevice::m_instancePathKey = propertykeys::instancePath;
const PROPERTYKEY AudioDevice::m_driverNodeStrongName = propertykeys::driverNodeStrongName;
const PROPERTYKEY AudioDevice::m_speakerConfig = propertykeys::physicalSpeakers;
const PROPERTYKEY AudioDevice::m_directSoundGUID = propertykeys::directSoundGuid;
const PROPERTYKEY AudioDevice::m_deviceFormat = propertykeys::deviceFormat;

bool AudioDevice::refreshDeviceInformation()
{
    return readInformation(nullptr);
}

bool AudioDevice::readInformation(const InPassing* passing)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::refreshDeviceInformation()");
    if (m_propertyStore.get() == nullptr)
    {
        IPropertyStore* store = nullptr;
        const HRESULT result = propertystore::open(*m_device.get(), store);
        m_propertyStore = store; // even one along with a failure code: the next refresh reads from it
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
        readJackType(passing);
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
        return false; // not cleared on purpose
    const VariantClearer clearer(variant);
    return getPropVariantValue(variant, value);
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

/// A missing format is not a failure; a format of another size is, and one without its bytes.
template<>
bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, WAVEFORMATEXTENSIBLE& value)
{
    if (variant.vt != VT_BLOB)
        return true;
    if (variant.blob.cbSize != sizeof(value) || variant.blob.pBlobData == nullptr)
        return false;
    std::memcpy(&value, variant.blob.pBlobData, sizeof(value));
    return true;
}

/// Required behaviour, unlike for the other properties: the type tag is ignored, a property that cannot be read is not
/// logged, and the variant is not cleared, so each read leaves one string allocated. Readers of the log and counts of
/// task memory rely on it.
void AudioDevice::readDirectSoundGuid()
{
    PROPVARIANT variant;
    std::memset(&variant, 0, sizeof(variant));
    if (FAILED(m_propertyStore->GetValue(m_directSoundGUID, &variant)))
        return;
    if (FAILED(CLSIDFromString(variant.pwszVal, &m_properties.directSoundGuid)))
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("CLSIDFromString cannot convert sting guid to direct sound guid"));
}

/// Only the first connector is used; if it leads nowhere, the jack type keeps its value.
void AudioDevice::readJackType(const InPassing* passing)
{
    IConnector* const first = firstConnector(passing);
    if (first == nullptr)
        return;
    IConnector* farConnector = nullptr;
    if (FAILED(first->GetConnectedTo(&farConnector)))
        return; // a pointer along with the failure code is ignored
    const libSonavit::PassingComponent<IConnector, libSonavit::DroppedTexts> jack(farConnector);
    m_properties.subType = jack.subType();
}

/// The first connector of the topology, which owns the reference; null if there is none.
IConnector* AudioDevice::firstConnector(const InPassing* passing) const
{
    { // stands for connector(), whose copy of the list is not made
        SONAVIT_TRACE(endpointlog, "AudioDevice::connector(qor::Array<AudioConnector>& connectorList)");
    }
    if (passing != nullptr)
        return firstOf(passing->topology().connectors());
    return firstOf(libSonavit::TopologyView::connectors(m_topology));
}
