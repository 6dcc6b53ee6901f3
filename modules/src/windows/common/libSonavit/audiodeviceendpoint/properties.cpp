#include "libSonavit/audiodeviceinterface.h"

#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"

AudioDeviceInterface::AudioDeviceInterface() = default;
AudioDeviceInterface::AudioDeviceInterface(const AudioDeviceInterface&) = default;
AudioDeviceInterface& AudioDeviceInterface::operator=(const AudioDeviceInterface&) = default;
AudioDeviceInterface::~AudioDeviceInterface() noexcept(false) = default;

AudioDeviceInterface::Properties::Properties()
    : speakerConfig(0),
      format(),
      subType(),
      directSoundGuid(),
      deviceState(0)
{
}

AudioDeviceInterface::Properties::Properties(const Properties& other) = default;
AudioDeviceInterface::Properties& AudioDeviceInterface::Properties::operator=(const Properties& other) = default;
AudioDeviceInterface::Properties::~Properties() = default;

void AudioDeviceInterface::Properties::logPropertyInfo() const
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::Properties::logPropertyInfo()");
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Device ID ").append(deviceId));
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Device Instance Path ").append(instancePath));
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Driver Node Strong Name ").append(driverNodeStrongName));
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Friendly Name ").append(friendlyName));
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Endpoint Type ").append(endpointType));
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Physical Speaker Config ").append(qor::QORValue(speakerConfig).toHexString(true)));
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Device state is ").append(decimalText(deviceState)));
}
