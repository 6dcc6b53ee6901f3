#include "tests/support/randommachine.h"

#include "simulator/machine/file/check.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/support/pace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace
{
constexpr std::uint32_t machinesInAll = 300;

/// How often something occurs in many machines.
class Occurrences
{
public:
    void add(const sim::Machine& machine)
    {
        count("machine without endpoints", machine.endpoints.empty());
        count("more inputs than outputs", machine.waveIn.size() > machine.waveOut.size());
        count("ordinary account", machine.account == sim::Account::ordinary);
        for (const sim::Endpoint& endpoint : machine.endpoints)
            add(endpoint);
        for (const sim::Adapter& adapter : machine.adapters)
        {
            count("adapter that cannot be opened", !adapter.openable);
            for (const sim::Connector& connector : adapter.topology.value_or(sim::Topology()).connectors)
                count("described jack", !connector.jacks.empty());
            for (const sim::Subunit& subunit : adapter.topology.value_or(sim::Topology()).subunits)
                add(subunit);
        }
        for (const sim::Join& join : machine.joins)
            count("join that leads nowhere", join.to.empty());
    }

    unsigned of(const std::string& what) const
    {
        const auto found = m_counts.find(what);
        return found == m_counts.end() ? 0 : found->second;
    }

private:
    void count(const std::string& what, bool occurs) { m_counts[what] += occurs ? 1 : 0; }

    void add(const sim::Endpoint& endpoint)
    {
        const sim::PropertyValue* const path = sim::findProperty(endpoint.properties, sim::keys::instancePath);
        const sim::PropertyValue* const format = sim::findProperty(endpoint.properties, sim::keys::deviceFormat);
        count("input", endpoint.flow == eCapture);
        count("output", endpoint.flow == eRender);
        for (const std::uint32_t state :
             {sim::stateActive, sim::stateDisabled, sim::stateNotPresent, sim::stateUnplugged})
            count("state " + std::to_string(state), endpoint.state == state);
        count("no instance path", path == nullptr || path->tag != VT_LPWSTR || !path->text || path->text->empty());
        count("mistyped path", path != nullptr && path->tag != VT_LPWSTR && path->tag != VT_EMPTY);
        count("short format", format != nullptr && format->bytes.size() == sizeof(WAVEFORMATEX));
        count("endpoint without volume", !endpoint.volume);
        count("endpoint without topology", !endpoint.topology);
        count("default", !endpoint.defaultFor.empty());
        count("eight channels", endpoint.volume && endpoint.volume->channels.size() == 8);
        count("audio taper", endpoint.volume && endpoint.volume->taper == sim::Taper::audio);
    }

    void add(const sim::Subunit& subunit)
    {
        count("volume node", subunit.volume.has_value());
        count("mute node", subunit.mute.has_value());
        count("selector", subunit.selector.has_value());
        count("node without name", !subunit.name);
        count("node without id", !subunit.reportsId);
        count("shared node", subunit.incoming.size() + subunit.outgoing.size() > 2);
    }

    std::map<std::string, unsigned> m_counts;
};
}

TEST(RandomMachine, IsTheSameForTheSameSeedAndCanBeReadBackFromItsFile)
{
    for (std::uint32_t seed = 0; seed < support::cases(100, 20); ++seed)
    {
        const sim::Machine machine = support::randomMachine(seed);

        EXPECT_EQ(machine, support::randomMachine(seed));
        EXPECT_EQ(machine, sim::readMachine(sim::writeMachine(machine), machine.name)) << "seed " << seed;
    }
}

TEST(RandomMachine, PassesTheChecksOfMachineFiles)
{
    for (std::uint32_t seed = 0; seed < machinesInAll; ++seed)
        EXPECT_THAT(sim::checkMachine(support::randomMachine(seed)), testing::IsEmpty()) << "seed " << seed;
}

TEST(RandomMachine, HasEverythingThatReadersStumbleOver)
{
    Occurrences occurrences;
    for (std::uint32_t seed = 0; seed < machinesInAll; ++seed)
        occurrences.add(support::randomMachine(seed));

    for (const char* const what : {"machine without endpoints",
                                   "more inputs than outputs",
                                   "ordinary account",
                                   "adapter that cannot be opened",
                                   "described jack",
                                   "join that leads nowhere",
                                   "input",
                                   "output",
                                   "state 1",
                                   "state 2",
                                   "state 4",
                                   "state 8",
                                   "no instance path",
                                   "mistyped path",
                                   "short format",
                                   "endpoint without volume",
                                   "endpoint without topology",
                                   "default",
                                   "eight channels",
                                   "audio taper",
                                   "volume node",
                                   "mute node",
                                   "selector",
                                   "node without name",
                                   "node without id",
                                   "shared node"})
        EXPECT_GE(occurrences.of(what), 10u) << what;
}

TEST(RandomMachineWithOddLevels, HasEmptyRangesAndVolumesWithoutChannels)
{
    unsigned emptyRanges = 0;
    unsigned withoutChannels = 0;
    for (std::uint32_t seed = 0; seed < machinesInAll; ++seed)
    {
        for (const sim::Endpoint& endpoint : support::withOddLevels(support::randomMachine(seed), seed).endpoints)
        {
            emptyRanges += endpoint.volume && endpoint.volume->minimum == endpoint.volume->maximum ? 1 : 0;
            withoutChannels += endpoint.volume && endpoint.volume->channels.empty() ? 1 : 0;
        }
    }

    EXPECT_GE(emptyRanges, 50u);
    EXPECT_GE(withoutChannels, 50u);
}
