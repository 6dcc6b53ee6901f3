#include "tests/libSonavit/soundcard/supportgraphcard.h"
#include "tests/libSonavit/soundcard/supportscriptedparts.h"
#include "tests/libSonavit/supportchannels.h"

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
typedef qor::Array<COMPtr<IAudioInputSelector>::pointer> Selectors;

struct RecordingMux : support::GraphCardTest
{
    SoundCard& discovered()
    {
        SoundCard& card = GraphCardTest::discovered();
        log.clear();
        return card;
    }

    /// An adapter behind an endpoint of its own, with that many multiplexers.
    void adapterWithSelectors(const std::string& id, unsigned int selectors)
    {
        graph.endpoint("endpoint-" + id);
        sim::Adapter& adapter = graph.adapter(id, 1);
        sim::setProperty(adapter.properties, propertykeys::friendlyName, sim::PropertyValue::ofText("Board " + id));
        graph.join("endpoint-" + id + "/1", id + "/1");
        graph.node(id, 50, KSNODETYPE_SUM);
        for (unsigned int i = 0; i < selectors; ++i)
            graph.node(id, 100 + i, KSNODETYPE_MUX).selector = sim::SelectorControl{};
    }
};
}

TEST_F(RecordingMux, LogsTheNumberOfInternalDevicesAndReturnsTheSizeItFoundOnACardWithoutAny)
{
    graph.endpoint("out");
    Selectors selectors;
    selectors.append(COMPtr<IAudioInputSelector>::pointer());

    EXPECT_EQ(1u, discovered().recordingMux(selectors));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, channels::soundCard),
                ElementsAre("Number of internal devices = 0"));
    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::recordingMux"));
}

TEST_F(RecordingMux, AppendsToAResultThatHoldsTwoAndReturnsThree)
{
    adapterWithSelectors("board", 1);
    Selectors selectors;
    selectors.append(COMPtr<IAudioInputSelector>::pointer());
    selectors.append(COMPtr<IAudioInputSelector>::pointer());

    EXPECT_EQ(3u, discovered().recordingMux(selectors));

    EXPECT_EQ(nullptr, selectors[1].get());
    EXPECT_NE(nullptr, selectors[2].get());
}

TEST_F(RecordingMux, FindsTwoSelectorsOfOneDeviceAndNamesTheDeviceForEach)
{
    adapterWithSelectors("board", 2);
    Selectors selectors;

    EXPECT_EQ(2u, discovered().recordingMux(selectors));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard),
                ElementsAre("Found an input selector from device Board board",
                            "Found an input selector from device Board board"));
}

TEST_F(RecordingMux, GoesThroughAllDevicesInTheOrderInWhichTheyWereFound)
{
    adapterWithSelectors("b", 1);
    adapterWithSelectors("a", 1);
    Selectors selectors;

    EXPECT_EQ(2u, discovered().recordingMux(selectors));

    EXPECT_THAT(
        log.texts(LoggerPriority::LOG_INFO, channels::soundCard),
        ElementsAre("Found an input selector from device Board b", "Found an input selector from device Board a"));
}

TEST_F(RecordingMux, DoesNotFindASelectorInTheTopologyOfAnEndpoint)
{
    graph.endpoint("out");
    graph.node("out", 100, KSNODETYPE_MUX).selector = sim::SelectorControl{};
    Selectors selectors;

    EXPECT_EQ(0u, discovered().recordingMux(selectors));
}

TEST_F(RecordingMux, GivesEachHandleOneReference)
{
    adapterWithSelectors("board", 1);
    SoundCard& card = discovered();
    {
        Selectors selectors;
        card.recordingMux(selectors);
        EXPECT_EQ(1, simulation().census().references("IAudioInputSelector"));
    }
    EXPECT_EQ(0, simulation().census().references("IAudioInputSelector"));
}

TEST_F(RecordingMux, AsksEachSubunitForASelectorInAnyContext)
{
    adapterWithSelectors("board", 1);
    SoundCard& card = discovered();
    simulation().journal().clear();
    Selectors selectors;

    card.recordingMux(selectors);

    EXPECT_THAT(simulation().journal().entries().of("IPart::Activate").calls(),
                ElementsAre("IPart::Activate(IAudioInputSelector, 23)", "IPart::Activate(IAudioInputSelector, 23)"));
}

TEST_F(RecordingMux, TakesASelectorThatCameWithAFailure)
{
    adapterWithSelectors("board", 1);
    SoundCard& card = discovered();
    support::ScriptedSubunit subunit("scripted");
    subunit.part.activation = E_FAIL;
    subunit.part.control = simulation().inputSelector("board/100");
    {
        AudioDevice device;
        device.m_topology.m_subunits.append(AudioComponent<ISubunit>(subunit.handle()));
        card.m_internalDevices->append(device);
        Selectors selectors;

        card.recordingMux(selectors);

        card.m_internalDevices->remove(1); // while the subunit exists
        ASSERT_EQ(2u, selectors.size());
        EXPECT_EQ(subunit.part.control, selectors[1].get());
    }
    EXPECT_EQ(1u, subunit.references);
    EXPECT_EQ(1u, subunit.part.references);
}

TEST_F(RecordingMux, PassesOverASubunitThatThePlatformReportedAndDidNotGive)
{
    adapterWithSelectors("board", 2);
    start();
    const sim::PlannedFault missing =
        simulation().faults().succeedWithNull("IDeviceTopology::GetSubunit").on("board").with("1");
    Selectors selectors;

    EXPECT_EQ(1u, discovered().recordingMux(selectors));

    EXPECT_GT(missing.fired(), 0u);
}

TEST_F(RecordingMux, PassesOverASubunitThatIsNoPart)
{
    adapterWithSelectors("board", 2);
    start();
    const sim::PlannedFault lone =
        simulation().faults().fail("ISubunit::QueryInterface", E_NOINTERFACE).on("board/100");
    Selectors selectors;

    EXPECT_EQ(1u, discovered().recordingMux(selectors));

    EXPECT_GT(lone.fired(), 0u);
}

TEST_F(RecordingMux, MakesNothingOfAnActivationThatSucceedsWithoutASelector)
{
    adapterWithSelectors("board", 2);
    SoundCard& card = discovered();
    const sim::PlannedFault empty = simulation().faults().succeedWithNull("IPart::Activate").on("board/100");
    Selectors selectors;

    EXPECT_EQ(1u, card.recordingMux(selectors));

    EXPECT_EQ(1u, empty.fired());
}

TEST_F(RecordingMux, AddsNothingForADeviceWithoutATopologyOrWithoutSubunits)
{
    adapterWithSelectors("board", 0);
    graph.machine.adapters[0].topology->subunits.clear();
    SoundCard& card = discovered();
    card.m_internalDevices->append(AudioDevice());
    Selectors selectors;

    EXPECT_EQ(0u, card.recordingMux(selectors));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard), IsEmpty());
}

TEST_F(RecordingMux, ReleasesASelectorWhoseSubunitThrowsAtItsRelease)
{
    adapterWithSelectors("board", 1);
    SoundCard& card = discovered();
    throwAtTheReleaseAfter("IPart::Activate", "board/100");
    Selectors selectors;

    EXPECT_THROW(card.recordingMux(selectors), sim::InjectedException);

    EXPECT_EQ(0u, selectors.size());
    EXPECT_EQ(0, simulation().census().references("IAudioInputSelector")) << simulation().census();
}
