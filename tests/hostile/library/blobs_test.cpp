// What the object model makes of device formats that are none.
#include "libSonavit/audiodeviceendpoint.h"
#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"
#include "tests/hostile/library/hostilelibrarytest.h"

#include <cstring>
#include <vector>

namespace
{
using testing::Contains;

const char* const formatMessage = "m_propertyStore->GetValue(PKEY_AudioEngine_DeviceFormat, &deviceProperty) fails";

class LibraryBlobs : public hostile::HostileLibraryTest
{
protected:
    /// Starts the honest machine and reads the speaker, whose format becomes @p bytes afterwards.
    AudioDevice readWithFormat(std::vector<std::uint8_t> bytes)
    {
        begin({});
        AudioDevice speaker(simulation().device(hostile::honest().speaker)); // adopts the reference
        simulation().change(
            [&](sim::Machine& machine)
            {
                sim::setProperty(machine.endpoint(hostile::honest().speaker)->properties, sim::keys::deviceFormat,
                                 sim::PropertyValue::ofBytes(std::move(bytes)));
            });
        log.clear();
        return speaker;
    }
};
}

TEST_F(LibraryBlobs, OfOtherSizesThanAFormatsLeaveTheFormatWithAMessage)
{
    for (const std::size_t size : {0u, 18u, 39u, 41u, 0x10000u})
    {
        SCOPED_TRACE(size);
        AudioDevice speaker = readWithFormat(std::vector<std::uint8_t>(size, 0xFF));
        const WAVEFORMATEXTENSIBLE before = speaker.deviceProperty().format;

        EXPECT_TRUE(speaker.refreshDeviceInformation());

        EXPECT_TRUE(before == speaker.deviceProperty().format);
        EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR), Contains(formatMessage));
    }
}

TEST_F(LibraryBlobs, OfTheSizeOfAFormatAreReadWhateverTheyContain)
{
    AudioDevice speaker = readWithFormat(std::vector<std::uint8_t>(40, 0xFF));

    EXPECT_TRUE(speaker.refreshDeviceInformation());

    EXPECT_EQ(0xFFFFFFFFu, speaker.deviceProperty().format.Format.nSamplesPerSec);
    EXPECT_TRUE(log.texts(qor::LoggerPriority::LOG_ERROR).empty());
    EXPECT_TRUE(speaker.setFormat(WAVEFORMATEXTENSIBLE(speaker.deviceProperty().format)));
}

TEST_F(LibraryBlobs, WithoutDataLeaveTheFormatWithAMessage)
{
    for (const std::uint32_t size : {0u, 18u, 40u, 0xFFFFFFFFu})
    {
        SCOPED_TRACE(size);
        AudioDevice speaker = readWithFormat(sim::DeviceFormat{16, 48000, 2}.bytes());
        const WAVEFORMATEXTENSIBLE before = speaker.deviceProperty().format;
        simulation().faults().lie("IPropertyStore::GetValue", sim::Lie::ofBlobWithoutData(size));

        EXPECT_TRUE(speaker.refreshDeviceInformation());

        EXPECT_TRUE(before == speaker.deviceProperty().format);
        EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR), Contains(formatMessage));
    }
}
