#include "libSonavit/soundcard.h"

#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct CardIdentityTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
    }
};

/// A card called @p id.
struct NamedCard : SoundCard
{
    explicit NamedCard(const char* id) { *m_deviceId = id; }
};

struct SoundCardInstanceId : CardIdentityTest
{
    /// The instance id of a card called @p id; the log contains only the records of that question.
    qor::String instanceIdOf(const char* id)
    {
        NamedCard card(id);
        log.clear();
        const qor::String instanceId = card.instanceId();
        entered = log.entered();
        texts = log.texts();
        warnings = log.texts(LoggerPriority::LOG_WARNING, channels::soundCard);
        return instanceId;
    }

    std::vector<std::string> entered;
    std::vector<std::string> texts;
    std::vector<std::string> warnings;
};
struct SoundCardEquality : CardIdentityTest
{
};
}

TEST_F(SoundCardInstanceId, IsTheSecondOfTwoParts)
{
    EXPECT_EQ(qor::String("USB\\VID_0001\\7"), instanceIdOf("{1}.USB\\VID_0001\\7"));
    EXPECT_THAT(texts, IsEmpty());
}

TEST_F(SoundCardInstanceId, KeepsWhatSeparatesPartsElsewhere)
{
    EXPECT_EQ(qor::String("HD~1 A,2;3|4&#5/6:7-8_9\\0"), instanceIdOf("{1}.HD~1 A,2;3|4&#5/6:7-8_9\\0"));
}

TEST_F(SoundCardInstanceId, IsTheMiddleOneOfThreeParts)
{
    EXPECT_EQ(qor::String("USB\\VID_0001"), instanceIdOf("{1}.USB\\VID_0001.7"));
}

TEST_F(SoundCardInstanceId, IsCutAtDotsAloneAndNotAtSlashesOrDashes)
{
    EXPECT_EQ(qor::String("USB/VID-0001/7"), instanceIdOf("{1}/{2}-{3}.USB/VID-0001/7.8"));
    EXPECT_THAT(texts, IsEmpty());
}

TEST_F(SoundCardInstanceId, IsEmptyAndReportedWithASlashInPlaceOfTheDot)
{
    EXPECT_EQ(qor::String(), instanceIdOf("{1}/USB/VID_0001"));
    EXPECT_THAT(warnings, ElementsAre("Unrecognized device id format {1}/USB/VID_0001"));
}

TEST_F(SoundCardInstanceId, IsEmptyAndReportedWithoutADot)
{
    EXPECT_EQ(qor::String(), instanceIdOf("USB\\VID_0001"));
    EXPECT_THAT(texts, ElementsAre("Unrecognized device id format USB\\VID_0001"));
    EXPECT_THAT(warnings, ElementsAre("Unrecognized device id format USB\\VID_0001"));
}

TEST_F(SoundCardInstanceId, IsEmptyAndReportedForAnEmptyId)
{
    EXPECT_EQ(qor::String(), instanceIdOf(""));
    EXPECT_THAT(warnings, ElementsAre("Unrecognized device id format "));
}

TEST_F(SoundCardInstanceId, OpensItsScope)
{
    instanceIdOf("{1}.USB");

    EXPECT_THAT(entered, ElementsAre("SoundCard::instanceId"));
}

TEST_F(SoundCardInstanceId, LeavesTheIdAsItIs)
{
    NamedCard card("{1}.USB.7");

    card.instanceId();

    EXPECT_EQ(qor::String("{1}.USB.7"), card.deviceId());
}

TEST_F(SoundCardEquality, ComparesInterfacesExactlyAndInSilence)
{
    const NamedCard card("{1}.USB");
    const NamedCard same("{1}.USB");
    const NamedCard otherCase("{1}.usb");
    log.clear();

    EXPECT_TRUE(card == static_cast<const SoundCardInterface&>(same));
    EXPECT_FALSE(card == static_cast<const SoundCardInterface&>(otherCase));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(SoundCardEquality, ComparesCardsWithoutRegardToCase)
{
    NamedCard card("{1}.USB");
    const NamedCard otherCase("{1}.usb");
    const NamedCard other("{2}.USB");
    log.clear();

    EXPECT_TRUE(card.SoundCard::operator==(static_cast<const SoundCard&>(otherCase)));
    EXPECT_FALSE(card.SoundCard::operator==(static_cast<const SoundCard&>(other)));
    EXPECT_THAT(log.entered(), ElementsAre("SoundCard::operator==", "SoundCard::operator=="));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(SoundCardEquality, AsksTheOtherInterfaceForItsId)
{
    /// Answers another id than the one in its field.
    struct Disguised : SoundCard
    {
        const qor::String& deviceId() const override { return name; }

        qor::String name = "{1}.USB";
    };
    const NamedCard card("{1}.USB");
    const Disguised disguised;

    EXPECT_TRUE(card == static_cast<const SoundCardInterface&>(disguised));
    EXPECT_TRUE(disguised == static_cast<const SoundCardInterface&>(card));
}

TEST_F(SoundCardEquality, HoldsBetweenCopies)
{
    NamedCard card("{1}.USB");
    const SoundCard copy(card);

    EXPECT_TRUE(card.SoundCard::operator==(copy));
    EXPECT_EQ(&card.deviceId(), &copy.deviceId());
}
