// The client layer as programs have it: its DLL, with what it exports. The client's own tests contain its objects.

#include "simulator/machine/file/machinefile.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "sonavit/client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using testing::HasSubstr;
using testing::SizeIs;

namespace
{
/// The machine "studio" before the client layer's DLL.
class ClientLibrary : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        m_redirection = std::make_unique<sim::Redirection>(GetModuleHandleW(L"libSonavitClient.dll"));
        m_simulation = std::make_unique<sim::Simulation>(sim::findMachine("studio"));
        audio = std::make_unique<sonavit::System>(polled());
        const std::optional<sonavit::Endpoint> found = audio->defaultEndpoint(sonavit::Flow::output);
        ASSERT_TRUE(found);
        speakers = *found;
    }

    void TearDown() override
    {
        audio.reset();
        m_simulation->events().waitForClients();
        EXPECT_TRUE(m_simulation->census().empty()) << m_simulation->census();
        m_simulation.reset();
        m_redirection.reset();
        CoUninitialize();
    }

    static sonavit::System::Options polled()
    {
        sonavit::System::Options options;
        options.delivery = sonavit::Delivery::poll;
        return options;
    }

    sim::Simulation& simulation() { return *m_simulation; }

    std::unique_ptr<sonavit::System> audio;
    sonavit::Endpoint speakers;

private:
    std::unique_ptr<sim::Redirection> m_redirection;
    std::unique_ptr<sim::Simulation> m_simulation;
};
}

TEST_F(ClientLibrary, ReadsTheMachine)
{
    const sonavit::Snapshot snapshot = audio->snapshot();

    EXPECT_THAT(snapshot.endpoints(), SizeIs(simulation().machine().endpoints.size()));
    EXPECT_THAT(snapshot.problems(), SizeIs(0));
    EXPECT_EQ(sonavit::Service::running, snapshot.service());
    std::ostringstream text;
    text << snapshot;
    EXPECT_THAT(text.str(), HasSubstr("Main Monitors"));
    EXPECT_EQ(snapshot, audio->refresh(sonavit::Depth::everything).value());
    EXPECT_THAT(audio->find(speakers.id().text()), SizeIs(1));
}

TEST_F(ClientLibrary, ReadsTheHardware)
{
    const sonavit::CardId card = audio->snapshot().cards()[0].id();

    const sonavit::Graph graph = audio->graph(card).value();

    EXPECT_FALSE(graph.parts.empty());
    EXPECT_FALSE(audio->controls(speakers.id())->empty());
    EXPECT_FALSE(audio->selectors(card)->empty());
}

TEST_F(ClientLibrary, ChangesLevelsMutesAndSelections)
{
    const sonavit::Result<sonavit::Volume> volume = audio->setVolume(speakers.id(), sonavit::Percent(40));
    const sonavit::Result<sonavit::Volume> muted = audio->setMute(speakers.id(), true);
    const sonavit::Result<sonavit::Control> control =
        audio->setControl(speakers.id(), "Line Out 1/2 Level", sonavit::Decibels(-12));
    const sonavit::Result<sonavit::Selector> selector = audio->select("Auxiliary Source", "Combo 3");
    const sonavit::Result<sonavit::Volume> refused = audio->setVolume(speakers.id(), sonavit::Decibels(1000));

    ASSERT_TRUE(volume) << volume.problem();
    EXPECT_EQ(40u, volume->master.percent->rounded());
    ASSERT_TRUE(muted) << muted.problem();
    EXPECT_EQ(true, muted->isMuted);
    ASSERT_TRUE(control) << control.problem();
    ASSERT_TRUE(selector) << selector.problem();
    EXPECT_EQ("Combo 3", selector->selected()->connectorName);
    EXPECT_EQ(sonavit::Problem::Kind::outOfRange, refused.problem().kind());
}

TEST_F(ClientLibrary, ThrowsExceptionsThatProgramsCatch)
{
    EXPECT_THROW(static_cast<void>(audio->subscribe(nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(sonavit::Percent(std::numeric_limits<double>::quiet_NaN())), std::logic_error);
}

TEST_F(ClientLibrary, CallsSubscribersOfThePolledAndOfTheThreadedSystem)
{
    std::promise<sonavit::Change> threaded;
    sonavit::System second;
    const sonavit::Subscription aside =
        second.subscribe([&](const sonavit::Change& change) { threaded.set_value(change); });
    std::vector<sonavit::Change> changes;
    sonavit::Subscription here = audio->subscribe([&](const sonavit::Change& change) { changes.push_back(change); });

    ASSERT_TRUE(audio->setMute(speakers.id(), true));
    while (changes.empty())
        audio->poll(std::chrono::milliseconds(10));

    const sonavit::Change other = threaded.get_future().get();
    for (const sonavit::Change& change : {changes[0], other})
    {
        EXPECT_EQ(change.after(), sonavit::apply(change.before(), change.events()));
        EXPECT_EQ(true, change.after().endpoint(speakers.id())->volume()->isMuted);
    }
}

TEST_F(ClientLibrary, KeepsReferencesSettingsAndAWatch)
{
    const sonavit::Reference reference = audio->refer(speakers.id()).value();
    const sonavit::Resolution resolution = audio->resolve(sonavit::Reference::parse(reference.text()).value());
    const sonavit::Settings settings = audio->settings().value();
    const sonavit::Result<sonavit::Watch> watch = audio->watch(audio->snapshot().cards()[0].id());

    EXPECT_EQ(sonavit::Resolution::Kind::exact, resolution.kind);
    EXPECT_EQ(speakers.id(), resolution.best()->endpoint.id());
    EXPECT_EQ(settings, sonavit::Settings::parse(settings.text()).value());
    EXPECT_TRUE(audio->restore(settings)->isComplete());
    EXPECT_TRUE(watch);
}

TEST_F(ClientLibrary, HoldsAFormatUntilTheEndOfTheHold)
{
    const sonavit::Format before = speakers.format().value();
    sonavit::Format other = before;
    other.rate = before.rate == 48000 ? 96000 : 48000;
    {
        const sonavit::Result<sonavit::FormatHold> hold = audio->holdFormat(speakers.id(), other);
        ASSERT_TRUE(hold) << hold.problem();
        EXPECT_EQ(other, audio->endpoint(speakers.id())->format());
    }
    ASSERT_TRUE(audio->refresh());

    EXPECT_EQ(before, audio->endpoint(speakers.id())->format());
}

// In a suite of its own, as the first System of a process starts the worker.
TEST(ClientLibraryWorker, IsInTheMultithreadedApartmentWhateverItsCallersAreIn)
{
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    const sim::Redirection redirection(GetModuleHandleW(L"libSonavitClient.dll"));
    const sim::Simulation simulation(sim::findMachine("desktop"));
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    sonavit::System::Options options;
    options.onWorkerStart = [&] { EXPECT_EQ(S_OK, CoGetApartmentType(&type, &qualifier)); };
    {
        const sonavit::System audio(options);
        EXPECT_FALSE(audio.snapshot().cards().empty());
        std::thread([&] { EXPECT_FALSE(audio.snapshot().cards().empty()); }).join(); // a thread without COM
    }

    EXPECT_EQ(APTTYPE_MTA, type);
    CoUninitialize();
}

// In a suite of its own, which counts the handles of the whole process.
TEST(ClientLibraryGrowth, IsNothingInHandlesAfterManySystemsInTurn)
{
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    const sim::Redirection redirection(GetModuleHandleW(L"libSonavitClient.dll"));
    sim::Simulation simulation(sim::findMachine("desktop"));
    const auto useAndCount = [&]
    {
        {
            sonavit::System audio;
            const sonavit::Subscription heard = audio.subscribe([](const sonavit::Change&) {});
            EXPECT_FALSE(audio.snapshot().cards().empty());
        }
        DWORD handles = 0;
        EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &handles));
        return handles;
    };
    for (int warmingUp = 0; warmingUp < 5; ++warmingUp)
        useAndCount();
    const DWORD before = useAndCount();

    DWORD after = 0;
    for (int count = 0; count < 100; ++count)
        after = useAndCount();

    EXPECT_LE(after, before + 5) << "a hundred Systems have begun and ended";
    CoUninitialize();
}
