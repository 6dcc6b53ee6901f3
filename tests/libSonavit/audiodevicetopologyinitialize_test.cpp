#include "tests/foundation/supportallocations.h"
#include "tests/libSonavit/soundcard/supportscriptedparts.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportgraph.h"
#include "tests/libSonavit/supportlogline.h"
#include "tests/libSonavit/supportscriptedtopology.h"

#include <functional>
#include <new>

using support::GraphTest;
using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* initializeLabel = "AudioDeviceTopology::initialize(IDeviceTopology* deviceTopology)";
constexpr const char* clearLabel = "AudioDeviceTopology::clear()";
constexpr qor::LOGGER_PRIORITY info = qor::LoggerPriority::LOG_INFO;
constexpr qor::LOGGER_PRIORITY error = qor::LoggerPriority::LOG_ERROR;

class AudioDeviceTopologyInitialize : public GraphTest
{
protected:
    static void expectEmpty(const AudioDeviceTopology& topology)
    {
        EXPECT_FALSE(topology.isInitialized());
        EXPECT_EQ("", topology.deviceOwner().toUtf8());
        EXPECT_EQ(0u, topology.connector().size());
        EXPECT_EQ(0u, topology.subunit().size());
    }
};

/// A topology without parts that hands out its device's id along with a failure code.
class FailingWithAnId final : public support::ScriptedTopology
{
public:
    HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* id) override
    {
        *id = support::taskText("x");
        if (afterId)
            afterId();
        return E_FAIL;
    }

    std::function<void()> afterId; ///< called when the id is allocated
};
}

TEST_F(AudioDeviceTopologyInitialize, ReadsTheDeviceIdThenTheConnectorsThenTheSubunits)
{
    start();
    const COMPtr<IDeviceTopology>::pointer handle = topologyHandle(device);
    AudioDeviceTopology topology;

    const bool result = topology.initialize(handle);

    EXPECT_TRUE(result);
    EXPECT_THAT(simulation().journal().of("IDeviceTopology::*").calls(),
                ElementsAre("IDeviceTopology::GetDeviceId()", "IDeviceTopology::GetConnectorCount()",
                            "IDeviceTopology::GetConnector(0)", "IDeviceTopology::GetConnector(1)",
                            "IDeviceTopology::GetSubunitCount()", "IDeviceTopology::GetSubunit(0)",
                            "IDeviceTopology::GetSubunit(1)"));
    EXPECT_EQ(device, topology.deviceOwner().toUtf8());
    EXPECT_THAT(idsOf(topology.connector()), ElementsAre(jack, stream));
    EXPECT_THAT(idsOf(topology.subunit()), ElementsAre(mute, volume));
}

TEST_F(AudioDeviceTopologyInitialize, LogsTheNumbersOfConnectorsAndSubunits)
{
    bench.machine().adapters[0].topology->subunits.pop_back();
    start();
    AudioDeviceTopology topology;

    topology.initialize(topologyHandle(device));

    EXPECT_THAT(log.texts(), ElementsAre("Num connector = 2", "Subunit count = 1"));
    EXPECT_EQ(log.texts(), log.texts(info, channels::audioDeviceTopology));
}

TEST_F(AudioDeviceTopologyInitialize, AsksEachConnectorAndSubunitForItsPartAndThatForItsSnapshot)
{
    start();
    simulation().journal().recordReferences(true);
    AudioDeviceTopology topology;

    topology.initialize(topologyHandle(device));

    EXPECT_EQ(2u, simulation().journal().count("IConnector::QueryInterface"));
    EXPECT_EQ(2u, simulation().journal().count("ISubunit::QueryInterface"));
    EXPECT_EQ(4u, simulation().journal().count("IPart::GetSubType"));
    EXPECT_EQ(4u, simulation().journal().count("IPart::GetGlobalId"));
    EXPECT_EQ(4u, simulation().journal().count("IPart::GetName"));
}

TEST_F(AudioDeviceTopologyInitialize, HoldsTwoReferencesOnEachComponent)
{
    start();
    AudioDeviceTopology topology;

    topology.initialize(topologyHandle(device));

    EXPECT_EQ(2, references(jack));
    EXPECT_EQ(2, references(volume));
    EXPECT_EQ(1, references(device));
}

TEST_F(AudioDeviceTopologyInitialize, TracesItselfAndTheClearing)
{
    start();
    AudioDeviceTopology topology;

    topology.initialize(topologyHandle(device));

    EXPECT_THAT(log.entered(channels::audioDeviceTopology), ElementsAre(initializeLabel, clearLabel));
    EXPECT_THAT(log.left(channels::audioDeviceTopology), ElementsAre(clearLabel, initializeLabel));
}

TEST_F(AudioDeviceTopologyInitialize, ReleasesTheOldTopologyBeforeItsConnectorsAndSubunits)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    simulation().journal().clear();
    simulation().journal().recordReferences(true);

    topology.initialize(COMPtr<IDeviceTopology>::pointer());

    EXPECT_THAT(asked(), ElementsAre("IDeviceTopology::Release", "IConnector::Release", "IConnector::Release",
                                     "IConnector::Release", "IConnector::Release", "ISubunit::Release",
                                     "ISubunit::Release", "ISubunit::Release", "ISubunit::Release"));
}

TEST_F(AudioDeviceTopologyInitialize, SkipsTheConnectorThatCannotBeReadAndStillSucceeds)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetConnector").with("0");
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_THAT(idsOf(topology.connector()), ElementsAre(stream));
    EXPECT_EQ(2u, topology.subunit().size());
    EXPECT_THAT(log.texts(error, channels::audioDeviceTopology),
                ElementsAre("Unable to retrieve connector index 0 0x80004005"));
}

TEST_F(AudioDeviceTopologyInitialize, SkipsTheSubunitThatCannotBeReadAndStillSucceeds)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetSubunit", E_OUTOFMEMORY).with("1");
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_THAT(idsOf(topology.subunit()), ElementsAre(mute));
    EXPECT_THAT(log.texts(error, channels::audioDeviceTopology),
                ElementsAre("Unable to retrieve subunit index 1 0x8007000E"));
}

TEST_F(AudioDeviceTopologyInitialize, HoldsAnEmptyComponentWhereThePlatformSucceedsWithoutOne)
{
    start();
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IDeviceTopology::GetConnector").with("0");
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_THAT(idsOf(topology.connector()), ElementsAre("", stream));
    EXPECT_THAT(log.texts(error), IsEmpty());
}

TEST_F(AudioDeviceTopologyInitialize, TakesNoConnectorsWhenTheirCountCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetConnectorCount");
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_EQ(0u, topology.connector().size());
    EXPECT_EQ(2u, topology.subunit().size());
    EXPECT_THAT(log.texts(), ElementsAre("Num connector = 0", "Subunit count = 2"));
}

TEST_F(AudioDeviceTopologyInitialize, TakesNoSubunitsWhenTheirCountCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetSubunitCount");
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_EQ(2u, topology.connector().size());
    EXPECT_EQ(0u, topology.subunit().size());
    EXPECT_THAT(log.texts(), ElementsAre("Num connector = 2", "Subunit count = 0"));
}

TEST_F(AudioDeviceTopologyInitialize, ContinuesWithoutAnOwnerWhenTheDeviceIdCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetDeviceId");
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_EQ("", topology.deviceOwner().toUtf8());
    EXPECT_EQ(2u, topology.connector().size());
    EXPECT_THAT(log.texts(error, channels::audioDeviceTopology),
                ElementsAre("Unable to retrieve device id from topology 0x80004005"));
    EXPECT_EQ("Unable to retrieve device id from topology 0x80004005", log.texts().front());
}

TEST_F(AudioDeviceTopologyInitialize, ContinuesInSilenceWhenThereIsNoDeviceId)
{
    bench.machine().adapters[0].topology->deviceId = std::nullopt;
    start();
    AudioDeviceTopology topology;

    const bool result = topology.initialize(topologyHandle(device));

    EXPECT_TRUE(result);
    EXPECT_EQ("", topology.deviceOwner().toUtf8());
    EXPECT_THAT(log.texts(error), IsEmpty());
}

TEST_F(AudioDeviceTopologyInitialize, TakesADeviceIdThatCameWithAFailureAndLogsTheFailure)
{
    start();
    FailingWithAnId platform;
    {
        AudioDeviceTopology topology;

        const bool result = topology.initialize(platform.handle());

        EXPECT_TRUE(result);
        EXPECT_EQ("x", topology.deviceOwner().toUtf8());
        EXPECT_THAT(log.texts(error, channels::audioDeviceTopology),
                    ElementsAre("Unable to retrieve device id from topology 0x80004005"));
    }
    EXPECT_EQ(1u, platform.references);
}

TEST_F(AudioDeviceTopologyInitialize, EmptiesAnInitializedObjectWhenTheNewTopologyIsNil)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    log.clear();

    const bool result = topology.initialize(COMPtr<IDeviceTopology>::pointer());

    EXPECT_FALSE(result);
    expectEmpty(topology);
    EXPECT_EQ(0, simulation().census().references());
    EXPECT_THAT(log.texts(), ElementsAre("Using NULL deviceTopology invalidates this object"));
    EXPECT_EQ(log.texts(), log.texts(error, channels::audioDeviceTopology));
    EXPECT_THAT(log.entered(), ElementsAre(initializeLabel, clearLabel));
}

TEST_F(AudioDeviceTopologyInitialize, ReplacesTheWholeSnapshotByTheNewOne)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));

    const bool result = topology.initialize(topologyHandle(speaker.id()));

    EXPECT_TRUE(result);
    EXPECT_EQ(speaker.id(), topology.deviceOwner().toUtf8());
    EXPECT_THAT(idsOf(topology.connector()), ElementsAre(speaker.connectorId()));
    EXPECT_EQ(0u, topology.subunit().size());
    EXPECT_EQ(0, references(device));
    EXPECT_EQ(0, references(jack));
}

TEST_F(AudioDeviceTopologyInitialize, HappensAtAssignmentOfATopologyUnderItsOwnLabel)
{
    start();
    AudioDeviceTopology topology;

    AudioDeviceTopology& result = topology = topologyHandle(device);

    EXPECT_EQ(&topology, &result);
    EXPECT_TRUE(topology.isInitialized());
    EXPECT_EQ(1, references(device));
    EXPECT_THAT(log.entered(channels::audioDeviceTopology),
                ElementsAre("AudioDeviceTopology::operator=(const COMPtr<IDeviceTopology>::pointer& topology)",
                            initializeLabel, clearLabel));
}

TEST_F(AudioDeviceTopologyInitialize, EmptiesTheObjectAtAssignmentOfANilTopology)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));

    topology = COMPtr<IDeviceTopology>::pointer();

    expectEmpty(topology);
    EXPECT_THAT(log.texts(error, channels::audioDeviceTopology),
                ElementsAre("Using NULL deviceTopology invalidates this object"));
}

TEST_F(AudioDeviceTopologyInitialize, LogsEachStepFromItsOwnLine)
{
    start();
    const sim::PlannedFault connector = simulation().faults().fail("IDeviceTopology::GetConnector").with("0");
    const sim::PlannedFault subunit = simulation().faults().fail("IDeviceTopology::GetSubunit").with("0");
    AudioDeviceTopology topology;

    topology.initialize(topologyHandle(device));

    std::vector<int> lines;
    for (const char* const text : {"Num connector = ", "Unable to retrieve connector index ",
                                   "Subunit count = ", "Unable to retrieve subunit index "})
    {
        const std::vector<int> line = support::linesOf(log, text);
        ASSERT_EQ(1u, line.size()) << text;
        EXPECT_THAT(lines, testing::Not(testing::Contains(line[0]))) << text;
        lines.push_back(line[0]);
    }
}

TEST_F(AudioDeviceTopologyInitialize, LeavesTheObjectEmptyWhenTheReleaseOfTheOldTopologyThrows)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    const COMPtr<IDeviceTopology>::pointer other = topologyHandle(speaker.id());
    const sim::PlannedFault fault = simulation().faults().raise("IDeviceTopology::Release").on(device);

    EXPECT_THROW(topology.initialize(other), sim::InjectedException);

    EXPECT_EQ(1u, fault.fired());
    expectEmpty(topology);
    EXPECT_EQ(1, simulation().census().references()) << "the handle of the test";
}

TEST_F(AudioDeviceTopologyInitialize, LeavesTheObjectEmptyWhenTheReleaseOfAConnectorThrows)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    const sim::PlannedFault fault = simulation().faults().raise("IConnector::Release").on(jack).at(1);

    EXPECT_THROW(topology.initialize(COMPtr<IDeviceTopology>::pointer()), sim::InjectedException);

    EXPECT_EQ(1u, fault.fired());
    expectEmpty(topology);
    EXPECT_EQ(0, simulation().census().references());
}

TEST_F(AudioDeviceTopologyInitialize, CanBeInitializedAgainAfterAReleaseThatThrew)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    const sim::PlannedFault fault = simulation().faults().raise("IConnector::Release").on(jack).at(1);
    EXPECT_THROW(topology.initialize(COMPtr<IDeviceTopology>::pointer()), sim::InjectedException);

    EXPECT_TRUE(topology.initialize(topologyHandle(device)));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(idsOf(topology.connector()), ElementsAre(jack, stream));
    EXPECT_THAT(idsOf(topology.subunit()), ElementsAre(mute, volume));
}

#if !defined(_WIN32) // a DLL there keeps allocation operators of its own, which no test can make fail

TEST_F(AudioDeviceTopologyInitialize, EmptiesTheObjectWithoutMemoryWhileAnExceptionIsUnderWay)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    const sim::PlannedFault fault = simulation().faults().raise("IDeviceTopology::Release").on(device);
    {
        support::AllocationProbe probe;
        probe.failNothrow(); // an array that asks for storage throws, which ends the process here

        EXPECT_THROW(topology.initialize(COMPtr<IDeviceTopology>::pointer()), sim::InjectedException);
    }
    EXPECT_EQ(1u, fault.fired());
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyInitialize, FreesADeviceIdThatThereIsNoMemoryToCopy)
{
    start();
    FailingWithAnId platform;
    AudioDeviceTopology topology;
    {
        support::AllocationProbe probe;
        platform.afterId = [&probe] { probe.failOnce(); };

        EXPECT_THROW(topology.initialize(platform.handle()), std::bad_alloc);
    }
    topology = AudioDeviceTopology();

    EXPECT_EQ(0, simulation().census().taskBlocks());
    EXPECT_EQ(1u, platform.references);
}

#endif
