// What the object model makes of texts that no driver should report.
#include "libSonavit/soundcard.h"
#include "tests/hostile/library/hostilelibrarytest.h"

#include <algorithm>
#include <string>

namespace
{
using testing::Contains;
using testing::ElementsAre;

const char* const cardChannel = "libSonavit.soundcard";

class LibraryTexts : public hostile::HostileLibraryTest
{
protected:
    /// Starts the honest machine on which @p operation reports @p text.
    void beginWith(const std::string& operation, const std::optional<std::u16string>& text)
    {
        begin({"",
               {},
               [&](sim::Simulation& machine)
               {
                   machine.faults().lie(operation, sim::Lie::ofText(text));
                   return hostile::References();
               },
               {}});
    }

    static std::u16string unitsOf(const qor::String& text)
    {
        const unsigned short* const units = text.getUCS2Buffer();
        return std::u16string(units, units + text.size());
    }

    AudioDevice device(const std::string& id)
    {
        return AudioDevice(simulation().device(id)); // adopts the reference
    }
};
}

TEST_F(LibraryTexts, OfIdsThatAreNullMakeEndpointsWithoutIdOfWhichACardHasOne)
{
    beginWith("IMMDevice::GetId", std::nullopt);

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(2u, cards.size());
    EXPECT_EQ(1u, cards[0].m_recordDevices->size());
    EXPECT_EQ(0u, cards[0].m_playbackDevices->size());
    EXPECT_EQ("", (*cards[0].m_recordDevices)[0].deviceProperty().deviceId.toUtf8());
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, cardChannel), ElementsAre("Cannot add duplicate device "));
}

TEST_F(LibraryTexts, ThatAreNullLeavePropertiesEmptyAndAreNoFailure)
{
    beginWith("IPropertyStore::GetValue", std::nullopt);

    AudioDevice speaker = device(hostile::honest().speaker);

    EXPECT_EQ(0u, speaker.deviceProperty().friendlyName.size());
    EXPECT_EQ(0u, speaker.deviceProperty().instancePath.size());
    EXPECT_TRUE(log.texts(qor::LoggerPriority::LOG_ERROR).empty());
}

TEST_F(LibraryTexts, OfPathsThatAreNullPutAllEndpointsIntoOneCardWithoutId)
{
    beginWith("IPropertyStore::GetValue", std::nullopt);

    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(1u, cards.size());
    EXPECT_EQ(1u, cards[0].m_recordDevices->size());
    EXPECT_EQ(2u, cards[0].m_playbackDevices->size());
    EXPECT_EQ(0u, cards[0].instanceId().size());
}

TEST_F(LibraryTexts, Of64KilobytesAreReadInFull)
{
    const std::u16string name(0x10000, u'x');
    beginWith("IPropertyStore::GetValue", name);

    AudioDevice speaker = device(hostile::honest().speaker);

    EXPECT_EQ(name, unitsOf(speaker.deviceProperty().friendlyName));
}

TEST_F(LibraryTexts, OfSingleSurrogatesAreReadUnitByUnit)
{
    const std::u16string single = {char16_t(0xDC00), u'a', char16_t(0xD800)};
    beginWith("IMMDevice::GetId", single);

    AudioDevice speaker = device(hostile::honest().speaker);

    EXPECT_EQ(single, unitsOf(speaker.deviceProperty().deviceId));
    EXPECT_EQ("\xEF\xBF\xBD"
              "a"
              "\xEF\xBF\xBD",
              speaker.deviceProperty().deviceId.toUtf8());
}

TEST_F(LibraryTexts, OfPartsThatAllHaveOneIdMakeOneNode)
{
    beginWith("IPart::GetGlobalId", u"one");

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(2u, cards.size());
    EXPECT_EQ(1u, cards[0].m_connectorMap.size());
    EXPECT_EQ(1u, cards[1].m_connectorMap.size());
}

TEST_F(LibraryTexts, OfPartIdsThatAreNullMakeOneNodeThatIsItsOwnPeer)
{
    beginWith("IPart::GetGlobalId", std::nullopt);

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(1u, cards[0].m_connectorMap.size());
    ASSERT_EQ(1u, cards[0].m_connectorMap[0].links.size());
    EXPECT_EQ(0u, cards[0].m_connectorMap[0].links[0]);
}
