#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
class SystemWatch : public support::WatchTest
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        watch("studio");
        for (const Card& card : audio().snapshot().cards())
        {
            for (const Endpoint& endpoint : card.endpoints())
            {
                const Result<std::vector<Control>> controls = audio().controls(endpoint.id());
                if (!controls || controls->empty() || !m_control.isEmpty())
                    continue;
                m_card = card.id();
                m_control = controls->front().id;
                m_endpoint = endpoint.id();
            }
        }
        ASSERT_FALSE(m_control.isEmpty());
    }

    /// Another program moves the control.
    void moveControl(float level)
    {
        IAudioVolumeLevel* const platform = simulation().volumeLevel(m_control.text());
        ASSERT_NE(nullptr, platform);
        EXPECT_EQ(S_OK, platform->SetLevelUniform(level, nullptr));
        platform->Release();
    }

    std::vector<Control> hardwareControls()
    {
        const Hardware hardware = audio().snapshot().hardware(m_card).value();
        for (const Hardware::EndpointControls& each : hardware.controls)
        {
            if (each.endpoint == m_endpoint)
                return each.controls;
        }
        return {};
    }

    /// What could not be read of the watched card.
    std::vector<Problem> problems()
    {
        const Hardware hardware = audio().snapshot().hardware(m_card).value();
        std::vector<Problem> all = hardware.problems;
        for (const Hardware::EndpointControls& each : hardware.controls)
        {
            for (const Control& control : each.controls)
                all.insert(all.end(), control.problems.begin(), control.problems.end());
        }
        return all;
    }

    CardId m_card;
    EndpointId m_endpoint;
    ControlId m_control;
};

TEST_F(SystemWatch, PutsTheHardwareOfTheCardIntoTheSnapshot)
{
    EXPECT_FALSE(audio().snapshot().hardware(m_card));

    const Result<Watch> watch = audio().watch(m_card);

    ASSERT_TRUE(watch);
    const std::optional<Hardware> hardware = audio().snapshot().hardware(m_card);
    ASSERT_TRUE(hardware);
    EXPECT_EQ(*audio().selectors(m_card), hardware->selectors);
    EXPECT_EQ(audio().snapshot().card(m_card)->endpoints().size(), hardware->controls.size());
}

TEST_F(SystemWatch, TellsOfChangesInTheHardware)
{
    const Result<Watch> watch = audio().watch(m_card);
    support::Receiver received(audio());

    moveControl(-6);
    settle();

    const std::vector<Event> events = received.events();
    const auto isOfHardware = [](const Event& event) { return event.kind == Event::Kind::hardwareChanged; };
    ASSERT_EQ(1, std::count_if(events.begin(), events.end(), isOfHardware));
    EXPECT_EQ(Origin::other, std::find_if(events.begin(), events.end(), isOfHardware)->origin);
}

TEST_F(SystemWatch, TellsOfChangesOfALevelBetweenTwoNodes)
{
    for (const Endpoint& endpoint : audio().snapshot().card(m_card)->endpoints())
    {
        for (const Control& control : audio().controls(endpoint.id()).value())
        {
            if (control.name != "Trim 3")
                continue;
            m_endpoint = endpoint.id();
            m_control = control.id;
        }
    }
    const Result<Watch> watch = audio().watch(m_card);
    support::Receiver received(audio());

    moveControl(-6);
    settle();

    const std::vector<Event> events = received.events();
    ASSERT_EQ(1, std::count_if(events.begin(), events.end(),
                               [](const Event& event) { return event.kind == Event::Kind::hardwareChanged; }));
    EXPECT_EQ(*audio().controls(m_endpoint), hardwareControls());
    const std::vector<Control> now = hardwareControls();
    const auto trim = std::find_if(now.begin(), now.end(), [&](const Control& each) { return each.id == m_control; });
    ASSERT_NE(now.end(), trim);
    EXPECT_EQ("Trim 3", trim->title());
    EXPECT_EQ(Decibels(-6), trim->channels->at(0).level.decibels);
}

TEST_F(SystemWatch, TellsOfOwnChangesWithTheirToken)
{
    const Result<Watch> watch = audio().watch(m_card);
    support::Receiver received(audio());

    const Result<Control> changed = audio().setControl(m_endpoint, m_control, Decibels(-6));
    advance(20ms);

    ASSERT_TRUE(changed);
    const std::vector<Event> events = received.events();
    const auto isOfHardware = [](const Event& event) { return event.kind == Event::Kind::hardwareChanged; };
    const auto found = std::find_if(events.begin(), events.end(), isOfHardware);
    ASSERT_NE(events.end(), found);
    EXPECT_EQ(Origin::own, found->origin);
    EXPECT_THAT(found->tokens, ElementsAre(changed.token()));
}

TEST_F(SystemWatch, IsWhatEventsOfTheHardwareNeed)
{
    support::Receiver received(audio());

    moveControl(-6);
    advance(250ms);

    EXPECT_THAT(received.events(), IsEmpty());
    EXPECT_EQ(0, simulation().census().clients["IControlChangeNotify"]);
}

TEST_F(SystemWatch, TriesAgainWhatWasAnnouncedAndCannotBeReadYet)
{
    const Result<Watch> watch = audio().watch(m_card);
    ASSERT_THAT(problems(), IsEmpty());
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetLevel", E_NOTFOUND);

    moveControl(-6);
    settle();

    EXPECT_THAT(problems(), Not(IsEmpty()));
    for (const auto pause : {250ms, 500ms, 1000ms, 2000ms, 4000ms})
    {
        const auto before = fault.fired();
        advance(pause - 1ms);
        EXPECT_EQ(before, fault.fired());
        advance(1ms);
        EXPECT_LT(before, fault.fired());
    }
    simulation().faults().clear();
    advance(8s);
    EXPECT_THAT(problems(), IsEmpty());
    EXPECT_EQ(*audio().controls(m_endpoint), hardwareControls());
}

TEST_F(SystemWatch, GivesUpAfterTheLastTry)
{
    const Result<Watch> watch = audio().watch(m_card);
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetLevel", E_NOTFOUND);
    moveControl(-6);
    settle();
    const auto atFirst = fault.fired();

    for (int count = 0; count < 20; ++count)
        advance(10s);

    EXPECT_EQ(7 * atFirst, fault.fired());
}

TEST_F(SystemWatch, WalksAgainThroughHardwareThatCannotBeReadYet)
{
    simulation().faults().fail("IDeviceTopology::GetConnector", E_NOTFOUND);
    const Result<Watch> watch = audio().watch(m_card);
    ASSERT_TRUE(watch);
    EXPECT_THAT(problems(), Not(IsEmpty()));

    simulation().faults().clear();
    advance(250ms);

    EXPECT_THAT(problems(), IsEmpty());
    EXPECT_EQ(*audio().controls(m_endpoint), hardwareControls());
}

TEST_F(SystemWatch, RegistersAgainIfThatHasFailed)
{
    simulation().faults().fail("IPart::RegisterControlChangeCallback", E_OUTOFMEMORY);
    const Result<Watch> watch = audio().watch(m_card);
    EXPECT_THAT(problems(), Not(IsEmpty()));
    simulation().faults().clear();
    advance(250ms);
    EXPECT_THAT(problems(), IsEmpty());
    support::Receiver received(audio());

    moveControl(-6);
    settle();

    EXPECT_THAT(received.events(), Not(IsEmpty()));
}

TEST_F(SystemWatch, MakesNoTryAfterItsEnd)
{
    Result<Watch> watch = audio().watch(m_card);
    simulation().faults().fail("IAudioVolumeLevel::GetLevel", E_NOTFOUND);
    moveControl(-6);
    settle();
    watch->stop();
    settle();
    callsSince();

    advance(20s);

    EXPECT_EQ(0u, callsSince());
}

TEST_F(SystemWatch, NoticesTheEndOfTheService)
{
    const Result<Watch> watch = audio().watch(m_card);
    constexpr HRESULT noServer = static_cast<HRESULT>(0x800706BAU);
    for (const char* const operation :
         {"CoCreateInstance", "IMMDeviceEnumerator::EnumAudioEndpoints", "IAudioVolumeLevel::GetLevel"})
        simulation().faults().fail(operation, noServer);

    moveControl(-6);
    settle();

    EXPECT_EQ(Service::stopped, audio().snapshot().service());
}

TEST_F(SystemWatch, EndsWithItsLastHolder)
{
    Result<Watch> first = audio().watch(m_card);
    Result<Watch> second = audio().watch(m_card);
    first->stop();
    static_cast<void>(audio().refresh());
    EXPECT_TRUE(audio().snapshot().hardware(m_card));
    EXPECT_LT(0, simulation().census().clients["IControlChangeNotify"]);

    second->stop();
    static_cast<void>(audio().refresh());

    EXPECT_FALSE(audio().snapshot().hardware(m_card));
    EXPECT_EQ(0, simulation().census().clients["IControlChangeNotify"]);
}

TEST_F(SystemWatch, ContinuesWhenTheCardGoesAndComesBack)
{
    const Result<Watch> watch = audio().watch(m_card);
    std::vector<std::string> endpoints;
    for (const Endpoint& endpoint : audio().snapshot().card(m_card)->endpoints())
        endpoints.push_back(endpoint.id().text());
    for (const std::string& id : endpoints)
        simulation().events().remove(id);
    advance(50ms);
    EXPECT_FALSE(audio().snapshot().hardware(m_card));

    for (const std::string& id : endpoints)
        simulation().events().add(id);
    advance(50ms);

    EXPECT_TRUE(audio().snapshot().hardware(m_card));
}

TEST_F(SystemWatch, MayOutliveItsSystem)
{
    const Result<Watch> watch = audio().watch(m_card);

    endSystem();

    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}

TEST_F(SystemWatch, NeedsACardThatExists)
{
    const Result<Watch> watch = audio().watch(CardId("none"));

    ASSERT_FALSE(watch);
    EXPECT_EQ(Problem::Kind::notThere, watch.problem().kind());
}
}
