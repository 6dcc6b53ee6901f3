// Whether a signal path joins two connectors of one graph.
#include "tests/libSonavit/soundcard/supportscriptedparts.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportgraph.h"
#include "tests/libSonavit/supportscriptedtopology.h"

using support::GraphTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr qor::LOGGER_PRIORITY warning = qor::LoggerPriority::LOG_WARNING;

/// The graph's one path runs from the stream to the jack.
class AudioDeviceTopologyConnectorsAreLinked : public GraphTest
{
protected:
    /// Asks @p topology about two components, with the journal and the log of just that question.
    bool ask(const AudioDeviceTopology& topology, const AudioComponent<IConnector>& from,
             const AudioComponent<IConnector>& to)
    {
        simulation().journal().clear();
        log.clear();
        return topology.connectorsAreLinked(from, to);
    }

    bool ask(const std::string& from, const std::string& to)
    {
        const AudioDeviceTopology topology(topologyHandle(device));
        return ask(topology, component(from), component(to));
    }

    std::vector<sim::SignalPath>& paths() { return bench.machine().adapters[0].topology->signalPaths; }

    Texts questions() { return simulation().journal().of("IDeviceTopology::GetSignalPath").calls(); }

    static std::string question(const std::string& from, const std::string& to)
    {
        return "IDeviceTopology::GetSignalPath(" + from + ", " + to + ", 1)";
    }

    static std::string message(const std::string& from, const std::string& to)
    {
        return "No signal path from " + from + " to " + to;
    }

    static AudioComponent<IConnector> empty() { return AudioComponent<IConnector>(static_cast<IConnector*>(nullptr)); }
};

/// Fails with a list at the first question for a path, and then succeeds without storing anything.
class FailingWithAList final : public support::ScriptedTopology
{
public:
    explicit FailingWithAList(IPartsList& list) : m_list(list) {}

    HRESULT STDMETHODCALLTYPE GetSignalPath(IPart*, IPart*, BOOL, IPartsList** parts) override
    {
        if (++questions > 1)
            return S_OK;
        *parts = &m_list;
        return E_FAIL;
    }

    int questions = 0;

private:
    IPartsList& m_list;
};
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, ByAPathInTheDirectionAskedFor)
{
    start();

    const bool linked = ask(stream, jack);

    EXPECT_TRUE(linked);
    EXPECT_THAT(questions(), ElementsAre(question(stream, jack)));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, ByAPathTheOtherWayRoundWithOneWarning)
{
    start();

    const bool linked = ask(jack, stream);

    EXPECT_TRUE(linked);
    EXPECT_THAT(questions(), ElementsAre(question(jack, stream), question(stream, jack)));
    EXPECT_THAT(log.texts(), ElementsAre(message(jack, stream)));
    EXPECT_EQ(log.texts(), log.texts(warning, channels::audioDeviceTopology));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotWithoutAPathWhichGivesAWarningForEachDirection)
{
    paths().clear();
    start();

    const bool linked = ask(jack, stream);

    EXPECT_FALSE(linked);
    EXPECT_THAT(questions(), ElementsAre(question(jack, stream), question(stream, jack)));
    EXPECT_THAT(log.texts(), ElementsAre(message(jack, stream), message(stream, jack)));
    EXPECT_EQ(log.texts(), log.texts(warning, channels::audioDeviceTopology));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotWhenBothQuestionsFail)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetSignalPath");

    const bool linked = ask(stream, jack);

    EXPECT_EQ(2u, fault.fired());
    EXPECT_FALSE(linked);
    EXPECT_THAT(log.texts(warning, channels::audioDeviceTopology),
                ElementsAre(message(stream, jack), message(jack, stream)));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotByAMixedPath)
{
    paths()[0].mixed = true;
    start();

    const bool linked = ask(stream, jack);

    EXPECT_FALSE(linked);
    EXPECT_EQ(2u, log.texts(warning, channels::audioDeviceTopology).size());
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotToItselfWithAWarningAndWithoutAPlatformCall)
{
    start();

    const bool linked = ask(jack, jack);

    EXPECT_FALSE(linked);
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.texts(), ElementsAre("Function treats the same connectors as unlinked"));
    EXPECT_EQ(log.texts(), log.texts(warning, channels::audioDeviceTopology));
    EXPECT_THAT(log.entered(), ElementsAre("AudioDeviceTopology::connectorsAreLinked"));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotWhenTheIdsDifferOnlyInCase)
{
    sim::Connector loud = bench.machine().adapters[0].topology->connectors[0];
    loud.id = "PART";
    sim::Connector quiet = loud;
    quiet.id = "part";
    bench.machine().adapters[0].topology->connectors.push_back(loud);
    bench.machine().adapters[0].topology->connectors.push_back(quiet);
    bench.machine().adapters[0].topology->signalPaths.push_back({"PART", "part", {}, false});
    start();

    const bool linked = ask("PART", "part");

    EXPECT_FALSE(linked);
    EXPECT_THAT(questions(), IsEmpty());
    EXPECT_THAT(log.texts(warning, channels::audioDeviceTopology),
                ElementsAre("Function treats the same connectors as unlinked"));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotFromAConnectorWithoutAPartAndTheOtherIsNotLookedAt)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));

    const bool linked = ask(topology, empty(), component(jack));

    EXPECT_FALSE(linked);
    EXPECT_THAT(questions(), IsEmpty());
    EXPECT_THAT(log.texts(), ElementsAre("One of the connectors is invalid"));
    EXPECT_EQ(log.texts(), log.texts(warning, channels::audioDeviceTopology));
    EXPECT_THAT(log.entered("libSonavit.audioPart"), ElementsAre("AudioComponent::part()"));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotToAConnectorWithoutAPart)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));

    const bool linked = ask(topology, component(jack), empty());

    EXPECT_FALSE(linked);
    EXPECT_THAT(questions(), IsEmpty());
    EXPECT_THAT(log.texts(warning, channels::audioDeviceTopology), ElementsAre("One of the connectors is invalid"));
    EXPECT_THAT(log.entered("libSonavit.audioPart"), ElementsAre("AudioComponent::part()", "AudioComponent::part()"));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotToAConnectorOfAnotherDevice)
{
    start();

    const bool linked = ask(stream, speaker.connectorId());

    EXPECT_FALSE(linked);
    EXPECT_THAT(log.texts(warning, channels::audioDeviceTopology),
                ElementsAre(message(stream, speaker.connectorId()), message(speaker.connectorId(), stream)));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, WhenThePlatformSucceedsWithoutAPath)
{
    start();
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IDeviceTopology::GetSignalPath");

    const bool linked = ask(stream, jack);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(linked);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, NotInAnObjectWithoutATopologyAndInSilence)
{
    start();
    const AudioDeviceTopology topology;

    const bool linked = ask(topology, component(stream), component(jack));

    EXPECT_FALSE(linked);
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, AndThePlatformsPathIsReleasedInEitherDirection)
{
    start();

    ask(stream, jack);
    ask(jack, stream);

    EXPECT_EQ(0, simulation().census().references("IPartsList"));
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, AndNoReferenceOnThemStays)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));
    const AudioComponent<IConnector> from = component(stream);
    const AudioComponent<IConnector> to = component(jack);
    const sim::Census before = simulation().census();

    ask(topology, from, to);

    EXPECT_EQ(before, simulation().census());
}

TEST_F(AudioDeviceTopologyConnectorsAreLinked, AndAListThatCameWithTheFirstFailureIsNotReleased)
{
    start();
    support::ScriptedPartsList list({});
    FailingWithAList platform(list);
    {
        const AudioDeviceTopology topology(platform.handle());

        EXPECT_TRUE(ask(topology, component(stream), component(jack)));
    }
    EXPECT_EQ(2, platform.questions);
    EXPECT_EQ(1u, list.references);
    EXPECT_EQ(1u, platform.references);
}
