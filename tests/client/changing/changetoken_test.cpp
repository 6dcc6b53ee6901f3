#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>

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

const Setter everySetter[] = {
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

/// All cards are watched. The clock stands still, so that a snapshot shows what a setter has published itself.
class ChangeTokens : public support::WatchTest
{
protected:
    System& start()
    {
        System& system = watch("studio");
        for (const Card& card : system.snapshot().cards())
            m_watches.push_back(system.watch(card.id()).value());
        m_receiver.emplace(system);
        return system;
    }

    void TearDown() override
    {
        m_hold.reset();
        m_receiver.reset();
        m_watches.clear();
        WatchTest::TearDown();
    }

    /// What the subscriber has got after all that the platform has announced.
    std::vector<Event> events()
    {
        simulation().events().waitForClients();
        advance(std::chrono::seconds(1));
        return m_receiver->events();
    }

    static void expectOwn(const std::vector<Event>& events, ChangeToken token)
    {
        EXPECT_FALSE(events.empty());
        for (const Event& event : events)
        {
            EXPECT_EQ(event.origin, Origin::own) << event;
            EXPECT_THAT(event.tokens, ElementsAre(token)) << event;
        }
    }

    std::vector<Watch> m_watches;
    std::optional<support::Receiver> m_receiver;
    std::optional<FormatHold> m_hold;
};

class EachSetter : public ChangeTokens, public testing::WithParamInterface<Setter>
{
};

INSTANTIATE_TEST_SUITE_P(Of, EachSetter, testing::ValuesIn(everySetter),
                         [](const testing::TestParamInfo<Setter>& test) { return std::string(test.param.name); });

TEST_P(EachSetter, ShowsItsEffectWhenItReturnsAndGivesItsTokenToTheEvents)
{
    System& system = start();
    const Snapshot before = system.snapshot();

    const ChangeToken token = GetParam().change(system, m_hold);
    const Snapshot after = system.snapshot();

    EXPECT_NE(token, 0u);
    EXPECT_NE(after, before);
    expectOwn(events(), token);
    EXPECT_EQ(system.snapshot(), after); // nothing of it came later
}

TEST_F(ChangeTokens, OfTheEndOfAHoldAreInItsEvents)
{
    System& system = start();
    const Snapshot before = system.snapshot();
    Result<FormatHold> hold = system.holdFormat(endpoint(system, "Main Monitors"), Format::integer(16, 44100, 2));
    events();

    const Result<Done> end = hold->end();
    const Snapshot after = system.snapshot();

    EXPECT_NE(end.token(), 0u);
    EXPECT_EQ(after, before);
    expectOwn(events(), end.token());
}
}
