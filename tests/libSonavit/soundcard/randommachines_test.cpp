#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/soundcard/referencecard.h"
#include "tests/libSonavit/soundcard/supportgraphs.h"
#include "tests/support/logcapture.h"
#include "tests/support/pace.h"
#include "tests/support/printers.h"
#include "tests/support/randomconnections.h"

#include <gmock/gmock.h>

#include <fstream>

using support::idsOf;
using support::linksOf;
using support::nodesOf;
using support::ReferenceAnswer;
using support::ReferenceCard;
using support::ReferenceControl;

namespace
{
constexpr std::uint32_t machinesInATest = 25;

/// Hundreds of random machines, a range of seeds for each parameter.
class SoundCardOnRandomMachines : public testing::TestWithParam<std::uint32_t>
{
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
    void TearDown() override { CoUninitialize(); }

private:
    support::LogCapture m_log{qor::LoggerPriority::LOG_FATAL}; // or the failures of such machines fill the output
};

/// Path of the file that holds the machine of a failure, for the program to read.
std::string writtenMachine(const sim::Machine& machine)
{
    const std::string path = testing::TempDir() + machine.name + ".json";
    std::ofstream(path) << sim::writeMachine(machine);
    return "see it with: sonavit graph --machine " + path;
}

ReferenceControl controlOf(const SoundCard::VolumeController& control)
{
    ReferenceControl result{1.0f, -1, control.ownerName.toUtf8(), control.ownerType};
    EXPECT_EQ(S_OK, control.volumeLevel->GetLevel(0, &result.level));
    if (control.mute.get() != nullptr)
    {
        BOOL muted = FALSE;
        EXPECT_EQ(S_OK, control.mute->GetMute(&muted));
        result.mute = muted == FALSE ? 0 : 1;
    }
    return result;
}

ReferenceAnswer controlsOf(const SoundCard& card, const AudioDevice& endpoint)
{
    ReferenceAnswer answer;
    qor::Array<SoundCard::VolumeController> controls;
    try
    {
        card.volumeController(endpoint, controls);
    }
    catch (const qor::IndexOutOfBounds&)
    {
        answer.leftTheGraph = true;
    }
    for (unsigned int i = 0; i < controls.size(); ++i)
        answer.controls.push_back(controlOf(controls[i]));
    return answer;
}

void expectEqualEndpoints(const SoundCard& card, const qor::Array<AudioDevice>& found, const ReferenceCard& reference,
                          const std::vector<const sim::Endpoint*>& expected)
{
    ASSERT_EQ(expected.size(), found.size());
    for (unsigned int i = 0; i < found.size(); ++i)
    {
        EXPECT_EQ(expected[i]->id, found[i].deviceProperty().deviceId.toUtf8());
        const ReferenceAnswer wanted = reference.controlsOf(*expected[i]);
        const ReferenceAnswer answer = controlsOf(card, found[i]);
        EXPECT_EQ(wanted.leftTheGraph, answer.leftTheGraph) << expected[i]->id;
        EXPECT_EQ(wanted.controls, answer.controls) << expected[i]->id;
    }
}

void expectEqual(SoundCard& card, const sim::Machine& machine)
{
    const ReferenceCard reference(machine, card.deviceId().toUtf8());
    EXPECT_EQ(reference.nodes(), nodesOf(card));
    EXPECT_EQ(reference.links(), linksOf(card));
    EXPECT_EQ(reference.internalDevices(), idsOf(*card.m_internalDevices));
    qor::Array<COMPtr<IAudioInputSelector>::pointer> selectors;
    EXPECT_EQ(reference.selectors(), card.recordingMux(selectors));
    EXPECT_EQ(reference.selectors(), selectors.size());
    expectEqualEndpoints(card, *card.m_playbackDevices, reference, reference.playback());
    expectEqualEndpoints(card, *card.m_recordDevices, reference, reference.record());
}
}

TEST_P(SoundCardOnRandomMachines, FindsTheGraphAndTheControlsThatThePlainReferenceFinds)
{
    unsigned int cardsSeen = 0;
    for (std::uint32_t seed = GetParam(); seed < GetParam() + machinesInATest && !HasFailure(); ++seed)
    {
        const sim::Machine machine = support::randomConnections(seed);
        sim::Simulation simulation(machine);
        simulation.journal().record(false);

        qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

        for (unsigned int i = 0; i < cards.size(); ++i)
            expectEqual(cards[i], machine);
        cardsSeen += cards.size();
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // ends the module for this machine
        if (HasFailure())
            ADD_FAILURE() << "seed " << seed << ", " << writtenMachine(machine);
    }
    EXPECT_GE(cardsSeen, machinesInATest) << "every machine has a card";
}

INSTANTIATE_TEST_SUITE_P(Seeds, SoundCardOnRandomMachines,
                         testing::Range(std::uint32_t{0}, support::cases(16, 2) * machinesInATest, machinesInATest));

TEST(RandomConnections, IsTheSameForTheSameSeedAndCanBeReadBackFromItsFile)
{
    for (std::uint32_t seed = 0; seed < machinesInATest; ++seed)
    {
        const sim::Machine machine = support::randomConnections(seed);

        EXPECT_EQ(machine, support::randomConnections(seed));
        EXPECT_EQ(machine, sim::readMachine(sim::writeMachine(machine), machine.name)) << "seed " << seed;
    }
}

TEST(RandomConnections, MeetsControlsMutesHolesAdaptersAndSelectorsOften)
{
    std::size_t controls = 0;
    std::size_t mutes = 0;
    std::size_t holes = 0;
    std::size_t adapters = 0;
    std::size_t selectors = 0;
    for (std::uint32_t seed = 0; seed < 16 * machinesInATest; ++seed)
    {
        const sim::Machine machine = support::randomConnections(seed);
        const ReferenceCard card(machine, "{1}.ROOT\\CARD\\0");
        adapters += card.internalDevices().size();
        selectors += card.selectors();
        for (const sim::Endpoint* endpoint : card.playback())
        {
            const ReferenceAnswer answer = card.controlsOf(*endpoint);
            controls += answer.controls.size();
            holes += answer.leftTheGraph ? 1 : 0;
            for (const ReferenceControl& control : answer.controls)
                mutes += control.mute >= 0 ? 1 : 0;
        }
    }

    EXPECT_GT(controls, 1000u);
    EXPECT_GT(mutes, 150u);
    EXPECT_GT(holes, 50u);
    EXPECT_GT(adapters, 200u);
    EXPECT_GT(selectors, 100u);
}
