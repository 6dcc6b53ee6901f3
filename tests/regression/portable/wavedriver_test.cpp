// The search for a wave number read past the end of a block that a wave driver had left as it was, or had filled
// without a terminator. On Windows the wave functions are the system's own.
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace
{
/// Answers one message: its device number, the message and its two parameters.
using Driver = std::function<MMRESULT(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second)>;

/// The driver behind the wave functions of this executable, which take the place of the simulated machine's.
Driver driver;
constexpr UINT deviceCount = 2;
}

UINT WINAPI waveOutGetNumDevs()
{
    return driver ? deviceCount : 0;
}

MMRESULT WINAPI waveOutMessage(HWAVEOUT device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return driver ? driver(reinterpret_cast<std::size_t>(device), message, first, second) : MMSYSERR_BADDEVICEID;
}

MMRESULT WINAPI waveInMessage(HWAVEIN, UINT, DWORD_PTR, DWORD_PTR)
{
    return MMSYSERR_BADDEVICEID;
}

namespace
{
constexpr unsigned int none = 0xFFFFFFFF;

class WaveDriver : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        kept.directSoundTexts = 1;
        id = qor::String::fromUtf8(speaker.id());
    }

    void TearDown() override
    {
        driver = nullptr;
        DeviceTest::TearDown();
    }

    /// Stores the size of the id without its terminator; for the first device, which reports an error for its id, some
    /// bytes more.
    MMRESULT storeSize(std::size_t number, DWORD_PTR place) const
    {
        *reinterpret_cast<DWORD_PTR*>(place) = size() + (number == 0 ? moreBytes : 0);
        return MMSYSERR_NOERROR;
    }

    /// Fills the whole block, so that memory which is used again is not zero by chance.
    static MMRESULT fillAndFail(DWORD_PTR place, DWORD_PTR bytes)
    {
        std::memset(reinterpret_cast<void*>(place), 0x61, bytes);
        return MMSYSERR_NOTSUPPORTED;
    }

    std::size_t size() const { return id.size() * sizeof(unsigned short); }

    static constexpr std::size_t moreBytes = 8;
    qor::String id;
};
}

TEST_F(WaveDriver, ThatSucceedsWithoutAnIdFindsAClearedBlockAndIsSkipped)
{
    AudioDevice device(reference(speaker.id()));
    bool wasCleared = false;
    driver = [&](std::size_t number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
    {
        if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
            return storeSize(number, first);
        if (number == 0)
            return fillAndFail(first, second);
        const char* const block = reinterpret_cast<const char*>(first);
        wasCleared = std::all_of(block, block + second, [](char byte) { return byte == 0; });
        return MMSYSERR_NOERROR;
    };

    EXPECT_EQ(none, device.waveLegacyDeviceID());

    EXPECT_TRUE(wasCleared);
}

TEST_F(WaveDriver, ThatWritesNoTerminatorIsReadToTheEndOfItsBlock)
{
    AudioDevice device(reference(speaker.id()));
    driver = [&](std::size_t number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
    {
        if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
            return storeSize(number, first);
        if (number == 0)
            return fillAndFail(first, second);
        std::memcpy(reinterpret_cast<void*>(first), id.getUCS2Buffer(), second);
        return MMSYSERR_NOERROR;
    };

    EXPECT_EQ(1u, device.waveLegacyDeviceID());
}

TEST_F(WaveDriver, IsGivenABlockOfExactlyItsSize)
{
    AudioDevice device(reference(speaker.id()));
    driver = [&](std::size_t number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
    {
        if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
            return storeSize(number, first);
        EXPECT_EQ(size() + (number == 0 ? moreBytes : 0), second);
        return MMSYSERR_NOERROR;
    };

    EXPECT_EQ(none, device.waveLegacyDeviceID());

    EXPECT_EQ(1u, simulation().journal().of("CoTaskMemAlloc").with(std::to_string(size())).size());
}
