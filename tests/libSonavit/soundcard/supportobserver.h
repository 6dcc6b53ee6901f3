#pragma once

#include "libSonavit/soundcard.h"

#include <functional>
#include <string>
#include <vector>

namespace support
{
/// Records its notifications, and may run an action at each.
class RecordingObserver final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override { record("state"); }
    void onDeviceAdded() override { record("added"); }
    void onDeviceRemoved() override { record("removed"); }

    BorrowedPointer<SoundCardObserver> handle() { return BorrowedPointer<SoundCardObserver>(this); }

    std::vector<std::string> notifications;
    std::function<void()> whenNotified;

private:
    void record(const char* event)
    {
        notifications.emplace_back(event);
        if (whenNotified)
            whenNotified();
    }
};
}
