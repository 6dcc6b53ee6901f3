// A Release that throws, at any one of the calls of an operation, left references behind: on levels, mutes, peers and
// input selectors that the platform had handed out just before.

#include "libSonavit/soundcard.h"

#include "tests/libSonavit/soundcard/supportvolumeresolution.h"

#include <functional>

using qor::LoggerPriority;

namespace
{
/// One card: an endpoint with two connectors, an adapter behind them, and a level, a mute and a selector on each side
/// of the adapter.
struct ThrowingRelease : support::VolumeResolution
{
    void SetUp() override
    {
        VolumeResolution::SetUp();
        graph.endpoint("out", 2);
        graph.adapter("board", 3);
        graph.join("out/1", "board/1").join("out/2", "board/2").path("board/1", "board/3").path("board/2", "board/3");
        graph.volume("out", 101, -1.0f);
        graph.mute("out", 201, false);
        graph.feed("out/101", "out/1").feed("out/201", "out/101");
        graph.volume("board", 101, -2.0f);
        graph.mute("board", 201, false);
        graph.feed("board/1", "board/101").feed("board/101", "board/201");
        graph.node("board", 301, KSNODETYPE_MUX).selector = sim::SelectorControl{};
        graph.machine.endpoint("out")->defaultFor = {eConsole};
        start();
        qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    }

    /// Calls @p action while the n-th Release of the platform throws, for n from 1 until no call is left, and expects
    /// that each call leaves the references as it found them. More than @p few of them throw.
    void expectNothingLeft(const std::function<void()>& action, unsigned int few = 10)
    {
        unsigned int thrown = 0;
        for (unsigned int call = 1;; ++call)
        {
            const sim::Census before = held();
            const sim::PlannedFault fault = simulation().faults().raise("Release").at(call);
            bool hasThrown = false;
            try
            {
                action();
            }
            catch (const sim::InjectedException&)
            {
                hasThrown = true;
            }
            simulation().faults().clear();
            ASSERT_EQ(hasThrown, fault.fired() == 1);
            ASSERT_EQ(before, held()) << "after a throw at Release number " << call << "\n" << held() - before;
            if (!hasThrown)
                break;
            ++thrown;
        }
        EXPECT_GT(thrown, few);
    }

    /// The references that are held now, without those on parts lists, which stay on purpose.
    sim::Census held()
    {
        sim::Census census = simulation().census();
        census.byInterface.erase("IPartsList");
        census.objects.erase("IPartsList");
        for (auto entry = census.byObject.begin(); entry != census.byObject.end();)
            entry = entry->first.compare(0, 10, "IPartsList") == 0 ? census.byObject.erase(entry) : std::next(entry);
        return census;
    }
};
}

TEST_F(ThrowingRelease, LeavesNoReferenceBehindInTheSearchForControls)
{
    const SoundCard& card = discovered();
    const AudioDevice& endpoint = (*card.m_playbackDevices)[0];

    expectNothingLeft(
        [&]
        {
            qor::Array<SoundCard::VolumeController> result;
            card.volumeController(endpoint, result);
        });
}

TEST_F(ThrowingRelease, LeavesNoReferenceBehindInTheSearchForSelectors)
{
    SoundCard& card = discovered();

    expectNothingLeft(
        [&]
        {
            qor::Array<COMPtr<IAudioInputSelector>::pointer> result;
            card.recordingMux(result);
        });
}

TEST_F(ThrowingRelease, LeavesNoReferenceBehindWhenTheMapIsBuilt)
{
    const SoundCard& card = discovered();

    expectNothingLeft(
        [&]
        {
            SoundCard copy(card);
            copy.m_connectorMap.clear();
            copy.m_internalDevices = SharedPointer<qor::Array<AudioDevice>>(new qor::Array<AudioDevice>);
            copy.initializeConnectorMap();
        });
}

TEST_F(ThrowingRelease, LeavesNoReferenceBehindInTheQuestionForALink)
{
    const COMPtr<IDeviceTopology>::pointer handle = simulation().topology("board");
    const AudioDeviceTopology topology(handle);
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    ASSERT_EQ(3u, connectors.size());

    expectNothingLeft(
        [&]
        {
            topology.connectorsAreLinked(connectors[0], connectors[2]);
            topology.connectorsAreLinked(connectors[0], connectors[1]);
            topology.connectorsAreLinked(connectors[2], connectors[1]);
        },
        1); // the lists of the paths that there are
}

TEST_F(ThrowingRelease, LeavesNoReferenceBehindInATopology)
{
    const COMPtr<IDeviceTopology>::pointer handle = simulation().topology("board");

    expectNothingLeft([&] { const AudioDeviceTopology topology(handle); });
}

TEST_F(ThrowingRelease, LeavesNoCardBehindAtTheEndOfADiscovery)
{
    discovered();
    const sim::Census before = held();
    const sim::PlannedFault fault = simulation().faults().raise("IMMDeviceEnumerator::Release").at(1);

    EXPECT_THROW(SoundCard::enumerateSystemSoundDevices(), sim::InjectedException);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(before.byInterface, held().byInterface);
}

TEST_F(ThrowingRelease, LeavesNoReferenceBehindInTheQuestionForTheDefault)
{
    const AudioDevice device(qor::String("out"));
    const sim::Census before = held();

    for (const char* const object : {"enumerator", "out"})
    {
        const sim::PlannedFault fault = simulation().faults().raise("Release").on(object).at(1);
        EXPECT_THROW(device.isDefaultEndpoint(), sim::InjectedException) << object;
        simulation().faults().clear();
        EXPECT_EQ(1u, fault.fired());
        EXPECT_EQ(before.byInterface, held().byInterface) << object;
    }
    kept.defaultDeviceIds += 2;
}
