// Programs on the client layer in unit tests: on a machine that the test describes, changes and breaks.
#include "gainbars.h"
#include "muting.h"
#include "simulatedmachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simulator/machine/builder/machinebuilder.h>
#include <sonavit/client.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;

/// A headset whose microphone is on, and a board with a microphone that is muted and a jack for a second one.
sim::Machine desk()
{
    sim::MachineBuilder builder;
    builder.usbCard("Headset").microphone("Boom");
    sim::CardBuilder board = builder.card("Board");
    board.microphone("Front").muted();
    board.microphone("Rear").unplugged();
    board.speaker().level(-12.0f).hardwareVolume({-60.0f, 0.0f, 1.0f, -30.0f});
    return builder.build();
}

bool isMuted(const sonavit::Snapshot& now, const std::string& name)
{
    return now.endpointNamed(name)->volume()->isMuted.value();
}

TEST(Mixer, ShowsTheVolumeThatTheUserTurns)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speakers = builder.card("Board").speaker().level(-12.0f);
    SimulatedMachine machine(builder.build()); // examples/client/simulatedmachine.h
    sonavit::System audio;
    static_cast<void>(audio.snapshot());

    machine.simulation().events().setVolume(speakers.id(), -6.0f); // as another program does
    machine.simulation().events().waitForClients();

    const sonavit::Result<sonavit::Snapshot> now = audio.refresh();
    ASSERT_TRUE(now);
    EXPECT_EQ(91u, now->endpointNamed("Speakers")->volume()->master.percent->rounded());
}

TEST(MuteAllInputs, MutesWhatIsActiveAndRestoresTheRest)
{
    SimulatedMachine machine(desk());
    sonavit::System audio;
    sonavit::Settings before;
    std::ostringstream report;

    EXPECT_TRUE(muteAllInputs(audio, before, report));

    EXPECT_TRUE(isMuted(audio.snapshot(), "Boom"));
    EXPECT_FALSE(isMuted(audio.snapshot(), "Rear"));
    EXPECT_THAT(report.str(), HasSubstr("Boom (Headset): muted\nFront (Board): was muted before\n"));

    const sonavit::Result<sonavit::RestoreReport> restored = audio.restore(before);

    ASSERT_TRUE(restored);
    EXPECT_EQ("1 restored, 0 unchanged", restored->sentence());
    EXPECT_FALSE(isMuted(audio.snapshot(), "Boom"));
    EXPECT_TRUE(isMuted(audio.snapshot(), "Front"));
}

TEST(MuteAllInputs, SaysWhichInputTheDriverRefusesToMute)
{
    SimulatedMachine machine(desk());
    const sim::PlannedFault fault = machine.simulation().faults().fail("IAudioEndpointVolume::SetMute", E_ACCESSDENIED);
    sonavit::System audio;
    sonavit::Settings before;
    std::ostringstream report;

    EXPECT_FALSE(muteAllInputs(audio, before, report));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(report.str(), HasSubstr("Boom (Headset): not muted: IAudioEndpointVolume::SetMute failed: 0x80070005"));
    EXPECT_TRUE(before.endpoints.empty());
}

TEST(Subscriber, LearnsOfAVolumeThatTheUserTurns)
{
    SimulatedMachine machine(desk());
    sonavit::System::Options options;
    options.delivery = sonavit::Delivery::poll; // the test calls the subscriber, so it needs no waiting of its own
    sonavit::System audio(options);
    std::vector<std::string> heard;
    const sonavit::Subscription subscription = audio.subscribe(
        [&heard](const sonavit::Change& change)
        {
            for (const sonavit::Event& event : change.events())
                heard.push_back(event.sentence());
        });
    const std::string speakers = audio.snapshot().endpointNamed("Speakers")->id().text();

    machine.simulation().events().setVolume(speakers, -6.0f); // as another program does
    machine.simulation().events().waitForClients();
    ASSERT_TRUE(audio.refresh());
    audio.poll();

    EXPECT_THAT(heard, ElementsAre("Speakers (Board): volume 82% (-12.00 dB) -> 91% (-6.00 dB)"));
}

TEST(GainMeter, ShowsAControlThatAnotherProgramTurns)
{
    SimulatedMachine machine(desk());
    sonavit::System audio;
    const sonavit::CardId board = audio.snapshot().cardNamed("Board")->id();
    const sonavit::EndpointId speakers = audio.snapshot().endpointNamed("Speakers")->id();
    const sonavit::Result<sonavit::Watch> watch = audio.watch(board);
    ASSERT_TRUE(watch);
    const sonavit::Hardware before = audio.snapshot().hardware(board).value();
    sonavit::System other;

    ASSERT_TRUE(other.setControl(speakers, "Speakers", sonavit::Decibels(-15)));
    machine.simulation().events().waitForClients();
    const sonavit::Result<sonavit::Snapshot> now = audio.refresh();

    ASSERT_TRUE(now);
    std::ostringstream bars;
    showControls(before, now->hardware(board).value(), *now, std::nullopt, bars);
    EXPECT_EQ("Speakers (Board)\n"
              "  [#####################-------]  Speakers, channel 1: 75% (-15.00 dB)\n"
              "  [#####################-------]  Speakers, channel 2: 75% (-15.00 dB)\n",
              bars.str());
}
