#include "tests/support/clienttest.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace
{
using namespace sonavit;
using testing::ElementsAre;

/// A change of the machine "studio".
struct Setter
{
    const char* name;
    /// @return the token of its result
    std::function<ChangeToken(System&, std::optional<FormatHold>&)> change;
};

EndpointId endpoint(const System& system, const std::string& name)
{
    return system.snapshot().endpointNamed(name)->id();
}

/// A restore of other levels, mutes and selections than there are.
ChangeToken restoreOthers(System& system)
{
    Settings settings = system.settings().value();
    settings.endpoints.resize(1);
    for (std::optional<Decibels>& channel : settings.endpoints[0].channels)
        channel = Decibels(-33);
    settings.endpoints[0].isMuted = true;
    settings.endpoints[0].controls.resize(1);
    settings.endpoints[0].controls[0].channels.assign(2, Decibels(-12));
    settings.endpoints[0].selectors.at(0).inputName = "Combo 3";
    return system.restore(settings).token();
}

const Setter kindsOfSetter[] = {
    {"setVolume",
     [](System& system, auto&) { return system.setVolume(endpoint(system, "Main Monitors"), Decibels(-33)).token(); }},
    {"setMute", [](System& system, auto&) { return system.setMute(endpoint(system, "Main Monitors"), true).token(); }},
    {"toggleMute", [](System& system, auto&) { return system.toggleMute(endpoint(system, "Main Monitors")).token(); }},
    {"setControl", [](System& system, auto&)
     { return system.setControl(endpoint(system, "Main Monitors"), "Line Out 1/2", Decibels(-12)).token(); }},
    {"setControlMute", [](System& system, auto&)
     { return system.setControlMute(endpoint(system, "Main Monitors"), "Line Out 1/2", true).token(); }},
    {"select", [](System& system, auto&) { return system.select("Auxiliary Source", "Combo 3").token(); }},
    {"selectOfACard", [](System& system, auto&)
     { return system.select(system.snapshot().cards().at(0).id(), "Auxiliary Source", "Combo 3").token(); }},
    {"restore", [](System& system, auto&) { return restoreOthers(system); }},
    {"holdFormat",
     [](System& system, std::optional<FormatHold>& kept)
     {
         Result<FormatHold> hold = system.holdFormat(endpoint(system, "Main Monitors"), Format::integer(16, 44100, 2));
         const ChangeToken token = hold.token();
         kept = std::move(hold).value();
         return token;
     }},
};

class ChangeTokens : public support::ClientTest
{
protected:
    /// A System whose subscriber is called by poll(), and which watches all cards.
    System& start()
    {
        play("studio");
        System::Options polled = options();
        polled.delivery = Delivery::poll;
        m_system.emplace(polled);
        for (const Card& card : m_system->snapshot().cards())
            m_watches.push_back(m_system->watch(card.id()).value());
        m_subscription =
            m_system->subscribe([this](const Change& change)
                                { m_events.insert(m_events.end(), change.events().begin(), change.events().end()); });
        return *m_system;
    }

    void TearDown() override
    {
        m_hold.reset();
        m_subscription = Subscription();
        m_watches.clear();
        m_system.reset();
        ClientTest::TearDown();
    }

    /// Calls the subscriber with all that the platform has announced.
    void deliver()
    {
        simulation().events().waitForClients();
        ASSERT_TRUE(m_system->refresh());
        m_system->poll();
    }

    void expectOwnEvents(ChangeToken token)
    {
        EXPECT_FALSE(m_events.empty());
        for (const Event& event : m_events)
        {
            EXPECT_EQ(event.origin, Origin::own) << event;
            EXPECT_THAT(event.tokens, ElementsAre(token)) << event;
        }
    }

    std::optional<System> m_system;
    std::vector<Watch> m_watches;
    Subscription m_subscription;
    std::vector<Event> m_events;
    std::optional<FormatHold> m_hold;
};

class EachSetter : public ChangeTokens, public testing::WithParamInterface<Setter>
{
};

INSTANTIATE_TEST_SUITE_P(Of, EachSetter, testing::ValuesIn(kindsOfSetter),
                         [](const testing::TestParamInfo<Setter>& test) { return std::string(test.param.name); });

TEST_P(EachSetter, ShowsItsEffectWhenItReturnsAndGivesItsTokenToTheEvents)
{
    System& system = start();
    const Snapshot before = system.snapshot();

    const ChangeToken token = GetParam().change(system, m_hold);
    const Snapshot after = system.snapshot();
    deliver();

    EXPECT_NE(token, 0u);
    EXPECT_NE(after, before);
    EXPECT_EQ(system.snapshot(), after); // nothing of it came later
    expectOwnEvents(token);
}

TEST_F(ChangeTokens, OfTheEndOfAHoldAreInItsEvents)
{
    System& system = start();
    const Snapshot before = system.snapshot();
    Result<FormatHold> hold = system.holdFormat(endpoint(system, "Main Monitors"), Format::integer(16, 44100, 2));
    deliver();
    m_events.clear();

    const Result<Done> end = hold->end();
    const Snapshot after = system.snapshot();
    deliver();

    EXPECT_NE(end.token(), 0u);
    EXPECT_EQ(after, before);
    expectOwnEvents(end.token());
}
}
