#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardinterface.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "tests/client/model/supportanswers.h"
#include "tests/client/model/supportdifferences.h"
#include "tests/support/logcapture.h"
#include "tests/support/pace.h"
#include "tests/support/randommachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace
{
using support::Answers;
using support::Difference;

constexpr std::uint32_t machinesInATest = support::cases(25, 10);
/// Fewer where reading one takes ten times as long: the readers are the same there.
constexpr std::uint32_t machines = support::cases(500, 10);
/// Among so many random machines each wanted difference occurs.
constexpr std::uint32_t mostMachines = 200;

/// Both readers' answers about one machine.
struct Pair
{
    Answers client;
    Answers model;
};

/// Reads machines with both readers, each on a machine of its own: faults count calls, and the object model keeps
/// references for good.
class Agreement : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        AudioDevice::setStoreAccess(StoreAccess::writeElseRead);
    }

    void TearDown() override { CoUninitialize(); }

    static Pair readBoth(const sim::Machine& machine)
    {
        Pair pair;
        {
            sim::Simulation simulation(machine);
            simulation.journal().record(false);
            sonavit::System::Options options;
            options.onWorkerStart = [&] { static_cast<void>(simulation.registerOnThisThread()); };
            const sonavit::System system(options);
            pair.client = support::askAll(system);
        }
        {
            sim::Simulation simulation(machine);
            simulation.journal().record(false);
            sonavit::model::ObjectModel model;
            pair.model = support::askAll(model);
            libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // ends the module for this machine
        }
        return pair;
    }

    static void expectAgreement(const sim::Machine& machine)
    {
        Pair pair = readBoth(machine);

        for (const Difference& difference : support::wantedDifferences())
            difference.settle(pair.client, pair.model, machine);

        EXPECT_EQ("", support::differenceBetween(pair.client, pair.model)) << writtenMachine(machine);
    }

    /// Whether the readers agree when all differences but one are settled.
    static bool agreeWithout(const Difference& left, const sim::Machine& machine, Pair pair)
    {
        for (const Difference& difference : support::wantedDifferences())
        {
            if (&difference != &left)
                difference.settle(pair.client, pair.model, machine);
        }
        return support::differenceBetween(pair.client, pair.model).empty();
    }

private:
    /// Path of the file that holds the machine of a failure, for the program to read.
    static std::string writtenMachine(const sim::Machine& machine)
    {
        const std::string path = testing::TempDir() + machine.name + ".json";
        std::ofstream(path) << sim::writeMachine(machine);
        return "see it with: sonavit graph --machine " + path;
    }

    sim::Redirection m_clients{reinterpret_cast<const void*>(&support::wantedDifferences)};
    sim::Redirection m_objectModels{reinterpret_cast<const void*>(&enumerateSoundCards)};
    support::LogCapture m_log{qor::LoggerPriority::LOG_FATAL}; // or the failures of such machines fill the output
};

class AgreementOnOddLevels : public Agreement, public testing::WithParamInterface<std::uint32_t>
{
};

class AgreementOnRandomMachines : public Agreement, public testing::WithParamInterface<std::uint32_t>
{
};
}

TEST_F(Agreement, NeedsEachOfTheWantedDifferences)
{
    const std::vector<Difference>& differences = support::wantedDifferences();
    std::vector<bool> isNeeded(differences.size(), false);
    const auto isMissing = [&] { return std::count(isNeeded.begin(), isNeeded.end(), false) > 0; };
    const auto search = [&](const sim::Machine& machine)
    {
        const Pair pair = readBoth(machine);
        for (std::size_t i = 0; i < differences.size(); ++i)
            isNeeded[i] = isNeeded[i] || !agreeWithout(differences[i], machine, pair);
    };

    for (std::uint32_t seed = 0; seed < mostMachines && isMissing(); ++seed) // these are smaller than most that ship
        search(support::withOddLevels(support::randomMachine(seed), seed));
    for (const std::string& name : sim::machineNames())
    {
        if (isMissing())
            search(sim::findMachine(name));
    }

    for (std::size_t i = 0; i < differences.size(); ++i)
        EXPECT_TRUE(isNeeded[i]) << "no machine needs the difference \"" << differences[i].name << "\"";
}

TEST_F(Agreement, IsCompleteOnAllShippedMachinesApartFromTheWantedDifferences)
{
    for (const std::string& name : support::share(sim::machineNames(), 3))
        expectAgreement(sim::findMachine(name));
}

TEST_P(AgreementOnRandomMachines, IsCompleteApartFromTheWantedDifferences)
{
    for (std::uint32_t seed = GetParam(); seed < GetParam() + machinesInATest && !HasFailure(); ++seed)
        expectAgreement(support::randomMachine(seed));
}

INSTANTIATE_TEST_SUITE_P(Seeds, AgreementOnRandomMachines, testing::Range(std::uint32_t{0}, machines, machinesInATest));

TEST_P(AgreementOnOddLevels, IsCompleteApartFromTheWantedDifferences)
{
    for (std::uint32_t seed = GetParam(); seed < GetParam() + machinesInATest && !HasFailure(); ++seed)
        expectAgreement(support::withOddLevels(support::randomMachine(seed), seed));
}

INSTANTIATE_TEST_SUITE_P(Seeds, AgreementOnOddLevels,
                         testing::Range(std::uint32_t{1000}, 1000 + support::cases(100, 10), machinesInATest));
