// Several threads walk one graph: it stays as it is once it is built.
#include "tests/libSonavit/soundcard/supportvolumeresolution.h"
#include "tests/libSonavit/supportthreads.h"

#include <atomic>
#include <string>
#include <vector>

namespace
{
class VolumeResolutionOnThreads : public support::VolumeResolution
{
protected:
    /// The controls that the shared card finds for a device of the calling thread's own.
    std::vector<std::string> controlsOf(const qor::String& endpointId) const
    {
        const AudioDevice endpoint(endpointId);
        qor::Array<SoundCard::VolumeController> result;
        const SoundCard& card = cards[0];
        card.volumeController(endpoint, result);
        std::vector<std::string> texts;
        for (unsigned int i = 0; i < result.size(); ++i)
            texts.push_back(support::described(result[i]));
        return texts;
    }
};
}

TEST_F(VolumeResolutionOnThreads, FindsWhatOneThreadFinds)
{
    graph.endpoint("out", 2);
    graph.adapter("board", 2);
    graph.join("out/1", "board/1");
    graph.join("out/2", "board/2");
    graph.volume("out", 100, -1.0f);
    graph.volume("board", 101, -2.0f);
    graph.feed("out/100", "out/1");
    graph.feed("board/101", "board/1");
    const std::vector<std::string> expected = controls();
    ASSERT_EQ(2u, expected.size());
    simulation().deliverAtOnce(false);
    const qor::String id = (*cards[0].m_playbackDevices)[0].deviceProperty().deviceId;
    std::atomic<unsigned int> alike{0};
    constexpr unsigned int rounds = 50;

    support::onThreads(4,
                       [&](unsigned int thread)
                       {
                           if (thread != 0 && FAILED(CoInitialize(nullptr)))
                               return;
                           if (SUCCEEDED(simulation().registerOnThisThread()))
                           {
                               const qor::String own(id); // shares its buffer with the other threads' strings
                               for (unsigned int round = 0; round < rounds; ++round)
                                   alike += controlsOf(own) == expected ? 1 : 0;
                           }
                           if (thread != 0)
                               CoUninitialize();
                       });

    EXPECT_EQ(4 * rounds, alike);
}
