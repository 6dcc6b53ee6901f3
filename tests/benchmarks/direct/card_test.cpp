// The plain client of the benchmarks against the library: the same calls of the platform, the same data.
#include "benchmarks/direct/card.h"

#include "benchmarks/cost/machines.h"
#include "libSonavit/libsonavit.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"
#include "tests/benchmarks/direct/supportvalues.h"
#include "tests/support/logcapture.h"
#include "tests/support/pace.h"
#include "tests/support/questions.h"
#include "tests/support/randommachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using directvalues::Lines;

constexpr std::uint32_t comparedMachines = support::cases(100, 5);
constexpr std::uint32_t comparedInATest = support::cases(20, 5);
constexpr std::size_t mostComparedEvents = 8;

/// What one step did.
struct ComparedStep
{
    std::string name;
    Lines journal;
    Lines values;
};

/// Counts its calls.
class CountingObserver final : public SoundCardObserver, public direct::Observer
{
public:
    void onDeviceStateChanged() override { ++m_changed; }
    void onDeviceAdded() override { ++m_added; }
    void onDeviceRemoved() override { ++m_removed; }

    std::string text() const
    {
        return std::to_string(m_changed) + " changed, " + std::to_string(m_added) + " added, " +
               std::to_string(m_removed) + " removed";
    }

private:
    int m_changed = 0;
    int m_added = 0;
    int m_removed = 0;
};

/// One client on a machine of its own.
template<class Client>
class ComparedRun
{
public:
    explicit ComparedRun(const sim::Machine& machine) : m_simulation(machine) { m_simulation.deliverAtOnce(true); }

    std::vector<ComparedStep> perform()
    {
        perform("lists", [&](Lines& values) { m_client.readLists(values); });
        perform("discovery", [&](Lines&) { m_client.findCards(m_observer); });
        addCards("after the discovery");
        perform("controls", [&](Lines& values) { m_client.findControls(values); });
        performEvents();
        addCards("after the events");
        perform("controls after the events", [&](Lines& values) { m_client.findControls(values); });
        perform("end", [&](Lines&) { m_client.end(); });
        return std::move(m_steps);
    }

    sim::Census census() const { return m_simulation.census(); }

private:
    template<class Step>
    void perform(const std::string& name, const Step& step)
    {
        ComparedStep done;
        done.name = name;
        m_simulation.journal().clear();
        step(done.values);
        done.journal = m_simulation.journal().entries().lines();
        m_steps.push_back(std::move(done));
    }

    void addCards(const std::string& when)
    {
        ComparedStep cards;
        cards.name = "cards " + when;
        m_client.addCards(cards.values);
        cards.values.push_back(m_observer.text());
        m_steps.push_back(std::move(cards));
    }

    void performEvents()
    {
        sim::Events& events = m_simulation.events();
        const std::vector<sim::Endpoint> endpoints = m_simulation.machine().endpoints;
        for (std::size_t index = 0; index < std::min(endpoints.size(), mostComparedEvents); ++index)
        {
            const std::string& id = endpoints[endpoints.size() - 1 - index].id;
            perform("state of " + id, [&](Lines&) { events.setState(id, DEVICE_STATE_DISABLED); });
            perform("removal of " + id,
                    [&](Lines&) { index % 2 == 0 ? events.remove(id) : events.announceRemoved(id); });
            perform("state of the removed " + id, [&](Lines&) { events.announceState(id, DEVICE_STATE_ACTIVE); });
            perform("addition of " + id, [&](Lines&) { events.announceAdded(id); });
        }
        perform("state of none", [&](Lines&) { events.announceState("no such id", DEVICE_STATE_ACTIVE); });
    }

    sim::Simulation m_simulation;
    CountingObserver m_observer;
    Client m_client;
    std::vector<ComparedStep> m_steps;
};

class ComparedLibrary
{
public:
    void readLists(Lines& values)
    {
        for (const EDataFlow flow : {eRender, eCapture})
        {
            const EndpointDeviceEnumeratorCommon lists(flow);
            directvalues::add(values, lists);
        }
    }

    void findCards(CountingObserver& observer)
    {
        m_cards = SoundCard::enumerateSystemSoundDevices();
        for (unsigned int index = 0; index < m_cards.size(); ++index)
        {
            m_cards[index].registerPlaybackObserver(&observer);
            m_cards[index].registerRecordObserver(&observer);
        }
    }

    void addCards(Lines& values) const
    {
        for (unsigned int index = 0; index < m_cards.size(); ++index)
            directvalues::add(values, m_cards[index]);
    }

    void findControls(Lines& values) const
    {
        for (unsigned int index = 0; index < m_cards.size(); ++index)
        {
            findControls(values, m_cards[index], *m_cards[index].m_playbackDevices);
            findControls(values, m_cards[index], *m_cards[index].m_recordDevices);
        }
    }

    void end()
    {
        m_cards.clear();
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // as the end of the module does
    }

private:
    static void findControls(Lines& values, const SoundCard& card, const qor::Array<AudioDevice>& devices)
    {
        for (unsigned int index = 0; index < devices.size(); ++index)
        {
            try
            {
                qor::Array<SoundCard::VolumeController> controls;
                card.volumeController(devices[index], controls);
                for (unsigned int control = 0; control < controls.size(); ++control)
                    directvalues::add(values, controls[control]);
            }
            catch (const qor::IndexOutOfBounds&)
            {
                values.emplace_back("left the graph");
            }
        }
    }

    qor::Array<SoundCard> m_cards;
};

template<direct::Registration registration>
class ComparedDirect
{
public:
    void readLists(Lines& values)
    {
        for (const EDataFlow flow : {eRender, eCapture})
            directvalues::add(values, direct::readStateLists(flow));
    }

    void findCards(CountingObserver& observer)
    {
        m_client = std::make_unique<direct::Client>();
        m_cards = direct::Card::findAll(*m_client, registration);
        for (direct::Card& card : m_cards)
        {
            card.data().playback.observers.push_back(&observer);
            card.data().record.observers.push_back(&observer);
        }
    }

    void addCards(Lines& values) const
    {
        for (const direct::Card& card : m_cards)
            directvalues::add(values, card);
    }

    void findControls(Lines& values) const
    {
        for (const direct::Card& card : m_cards)
        {
            findControls(values, card, card.data().playback.devices);
            findControls(values, card, card.data().record.devices);
        }
    }

    void end()
    {
        m_cards.clear();
        m_client.reset();
    }

private:
    static void findControls(Lines& values, const direct::Card& card, const std::vector<direct::Device>& devices)
    {
        for (const direct::Device& device : devices)
        {
            try
            {
                for (const direct::Control& control : card.controlsOf(device))
                    directvalues::add(values, control);
            }
            catch (const std::out_of_range&)
            {
                values.emplace_back("left the graph");
            }
        }
    }

    std::unique_ptr<direct::Client> m_client;
    std::vector<direct::Card> m_cards;
};

class DirectClient : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
    void TearDown() override { CoUninitialize(); }

    static void expectTheLibrarysWork(const sim::Machine& machine)
    {
        const std::vector<ComparedStep> expected = ComparedRun<ComparedLibrary>(machine).perform();
        expectEqual(machine, expected, ComparedRun<ComparedDirect<direct::Registration::newDevice>>(machine).perform());
        expectEqual(machine, expected, ComparedRun<ComparedDirect<direct::Registration::wholeList>>(machine).perform());
    }

    template<class Client>
    static sim::Census censusAfter(const sim::Machine& machine)
    {
        ComparedRun<Client> run(machine);
        run.perform();
        return run.census();
    }

private:
    static void expectEqual(const sim::Machine& machine, const std::vector<ComparedStep>& expected,
                            const std::vector<ComparedStep>& actual)
    {
        ASSERT_EQ(expected.size(), actual.size());
        for (std::size_t index = 0; index < expected.size(); ++index)
        {
            const ComparedStep& step = expected[index];
            EXPECT_EQ("", support::firstDifference(step.journal, actual[index].journal))
                << "journal, " << machine.name << ": " << step.name;
            EXPECT_EQ("", support::firstDifference(step.values, actual[index].values))
                << "values, " << machine.name << ": " << step.name;
        }
        EXPECT_FALSE(expected.front().journal.empty());
    }

    support::LogCapture m_log{qor::LoggerPriority::LOG_FATAL}; // or the failures of odd machines fill the output
};

class DirectClientOnRandomMachines : public DirectClient, public testing::WithParamInterface<std::uint32_t>
{
};
}

TEST_F(DirectClient, MakesTheLibrarysCallsAndKeepsItsDataOnAllShippedMachines)
{
    for (const std::string& name : support::share(sim::machineNames(), 3))
        expectTheLibrarysWork(sim::findMachine(name));
}

TEST_F(DirectClient, MakesTheLibrarysCallsAndKeepsItsDataOnMachinesOfAnySize)
{
    const std::vector<const char*> sizes = {"cards:1",      "cards:4",       "endpoints:1", "endpoints:13",
                                            "connectors:2", "adapters:1",    "adapters:2",  "chain:1",
                                            "chain:2",      "connectors:17", "adapters:9",  "chain:9"};
    for (const char* const name : support::share(sizes, 3))
        expectTheLibrarysWork(bench::machineOfSize(name));
}

TEST_F(DirectClient, LeavesTheStringsOfDirectSoundGuidsAsTheLibraryDoesAndNothingElse)
{
    const sim::Machine machine = sim::findMachine("desktop");

    const sim::Census library = censusAfter<ComparedLibrary>(machine);
    const sim::Census client = censusAfter<ComparedDirect<direct::Registration::newDevice>>(machine);

    EXPECT_NE(0, client.taskBlocks());
    EXPECT_EQ(library.taskMemory, client.taskMemory);
    EXPECT_EQ(0, client.references()) << client;
    EXPECT_TRUE(client.clients.empty()) << client;
}

TEST_P(DirectClientOnRandomMachines, MakesTheLibrarysCallsAndKeepsItsData)
{
    for (std::uint32_t seed = GetParam(); seed < GetParam() + comparedInATest && !HasFailure(); ++seed)
        expectTheLibrarysWork(support::withOddLevels(support::randomMachine(seed), seed));
}

INSTANTIATE_TEST_SUITE_P(Seeds, DirectClientOnRandomMachines,
                         testing::Range(std::uint32_t{0}, comparedMachines, comparedInATest));
