#include "measured.h"

namespace bench
{
void measureSnapshot(std::optional<sonavit::System>& audio, const sonavit::System::Options& options)
{
    audio.emplace(options);
    static_cast<void>(audio->snapshot());
}

void measurePlain(plain::Client& client)
{
    client.read();
}

void measureRefresh(sonavit::System& audio)
{
    static_cast<void>(audio.refresh());
}

void measureVolumeNotification(sonavit::watching::VolumeListener& listener, AUDIO_VOLUME_NOTIFICATION_DATA& data)
{
    listener.OnNotify(&data);
}

void measurePropertyNotification(sonavit::watching::DeviceListener& listener, LPCWSTR endpoint)
{
    listener.OnPropertyValueChanged(endpoint, PROPERTYKEY());
}
}
