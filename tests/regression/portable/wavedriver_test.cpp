// The search for a wave number read past the end of a block that a wave driver had left as it was, or had filled
// without a terminator. On Windows the wave functions are the system's own.
#include "simulator/core/systemmemory.h"
#include "simulator/core/wave.h"
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace
{
/// Answers the message with its two parameters.
using Driver = std::function<MMRESULT(UINT message, DWORD_PTR first, DWORD_PTR second)>;

/// The driver behind the wave functions of this executable. While there is none, the simulated machine answers.
Driver driver;
constexpr UINT deviceCount = 1;

/// What new task memory contains.
constexpr int filler = 0x61;
}

UINT WINAPI waveOutGetNumDevs()
{
    return driver ? deviceCount : sim::wave::countOutputs();
}

MMRESULT WINAPI waveOutMessage(HWAVEOUT device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return driver ? driver(message, first, second)
                  : sim::wave::sendToOutput(sim::wave::idOf(device), message, first, second);
}

MMRESULT WINAPI waveInMessage(HWAVEIN device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return driver ? MMSYSERR_BADDEVICEID : sim::wave::sendToInput(sim::wave::idOf(device), message, first, second);
}

/// The memory behind the task memory of this executable: no block is zero by chance, nor is what follows it, whatever
/// the C library does with memory that is used again.
namespace sim::systemmemory
{
void* allocate(std::size_t bytes)
{
    constexpr std::size_t behind = 16;
    void* const block = std::calloc(bytes + behind + sizeof(unsigned short), 1); // zero at the very end
    return block == nullptr ? nullptr : std::memset(block, filler, bytes + behind);
}

void free(void* memory)
{
    std::free(memory);
}

void watchFrees(const std::function<void(void*)>&) {}
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

    /// Stores the size of the id without its terminator.
    MMRESULT storeSize(DWORD_PTR place) const
    {
        *reinterpret_cast<DWORD_PTR*>(place) = size();
        return MMSYSERR_NOERROR;
    }

    std::size_t size() const { return id.size() * sizeof(unsigned short); }

    qor::String id;
};
}

TEST_F(WaveDriver, ThatSucceedsWithoutAnIdFindsAClearedBlockAndIsSkipped)
{
    AudioDevice device(reference(speaker.id()));
    bool wasCleared = false;
    driver = [&](UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
    {
        if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
            return storeSize(first);
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
    driver = [&](UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
    {
        if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
            return storeSize(first);
        std::memcpy(reinterpret_cast<void*>(first), id.getUCS2Buffer(), second);
        return MMSYSERR_NOERROR;
    };

    EXPECT_EQ(0u, device.waveLegacyDeviceID());
}

TEST_F(WaveDriver, IsGivenABlockOfExactlyItsSize)
{
    AudioDevice device(reference(speaker.id()));
    driver = [&](UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
    {
        if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
            return storeSize(first);
        EXPECT_EQ(size(), second);
        return MMSYSERR_NOERROR;
    };

    EXPECT_EQ(none, device.waveLegacyDeviceID());

    EXPECT_EQ(1u, simulation().journal().of("CoTaskMemAlloc").with(std::to_string(size())).size());
}
