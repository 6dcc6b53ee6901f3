// A customer's computer in a unit test: `sonavit capture --anonymous -o customer.json` wrote the file there.
#include "muting.h"
#include "simulatedmachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sonavit/capture.h>
#include <sonavit/client.h>

#include <fstream>
#include <sstream>

/// Stands for the customer: a laptop whose driver refuses to report the mute of an input.
class CustomersComputer : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        SimulatedMachine laptop(sim::findMachine("laptop"));
        laptop.simulation().faults().fail("IAudioEndpointVolume::GetMute", E_NOTIMPL);
        sonavit::System audio;
        sonavit::CaptureOptions options;
        options.name = "customer";
        options.isAnonymous = true;
        const sonavit::Result<sonavit::Capture> capture = sonavit::capture(audio, options);
        ASSERT_TRUE(capture);
        std::ofstream("customer.json", std::ios::binary) << capture->text;
    }
};

TEST_F(CustomersComputer, IsMutedAlthoughItsDriverReportsNoMute)
{
    SimulatedMachine machine(sim::readMachineFile("customer.json"));
    sonavit::System audio;
    sonavit::Settings before;
    std::ostringstream report;

    EXPECT_TRUE(muteAllInputs(audio, before, report));

    EXPECT_THAT(report.str(), testing::HasSubstr("accepted, but does not report a mute"));
}
