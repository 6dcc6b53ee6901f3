#include "libSonavit/soundcard.h"

#include "tests/libSonavit/soundcard/supportcards.h"
#include "tests/support/librarytest.h"

#include <ostream>

using support::endpointOf;
using support::namesOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace
{
typedef std::vector<std::string> Names;

/// One of the five kinds of jack, its three queries, and what they find on the card below.
struct Kind
{
    const char* name;
    unsigned int (SoundCard::*plain)(qor::Array<AudioDevice>&) const;
    unsigned int (SoundCard::*filtered)(qor::Array<AudioDevice>&, unsigned int) const;
    unsigned int (SoundCardInterface::*viewed)(qor::Array<AudioInterfacePtr>&);
    Names found;      ///< in any state but 0
    Names active;     ///< in state active
    Names unfiltered; ///< in any state
};

void PrintTo(const Kind& kind, std::ostream* out)
{
    *out << kind.name;
}

const Kind kinds[] = {
    {"Microphone",
     &SoundCard::microphoneEndpointDevice,
     &SoundCard::microphoneEndpointDevice,
     &SoundCardInterface::microphoneEndpointDevice,
     {"mic", "unplugged mic"},
     {"mic"},
     {"mic", "unplugged mic", "stateless mic"}},
    {"LineIn",
     &SoundCard::lineInEndpointDevice,
     &SoundCard::lineInEndpointDevice,
     &SoundCardInterface::lineInEndpointDevice,
     {"line in", "disabled line in"},
     {"line in"},
     {"line in", "disabled line in"}},
    {"SpdifIn",
     &SoundCard::spdifInEndpointDevice,
     &SoundCard::spdifInEndpointDevice,
     &SoundCardInterface::spdifInEndpointDevice,
     {"digital in"},
     {"digital in"},
     {"digital in"}},
    {"SpdifOut",
     &SoundCard::spdifOutEndpointDevice,
     &SoundCard::spdifOutEndpointDevice,
     &SoundCardInterface::spdifOutEndpointDevice,
     {"digital out"},
     {},
     {"digital out"}},
    {"WaveOut",
     &SoundCard::waveOutEndpointDevice,
     &SoundCard::waveOutEndpointDevice,
     &SoundCardInterface::waveOutEndpointDevice,
     {"headphones", "unplugged headphones", "speaker", "second speaker"},
     {"headphones", "speaker", "second speaker"},
     {"headphones", "unplugged headphones", "speaker", "second speaker"}},
};

/// A card with endpoints of all kinds in both lists.
void fill(SoundCard& card)
{
    qor::Array<AudioDevice>& playback = *card.m_playbackDevices;
    playback.append(endpointOf("1", "speaker", KSNODETYPE_SPEAKER));
    playback.append(endpointOf("2", "headphones", KSNODETYPE_HEADPHONES));
    playback.append(endpointOf("3", "line out", KSNODETYPE_LINE_CONNECTOR));
    playback.append(endpointOf("4", "digital out", KSNODETYPE_SPDIF_INTERFACE, DEVICE_STATE_NOTPRESENT));
    playback.append(endpointOf("5", "second speaker", KSNODETYPE_SPEAKER));
    playback.append(endpointOf("6", "unplugged headphones", KSNODETYPE_HEADPHONES, DEVICE_STATE_UNPLUGGED));
    qor::Array<AudioDevice>& record = *card.m_recordDevices;
    record.append(endpointOf("7", "mic", KSNODETYPE_MICROPHONE));
    record.append(endpointOf("8", "line in", KSNODETYPE_LINE_CONNECTOR));
    record.append(endpointOf("9", "digital in", KSNODETYPE_SPDIF_INTERFACE));
    record.append(endpointOf("10", "unplugged mic", KSNODETYPE_MICROPHONE, DEVICE_STATE_UNPLUGGED));
    record.append(endpointOf("11", "disabled line in", KSNODETYPE_LINE_CONNECTOR, DEVICE_STATE_DISABLED));
    record.append(endpointOf("12", "stateless mic", KSNODETYPE_MICROPHONE, 0));
    record.append(endpointOf("13", "capturing speaker", KSNODETYPE_SPEAKER));
}

Names namesOf(const qor::Array<AudioInterfacePtr>& views)
{
    Names names;
    for (unsigned int i = 0; i < views.size(); ++i)
        names.push_back(views[i]->deviceProperty().endpointType.toUtf8());
    return names;
}

Names twice(const Names& names)
{
    Names result = names;
    result.insert(result.end(), names.begin(), names.end());
    return result;
}

std::string nameOf(const testing::TestParamInfo<Kind>& kind)
{
    return kind.param.name;
}

struct ClassificationTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
    }
};

class SoundCardJackQuery : public ClassificationTest, public testing::WithParamInterface<Kind>
{
};

struct SoundCardPlaybackQuery : ClassificationTest
{
};
}

INSTANTIATE_TEST_SUITE_P(AllKinds, SoundCardJackQuery, testing::ValuesIn(kinds), nameOf);

TEST_P(SoundCardJackQuery, FindsTheKindInEveryStateWithoutAFilter)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> result;

    EXPECT_EQ(GetParam().found.size(), (card.*GetParam().plain)(result));

    EXPECT_THAT(support::namesOf(result), ElementsAreArray(GetParam().found));
}

TEST_P(SoundCardJackQuery, FindsTheActiveOnesWithThatFilter)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> result;

    EXPECT_EQ(GetParam().active.size(), (card.*GetParam().filtered)(result, DEVICE_STATE_ACTIVE));

    EXPECT_THAT(support::namesOf(result), ElementsAreArray(GetParam().active));
}

TEST_P(SoundCardJackQuery, FindsNothingWithAFilterOfZero)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> result;

    EXPECT_EQ(0u, (card.*GetParam().filtered)(result, 0));

    EXPECT_EQ(0u, result.size());
}

TEST_P(SoundCardJackQuery, ShowsTheCardsOwnElementsWhateverTheirState)
{
    SoundCard card;
    fill(card);
    SoundCardInterface& view = card;
    qor::Array<AudioInterfacePtr> result;

    EXPECT_EQ(GetParam().unfiltered.size(), (view.*GetParam().viewed)(result));

    EXPECT_THAT(namesOf(result), ElementsAreArray(GetParam().unfiltered));
    for (unsigned int i = 0; i < result.size(); ++i)
    {
        bool isOwn = false;
        for (unsigned int j = 0; j < card.m_playbackDevices->size(); ++j)
            isOwn = isOwn || result[i].get() == &(*card.m_playbackDevices)[j];
        for (unsigned int j = 0; j < card.m_recordDevices->size(); ++j)
            isOwn = isOwn || result[i].get() == &(*card.m_recordDevices)[j];
        EXPECT_TRUE(isOwn) << GetParam().unfiltered[i];
    }
}

TEST_P(SoundCardJackQuery, AppendsAndCountsOnlyWhatItAppended)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> plain;
    qor::Array<AudioDevice> filtered;
    qor::Array<AudioInterfacePtr> views;
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_EQ(GetParam().found.size(), (card.*GetParam().plain)(plain));
        EXPECT_EQ(GetParam().active.size(), (card.*GetParam().filtered)(filtered, DEVICE_STATE_ACTIVE));
        EXPECT_EQ(GetParam().unfiltered.size(), (static_cast<SoundCardInterface&>(card).*GetParam().viewed)(views));
    }

    EXPECT_THAT(support::namesOf(plain), ElementsAreArray(twice(GetParam().found)));
    EXPECT_THAT(support::namesOf(filtered), ElementsAreArray(twice(GetParam().active)));
    EXPECT_THAT(namesOf(views), ElementsAreArray(twice(GetParam().unfiltered)));
}

TEST_P(SoundCardJackQuery, LeavesTheResultAloneOnAnEmptyCard)
{
    SoundCard card;
    qor::Array<AudioDevice> result;
    result.append(endpointOf("before", "before"));
    qor::Array<AudioInterfacePtr> views;

    EXPECT_EQ(0u, (card.*GetParam().plain)(result));
    EXPECT_EQ(0u, (card.*GetParam().filtered)(result, DEVICE_STATEMASK_ALL));
    EXPECT_EQ(0u, (static_cast<SoundCardInterface&>(card).*GetParam().viewed)(views));

    EXPECT_THAT(support::namesOf(result), ElementsAre("before"));
    EXPECT_EQ(0u, views.size());
}

TEST_P(SoundCardJackQuery, AsksThePlatformNothing)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> result;
    qor::Array<AudioInterfacePtr> views;
    simulation().journal().clear();

    (card.*GetParam().plain)(result);
    (static_cast<SoundCardInterface&>(card).*GetParam().viewed)(views);

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(SoundCardPlaybackQuery, FindsAllPlaybackEndpointsThatPassTheFilter)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> all;
    qor::Array<AudioDevice> some;

    EXPECT_EQ(6u, card.allPlaybackDevice(all, DEVICE_STATEMASK_ALL));
    EXPECT_EQ(2u, card.allPlaybackDevice(some, DEVICE_STATE_NOTPRESENT | DEVICE_STATE_UNPLUGGED));

    EXPECT_THAT(namesOf(all), ElementsAre("speaker", "headphones", "line out", "digital out", "second speaker",
                                          "unplugged headphones"));
    EXPECT_THAT(namesOf(some), ElementsAre("digital out", "unplugged headphones"));
}

TEST_F(SoundCardPlaybackQuery, FindsNoPlaybackEndpointWithAFilterOfZero)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> result;

    EXPECT_EQ(0u, card.allPlaybackDevice(result, 0));

    EXPECT_EQ(0u, result.size());
}

TEST_F(SoundCardPlaybackQuery, AppendsToWhatIsThere)
{
    SoundCard card;
    card.m_playbackDevices->append(endpointOf("1", "speaker", KSNODETYPE_SPEAKER));
    qor::Array<AudioDevice> result;

    EXPECT_EQ(1u, card.allPlaybackDevice(result, DEVICE_STATEMASK_ALL));
    EXPECT_EQ(1u, card.allPlaybackDevice(result, DEVICE_STATEMASK_ALL));

    EXPECT_THAT(namesOf(result), ElementsAre("speaker", "speaker"));
}

TEST_F(SoundCardPlaybackQuery, PassesAStateOfZeroOverInEveryFilter)
{
    SoundCard card;
    card.m_playbackDevices->append(endpointOf("1", "speaker", KSNODETYPE_SPEAKER, 0));
    qor::Array<AudioDevice> copies;
    qor::Array<AudioInterfacePtr> views;

    EXPECT_EQ(0u, card.allPlaybackDevice(copies, DEVICE_STATEMASK_ALL));
    EXPECT_EQ(0u, card.waveOutEndpointDevice(copies));
    EXPECT_EQ(1u, card.waveOutEndpointDevice(views));
}

TEST_F(SoundCardPlaybackQuery, FindsALineOutOnlyAmongAllPlaybackEndpoints)
{
    SoundCard card;
    card.m_playbackDevices->append(endpointOf("1", "line out", KSNODETYPE_LINE_CONNECTOR));
    qor::Array<AudioDevice> typed;
    qor::Array<AudioDevice> all;

    for (const Kind& kind : kinds)
        EXPECT_EQ(0u, (card.*kind.plain)(typed)) << kind.name;
    EXPECT_EQ(1u, card.allPlaybackDevice(all, DEVICE_STATEMASK_ALL));
}

TEST_F(SoundCardPlaybackQuery, DistinguishesDigitalInputFromOutputByTheList)
{
    SoundCard card;
    card.m_playbackDevices->append(endpointOf("1", "output", KSNODETYPE_SPDIF_INTERFACE));
    card.m_recordDevices->append(endpointOf("2", "input", KSNODETYPE_SPDIF_INTERFACE));
    qor::Array<AudioDevice> inputs;
    qor::Array<AudioDevice> outputs;

    EXPECT_EQ(1u, card.spdifInEndpointDevice(inputs));
    EXPECT_EQ(1u, card.spdifOutEndpointDevice(outputs));

    EXPECT_THAT(namesOf(inputs), ElementsAre("input"));
    EXPECT_THAT(namesOf(outputs), ElementsAre("output"));
}

TEST_F(SoundCardPlaybackQuery, FindsNoLoopbackMixOnAnyCard)
{
    SoundCard card;
    fill(card);
    qor::Array<AudioDevice> result;
    result.append(endpointOf("before", "before"));

    EXPECT_EQ(0u, card.loopbackMixEndpointDevice(result));

    EXPECT_THAT(namesOf(result), ElementsAre("before"));
}
