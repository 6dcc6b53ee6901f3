#include "libSonavit/soundcard.h"

#include "tests/libSonavit/soundcard/supportcards.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportlogline.h"
#include "tests/support/librarytest.h"

using qor::LoggerPriority;
using support::endpointOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* filterLabel =
    "SoundCard::findEndpoint(const Array<AudioDevice>& searchFrom, Array<AudioDevice>& result, Uint32 filter)";
constexpr const char* typeLabel =
    "SoundCard::findEndpoint(const Array<AudioDevice>& searchFrom, const GUID& deviceType, "
    "Array<AudioDevice>& result, Uint32 filter)";
constexpr const char* viewLabel =
    "SoundCard::findEndpoint(const Array<AudioDevice>& searchFrom, const GUID& deviceType, "
    "Array<AudioInterfacePtr>& result)";

/// What a query on a card with two speakers and an unplugged microphone writes to the log.
struct SoundCardQueryLog : support::LibraryTest
{
    /// Calls @p query with the card. The log contains only the records of that call.
    template<class Query>
    void ask(const Query& query)
    {
        run({});
        SoundCard card;
        card.m_playbackDevices->append(endpointOf("1", "Front", KSNODETYPE_SPEAKER));
        card.m_playbackDevices->append(endpointOf("2", "Rear", KSNODETYPE_SPEAKER, DEVICE_STATE_DISABLED));
        card.m_recordDevices->append(endpointOf("3", "Desk", KSNODETYPE_MICROPHONE, DEVICE_STATE_UNPLUGGED));
        log.clear();
        query(card);
        entered = log.entered(channels::soundCard);
        texts = log.texts(channels::soundCard);
        debugTexts = log.texts(LoggerPriority::LOG_DEBUG, channels::soundCard);
    }

    qor::Array<AudioDevice>& fresh() { return *(m_copies = std::make_unique<qor::Array<AudioDevice>>()); }

    qor::Array<AudioInterfacePtr>& freshViews()
    {
        return *(m_views = std::make_unique<qor::Array<AudioInterfacePtr>>());
    }

    std::vector<std::string> entered;
    std::vector<std::string> texts;
    std::vector<std::string> debugTexts;

private:
    std::unique_ptr<qor::Array<AudioDevice>> m_copies;
    std::unique_ptr<qor::Array<AudioInterfacePtr>> m_views;
};
}

TEST_F(SoundCardQueryLog, ShowsSizeFilterAndKindThenEachFindAndTheirNumber)
{
    ask([this](const SoundCard& card) { card.microphoneEndpointDevice(fresh(), 12); });

    EXPECT_THAT(texts, ElementsAre("searchFrom.size() = 1 device filter = 12 DeviceGUID "
                                   "{DFF21BE1-F70F-11D0-B917-00A0C9223196}",
                                   "Appending device Desk", "Number of found device = 1"));
    EXPECT_EQ(texts, debugTexts);
}

TEST_F(SoundCardQueryLog, ShowsBothSearchesForPlayback)
{
    ask([this](const SoundCard& card) { card.waveOutEndpointDevice(fresh()); });

    EXPECT_THAT(texts, ElementsAre("searchFrom.size() = 2 device filter = 15 DeviceGUID "
                                   "{DFF21CE2-F70F-11D0-B917-00A0C9223196}",
                                   "Number of found device = 0",
                                   "searchFrom.size() = 2 device filter = 15 DeviceGUID "
                                   "{DFF21CE1-F70F-11D0-B917-00A0C9223196}",
                                   "Appending device Front", "Appending device Rear", "Number of found device = 2"));
}

TEST_F(SoundCardQueryLog, ShowsNoKindWhereTheFilterAloneDecides)
{
    ask([this](const SoundCard& card) { card.allPlaybackDevice(fresh(), DEVICE_STATE_DISABLED); });

    EXPECT_THAT(texts, ElementsAre("searchFrom.size() = 2 device filter = 2", "Appending device Rear",
                                   "Number of found device = 1"));
    EXPECT_EQ(texts, debugTexts);
    EXPECT_THAT(entered, ElementsAre("SoundCard::allActiveEndpointDevice", filterLabel));
}

TEST_F(SoundCardQueryLog, CountsOnlyWhatTheSearchAppended)
{
    ask(
        [this](const SoundCard& card)
        {
            qor::Array<AudioDevice>& result = fresh();
            card.allPlaybackDevice(result, DEVICE_STATE_DISABLED);
            card.allPlaybackDevice(result, DEVICE_STATE_DISABLED);
        });

    EXPECT_EQ("Number of found device = 1", texts.back());
}

TEST_F(SoundCardQueryLog, SaysNothingOfViews)
{
    ask([this](SoundCard& card) { card.waveOutEndpointDevice(freshViews()); });

    EXPECT_THAT(texts, IsEmpty());
}

TEST_F(SoundCardQueryLog, OpensTheScopesOfTheQueriesWithoutAFilter)
{
    ask(
        [this](const SoundCard& card)
        {
            card.microphoneEndpointDevice(fresh());
            card.lineInEndpointDevice(fresh());
            card.spdifInEndpointDevice(fresh());
            card.spdifOutEndpointDevice(fresh());
            card.waveOutEndpointDevice(fresh());
        });

    EXPECT_THAT(entered, ElementsAre("SoundCard::microphoneEndpointDevice", typeLabel, //
                                     "SoundCard::lineInEndpointDevice", typeLabel,     //
                                     "SoundCard::spdifInEndpointDevice", typeLabel,    //
                                     "SoundCard::spdifOutEndpointDevice", typeLabel,   //
                                     "SoundCard::waveOutEndpointDevice", typeLabel, typeLabel));
}

TEST_F(SoundCardQueryLog, OpensNoScopeForAFilteredQueryItself)
{
    ask(
        [this](const SoundCard& card)
        {
            card.microphoneEndpointDevice(fresh(), 1);
            card.lineInEndpointDevice(fresh(), 1);
            card.spdifInEndpointDevice(fresh(), 1);
            card.spdifOutEndpointDevice(fresh(), 1);
            card.waveOutEndpointDevice(fresh(), 1);
        });

    EXPECT_THAT(entered, ElementsAre(typeLabel, typeLabel, typeLabel, typeLabel, typeLabel, typeLabel));
}

TEST_F(SoundCardQueryLog, OpensAScopeForEachQueryOfViewsButThatForMicrophones)
{
    ask(
        [this](SoundCard& card)
        {
            card.microphoneEndpointDevice(freshViews());
            card.waveOutEndpointDevice(freshViews());
            card.lineInEndpointDevice(freshViews());
            card.spdifInEndpointDevice(freshViews());
            card.spdifOutEndpointDevice(freshViews());
        });

    EXPECT_THAT(entered, ElementsAre(viewLabel,                                                //
                                     "SoundCard::waveOutEndpointDevice", viewLabel, viewLabel, //
                                     "SoundCard::lineInEndpointDevice", viewLabel,             //
                                     "SoundCard::spdifInEndpointDevice", viewLabel,            //
                                     "SoundCard::spdifOutEndpointDevice", viewLabel));
}

TEST_F(SoundCardQueryLog, OpensAScopeAndSaysNothingForTheLoopbackMix)
{
    ask([this](const SoundCard& card) { card.loopbackMixEndpointDevice(fresh()); });

    EXPECT_THAT(entered, ElementsAre("SoundCard::loopbackMixEndpointDevice"));
    EXPECT_THAT(texts, IsEmpty());
}

TEST_F(SoundCardQueryLog, ShowsASearchByTypeAndASearchByStateFromDifferentLines)
{
    ask(
        [this](const SoundCard& card)
        {
            card.microphoneEndpointDevice(fresh(), DEVICE_STATEMASK_ALL);
            card.allPlaybackDevice(fresh(), DEVICE_STATE_DISABLED);
        });

    for (const char* const text : {"searchFrom.size() = ", "Appending device ", "Number of found device = "})
    {
        const std::vector<int> lines = support::linesOf(log, text);
        ASSERT_EQ(2u, lines.size()) << text;
        EXPECT_NE(lines[0], lines[1]) << text;
    }
}
