#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"
#include "libSonavit/soundcardupdater.h"

SoundCardInterface::SoundCardInterface() = default;
SoundCardInterface::SoundCardInterface(const SoundCardInterface&) = default;
SoundCardInterface& SoundCardInterface::operator=(const SoundCardInterface&) = default;
SoundCardInterface::~SoundCardInterface() noexcept(false) = default;

namespace
{
/// The updater under the interface that the platform calls. The handle adopts the reference that is added here.
COMPtr<IMMNotificationClient>::pointer notificationClient(
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer& updater)
{
    updater->AddRef();
    return updater.get();
}
}

SoundCard::SoundCard()
    : m_playbackDevices(qor::sharedOwner(new qor::Array<AudioDevice>)),
      m_recordDevices(qor::sharedOwner(new qor::Array<AudioDevice>)),
      m_internalDevices(qor::sharedOwner(new qor::Array<AudioDevice>)),
      m_playbackObservers(qor::sharedOwner(new qor::Array<BorrowedPointer<SoundCardObserver>>)),
      m_recordObservers(qor::sharedOwner(new qor::Array<BorrowedPointer<SoundCardObserver>>)),
      m_deviceId(qor::sharedOwner(new qor::String))
{
    m_updater = SoundCardDeviceUpdater::createUpdater();
    m_updater->setRecordDeviceList(m_recordDevices);
    m_updater->setPlaybackDeviceList(m_playbackDevices);
    m_updater->setOwnerId(m_deviceId);
    m_updater->setPlaybackObserver(m_playbackObservers);
    m_updater->setRecordObserver(m_recordObservers);

    const COMPtr<IMMNotificationClient>::pointer client = notificationClient(m_updater);
    const OwnedPointer<libSonavit::AudioDeviceEnumerator>& enumerator =
        libSonavit::AudioDeviceEnumeratorFactory::enumerator();
    if (enumerator.get() != nullptr)
        enumerator->addNotificationClient(client);
}

SoundCard::SoundCard(const SoundCard& other) = default;
SoundCard& SoundCard::operator=(const SoundCard& other) = default;

/// Required behaviour: the updater stays registered. Copies of this card and its observers rely on that.
SoundCard::~SoundCard() noexcept(false)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::~SoundCard()");
}

qor::String SoundCard::instanceId()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::instanceId");
    const qor::Array<qor::String> pieces = m_deviceId->tokenize(".");
    if (pieces.size() < 2)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Unrecognized device id format ").append(*m_deviceId));
        return qor::String();
    }
    return pieces[1];
}

const qor::String& SoundCard::deviceId() const
{
    return *m_deviceId;
}

bool SoundCard::operator==(const SoundCardInterface& other) const
{
    return deviceId() == other.deviceId();
}

bool SoundCard::operator==(const SoundCard& other)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::operator==");
    return qor::String::compareNoCase(*m_deviceId, *other.m_deviceId) == 0;
}

bool SoundCard::isDeviceAlreadyInTheCard(const qor::String& id)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::isDeviceAlreadyInTheCard");
    const auto hasThatId = [&id](const AudioDevice& device)
    { return qor::String::equalNoCase(id, device.deviceProperty().deviceId); };
    return listsearch::isHit(listsearch::indexWhere(*m_playbackDevices, hasThatId)) ||
           listsearch::isHit(listsearch::indexWhere(*m_recordDevices, hasThatId));
}

bool SoundCard::addDevice(qor::Array<AudioDevice>& deviceTable, const AudioDevice& device)
{
    SONAVIT_TRACE(soundcardlog, "addDevice(Array<AudioDevice>& deviceTable, const AudioDevice& device)");
    const qor::String id(device.deviceProperty().deviceId);
    if (isDeviceAlreadyInTheCard(id))
    {
        SONAVIT_LOG(soundcardlog, LOG_ERROR, out.append("Cannot add duplicate device ").append(id));
        return false;
    }
    deviceTable.append(device);
    return true;
}

bool SoundCard::addEndpointDevice(EDataFlow dataFlow, const AudioDevice& device)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::addEndpointDevice");
    if (dataFlow == eRender)
        return addDevice(*m_playbackDevices, device);
    if (dataFlow == eCapture)
        return addDevice(*m_recordDevices, device);
    return false;
}

bool SoundCard::addPlaybackEndpointDevice(const AudioDevice& device)
{
    return addDevice(*m_playbackDevices, device);
}

bool SoundCard::addCaptureEndpointDevice(const AudioDevice& device)
{
    return addDevice(*m_recordDevices, device);
}
