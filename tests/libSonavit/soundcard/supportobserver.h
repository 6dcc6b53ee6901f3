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
    void onDeviceStateChanged() override { hear("state"); }
    void onDeviceAdded() override { hear("added"); }
    void onDeviceRemoved() override { hear("removed"); }

    BorrowedPointer<SoundCardObserver> handle() { return BorrowedPointer<SoundCardObserver>(this); }

    std::vector<std::string> heard;
    std::function<void()> whenHeard;

private:
    void hear(const char* event)
    {
        heard.emplace_back(event);
        if (whenHeard)
            whenHeard();
    }
};
}
