#include "client/anonymity/anonymity.h"
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"
#include "sonavit/snapshot.h"
#include "sonavit/system.h"
#include "tests/support/pace.h"
#include "tests/support/randommachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{
sim::Machine anonymousMachine(sim::Machine machine, const std::vector<std::string>& names)
{
    sonavit::anonymity::makeAnonymous(machine, names);
    return machine;
}

/// Numbers for values: equal ones for equal values.
class Classes
{
public:
    template<class Value>
    int of(const std::optional<Value>& value)
    {
        if (!value)
            return -1;
        std::ostringstream text;
        text << *value;
        return m_known.emplace(text.str(), static_cast<int>(m_known.size())).first->second;
    }

private:
    std::map<std::string, int> m_known;
};

/// What the client layer says of a machine, without strings that may be secret: equal ones are equal numbers.
std::string treeOf(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.journal().record(false);
    sonavit::System::Options options;
    options.onWorkerStart = [&] { static_cast<void>(simulation.registerOnThisThread()); };
    const sonavit::System system(options);
    const sonavit::Snapshot snapshot = system.snapshot();
    std::ostringstream tree;
    Classes names;
    Classes containers;
    Classes parents;
    for (const sonavit::Card& card : snapshot.cards())
    {
        tree << "card " << names.of(std::optional<std::string>(card.title())) << " " << card.bus().value_or("-") << " "
             << parents.of(card.parent()) << " " << card.problems().size() << "\n";
        for (const sonavit::Endpoint& endpoint : card.endpoints())
        {
            tree << "  " << names.of(endpoint.name()) << " " << names.of(endpoint.interfaceName()) << " "
                 << containers.of(endpoint.container()) << " " << static_cast<int>(endpoint.flow()) << " "
                 << static_cast<int>(endpoint.state().value_or(sonavit::State())) << " " << endpoint.jacks().size()
                 << " " << (endpoint.volume() ? endpoint.volume()->sentence() : "-") << " "
                 << (endpoint.format() ? endpoint.format()->sentence() : "-") << " " << endpoint.roles().list().size()
                 << " " << static_cast<int>(endpoint.waveId().value_or(99)) << " " << endpoint.problems().size()
                 << "\n";
        }
    }
    return tree.str();
}
}

TEST(MakeAnonymousShippedMachine, StaysValidAndGivesTheSameTree)
{
    for (const std::string& name : sim::machineNames())
    {
        SCOPED_TRACE(name);
        const sim::Machine machine = sim::findMachine(name);

        const sim::Machine after = anonymousMachine(machine, {"Anna", "DESKTOP-4F2K9"});

        EXPECT_TRUE(sim::checkMachine(after).empty());
        EXPECT_EQ(treeOf(machine), treeOf(after));
        EXPECT_EQ(name == "empty", treeOf(after).empty());
    }
}

TEST(MakeAnonymousRandomMachine, StaysValidAndGivesTheSameTree)
{
    for (std::uint32_t seed = 0; seed < support::cases(100, 20); ++seed)
    {
        SCOPED_TRACE(seed);
        const sim::Machine machine = support::randomMachine(seed);

        const sim::Machine after = anonymousMachine(machine, {"Speaker", "HDAUDIO"});

        EXPECT_TRUE(sim::checkMachine(after).empty());
        EXPECT_EQ(treeOf(machine), treeOf(after));
    }
}
