/// Devices that go into a list and end; included by the library's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"

/// A device that is destroyed right after a list has taken a copy of it. The copy takes the device's topology, with its
/// lists, and the texts of its properties instead of copying them; all else, and all that is traced, is as in a copy.
class AudioDevice::LastUse
{
public:
    explicit LastUse(AudioDevice& device) noexcept : m_device(device) {}

    AudioDevice& device() const noexcept { return m_device; }

    static Properties take(Properties& properties);

    /// Appends the copy to @p list. The elements that a full list copies as it grows come first, as in Array::append().
    void appendTo(qor::Array<AudioDevice>& list) const
    {
        list.ensureCapacity(list.size() + 1);
        list.emplace(*this);
    }

private:
    AudioDevice& m_device;
};
