#include "tests/support/clienttest.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace
{
using namespace sonavit;
using testing::ElementsAre;

/// A System on the machine "studio", whose cards have controls and selectors.
class SystemHardware : public support::ClientTest
{
protected:
    void TearDown() override
    {
        m_system.reset();
        ClientTest::TearDown();
    }

    System& start(const std::string& machine)
    {
        play(machine);
        m_system = std::make_unique<System>(options());
        return *m_system;
    }

    EndpointId endpoint(const std::string& name) { return m_system->snapshot().endpointNamed(name)->id(); }

    static std::vector<double> levels(const Control& control)
    {
        std::vector<double> result;
        for (const ControlChannel& channel : control.channels.value())
            result.push_back(channel.level.decibels.value().value());
        return result;
    }

    std::unique_ptr<System> m_system;
};

TEST_F(SystemHardware, SetsAControlByTheNameOfItsConnector)
{
    System& system = start("studio");

    const Result<Control> control = system.setControl(endpoint("Main Monitors"), "Line Out 1/2", Decibels(-12));

    ASSERT_TRUE(control);
    EXPECT_THAT(levels(*control), testing::Each(-12.0));
    EXPECT_NE(control.token(), 0u);
    EXPECT_EQ(system.controls(endpoint("Main Monitors"))->front(), control.value());
}

TEST_F(SystemHardware, SetsALevelBetweenTwoNodesAndNoOther)
{
    System& system = start("desktop");
    const EndpointId microphone = endpoint("Microphone (Analog Audio)");
    const std::vector<Control> before = system.controls(microphone).value();
    ASSERT_NE(levels(before.back()).front(), 10.0);

    const Result<Control> control = system.setControl(microphone, "Microphone Boost", Decibels(10));

    ASSERT_TRUE(control) << control.problem().sentence();
    EXPECT_THAT(levels(*control), testing::Each(10.0));
    const std::vector<Control> after = system.controls(microphone).value();
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after.back(), control.value());
    EXPECT_TRUE(std::equal(before.begin(), before.end() - 1, after.begin()));
    EXPECT_EQ(system.setControlMute(microphone, "Microphone Boost", true).problem().kind(),
              Problem::Kind::notSupported);
}

TEST_F(SystemHardware, SetsAControlByItsIdAndOneChannelOfIt)
{
    System& system = start("studio");
    const Control before = system.controls(endpoint("Main Monitors"))->front();

    const Result<Control> control =
        system.setControl(endpoint("Main Monitors"), before.id, LevelChange::down(Decibels(6)).onChannel(1));

    ASSERT_TRUE(control);
    EXPECT_EQ(levels(*control).front(), levels(before).front());
    EXPECT_EQ(levels(*control).at(1), levels(before).at(1) - 6);
}

TEST_F(SystemHardware, LeavesEveryControlAsItIsWhenItIsSetToWhatWasRead)
{
    System& system = start("studio");
    unsigned count = 0;
    for (const Endpoint& each : system.snapshot().endpoints())
    {
        for (const Control& control : system.controls(each.id()).value())
        {
            for (unsigned channel = 0; channel < control.channels->size(); ++channel)
            {
                const Level& level = control.channels->at(channel).level;
                const LevelChange change = LevelChange(*level.percent).onChannel(channel);
                const Result<Control> after = system.setControl(each.id(), control.id, change);

                EXPECT_EQ(after.value(), control);
                EXPECT_EQ(after.token(), 0u);
                ++count;
            }
        }
    }
    EXPECT_GT(count, 4u);
}

TEST_F(SystemHardware, ReportsAControlThatDoesNotExist)
{
    System& system = start("studio");

    EXPECT_EQ(system.setControl(endpoint("Main Monitors"), "Nothing", Decibels(-12)).problem().kind(),
              Problem::Kind::notThere);
    EXPECT_EQ(system.setControl(endpoint("Main Monitors"), ControlId("{nothing}"), Decibels(-12)).problem().kind(),
              Problem::Kind::notThere);
}

/// A call that fails once, in the walk of the setter: what it hides is there.
TEST_F(SystemHardware, NamesTheFailingCallThatHidesAControl)
{
    System& system = start("studio");
    const EndpointId monitors = endpoint("Main Monitors");
    const ControlId control = system.controls(monitors)->front().id;
    const auto hide = [this] { simulation().faults().fail("IDeviceTopology::GetConnectorCount", E_ABORT).at(1); };

    for (const Result<Control>& result : {(hide(), system.setControl(monitors, control, Decibels(-12))),
                                          (hide(), system.setControl(monitors, control.text(), Decibels(-12))),
                                          (hide(), system.setControlMute(monitors, control, true)),
                                          (hide(), system.setControlMute(monitors, control.text(), true))})
    {
        ASSERT_FALSE(result);
        EXPECT_EQ(result.problem().kind(), Problem::Kind::platform);
        EXPECT_EQ(result.problem().operation(), "IDeviceTopology::GetConnectorCount");
        EXPECT_EQ(result.problem().code(), E_ABORT);
        EXPECT_THAT(result.problem().sentence(), testing::HasSubstr("in the hardware that can be read"));
    }
    EXPECT_TRUE(system.setControl(monitors, control, Decibels(-12)));
}

TEST_F(SystemHardware, NamesTheFailingCallThatHidesAMute)
{
    System& system = start("studio");
    const EndpointId monitors = endpoint("Main Monitors");
    const ControlId control = system.controls(monitors)->front().id;
    ASSERT_TRUE(system.controls(monitors)->front().hasMute);
    simulation().faults().fail("IPart::Activate", E_ABORT).with({"IAudioMute"});

    const Result<Control> result = system.setControlMute(monitors, control, true);

    ASSERT_FALSE(result);
    EXPECT_EQ(result.problem().operation(), "IPart::Activate(IAudioMute)");
    EXPECT_EQ(result.problem().code(), E_ABORT);
}

/// A name that cannot be read hides no mute.
TEST_F(SystemHardware, BlamesNoNameForAControlWithoutAMute)
{
    System& system = start("studio");
    std::optional<Control> without;
    EndpointId owner;
    for (const Endpoint& each : system.snapshot().endpoints())
    {
        const Result<std::vector<Control>> controls = system.controls(each.id());
        if (!controls)
            continue;
        for (const Control& control : *controls)
        {
            if (!control.hasMute)
            {
                without = control;
                owner = each.id();
            }
        }
    }
    ASSERT_TRUE(without);
    simulation().faults().fail("IPart::GetName", E_ABORT);

    const Result<Control> result = system.setControlMute(owner, without->id, true);

    ASSERT_FALSE(result);
    EXPECT_EQ(result.problem().kind(), Problem::Kind::notSupported);
}

/// Without the service nothing is listed, which does not mean that nothing is there.
TEST_F(SystemHardware, NamesTheCallOfTheServiceThatHidesEverything)
{
    System& known = start("studio");
    const EndpointId monitors = endpoint("Main Monitors");
    const Settings settings = known.settings().value();
    constexpr HRESULT noService = static_cast<HRESULT>(0x800706BA);
    simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", noService);
    System system(options());

    const std::vector<Problem> problems = {system.setMute(monitors, true).problem(),
                                           system.select("Auxiliary Source", "Combo 3").problem(),
                                           system.watch(CardId("{nothing}")).problem()};
    const RestoreReport report = system.restore(settings).value();

    for (const Problem& problem : problems)
    {
        EXPECT_EQ(problem.kind(), Problem::Kind::platform);
        EXPECT_EQ(problem.code(), noService);
    }
    ASSERT_FALSE(report.settings.empty());
    for (const RestoredSetting& setting : report.settings)
        EXPECT_EQ(setting.outcome, RestoredSetting::Outcome::failed) << setting.what;
}

/// What the platform says of the control itself does not follow from a call elsewhere that fails.
TEST_F(SystemHardware, BlamesNoOtherCallForAControlWithoutChannels)
{
    System& system = start("studio");
    const EndpointId monitors = endpoint("Main Monitors");
    const ControlId control = system.controls(monitors)->front().id;
    simulation().faults().fail("IPart::GetName", E_ABORT);
    simulation().faults().lie("IAudioVolumeLevel::GetChannelCount", sim::Lie::ofNumber(0));

    const Result<Control> result = system.setControl(monitors, control, Decibels(-12));

    ASSERT_FALSE(result);
    EXPECT_EQ(result.problem().kind(), Problem::Kind::notSupported);
    EXPECT_EQ(result.problem().sentence(), "the control has no channels");
}

/// The inputs of the machine are not listed, and with them what leads to its selectors.
TEST_F(SystemHardware, NamesTheFailingListThatHidesACardAnEndpointOrASelector)
{
    System& known = start("studio");
    const Snapshot before = known.snapshot();
    const std::string selector = "Auxiliary Source";
    ASSERT_TRUE(known.select(selector, "Combo 3"));
    simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", E_ABORT).with({"eCapture"});
    System system(options());
    std::optional<Endpoint> hidden;
    for (const Endpoint& each : before.endpoints())
    {
        if (!system.snapshot().endpoint(each.id()))
            hidden = each;
    }
    ASSERT_TRUE(hidden);

    const std::vector<Problem> problems = {system.setMute(hidden->id(), true).problem(),
                                           system.controls(hidden->id()).problem(),
                                           system.select(CardId("{nothing}"), selector, "Combo 3").problem(),
                                           system.select("No Such Source", "Combo 3").problem()};

    for (const Problem& problem : problems)
    {
        EXPECT_EQ(problem.kind(), Problem::Kind::platform);
        EXPECT_EQ(problem.operation(), "IMMDeviceEnumerator::EnumAudioEndpoints(eCapture)");
        EXPECT_EQ(problem.code(), E_ABORT);
        EXPECT_THAT(problem.sentence(), testing::HasSubstr("among those that can be read"));
    }
}

/// Whatever the driver's code is: only an id that is odd itself hides nothing else.
TEST_F(SystemHardware, NamesTheIdThatCannotBeReadAndHidesAnEndpoint)
{
    const EndpointId id = start("desktop").snapshot().endpoints().front().id();
    simulation().faults().fail("IMMDevice::GetId", static_cast<HRESULT>(0x8007000D)).on(id.text());
    System unread(options());
    const Problem hidden = unread.setMute(id, true).problem();
    simulation().faults().clear();
    simulation().faults().lie("IMMDevice::GetId", sim::Lie::ofText(u"")).on(id.text());
    System odd(options());
    const Problem missing = odd.setMute(id, true).problem();

    EXPECT_EQ(hidden.kind(), Problem::Kind::platform);
    EXPECT_EQ(hidden.operation(), "IMMDevice::GetId");
    EXPECT_EQ(missing.kind(), Problem::Kind::notThere);
    EXPECT_EQ(odd.snapshot().problems().front().operation(), "IMMDevice::GetId(empty)");
}

TEST_F(SystemHardware, MutesAControlOrSaysThatItHasNoMute)
{
    System& system = start("studio");
    unsigned muted = 0;
    unsigned refused = 0;
    for (const Endpoint& each : system.snapshot().endpoints())
    {
        for (const Control& control : system.controls(each.id()).value())
        {
            const Result<Control> result = system.setControlMute(each.id(), control.id, true);
            if (control.hasMute)
            {
                EXPECT_EQ(result->isMuted, true);
                ++muted;
            }
            else
            {
                EXPECT_EQ(result.problem().kind(), Problem::Kind::notSupported);
                ++refused;
            }
        }
    }
    EXPECT_GT(muted + refused, 0u);
}

TEST_F(SystemHardware, ReportsTheCallOfAControlThatIsRefused)
{
    System& system = start("studio");
    const Control before = system.controls(endpoint("Main Monitors"))->front();
    simulation().faults().fail("IAudioVolumeLevel::SetLevelAllChannels", E_ACCESSDENIED);

    const Result<Control> result = system.setControl(endpoint("Main Monitors"), before.id, Decibels(-12));

    EXPECT_EQ(result.problem(),
              Problem::ofCall("IAudioVolumeLevel::SetLevelAllChannels", before.id.text(), E_ACCESSDENIED));
}

TEST_F(SystemHardware, SelectsAnInputAmongTheSelectorsOfAllCards)
{
    System& system = start("studio");

    const Result<Selector> selector = system.select("Auxiliary Source", "Combo 3");

    ASSERT_TRUE(selector);
    ASSERT_NE(selector->selected(), nullptr);
    EXPECT_THAT(selector->selected()->title(), testing::HasSubstr("Combo 3"));
}

TEST_F(SystemHardware, SelectsAnInputOfACard)
{
    System& system = start("studio");
    for (const Card& card : system.snapshot().cards())
    {
        for (const Selector& selector : system.selectors(card.id()).value())
        {
            for (const SelectorInput& input : selector.inputs)
            {
                const Result<Selector> chosen =
                    system.select(card.id(), selector.id.text(), std::to_string(input.number.value()));

                EXPECT_EQ(chosen->selection, input.number);
            }
        }
    }
    EXPECT_GT(simulation().journal().count("IAudioInputSelector::SetSelection"), 1u);
}

TEST_F(SystemHardware, ReportsASelectorAnInputOrACardThatDoesNotExist)
{
    System& system = start("studio");

    EXPECT_EQ(system.select("Nothing", "Combo 3").problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(system.select("Auxiliary Source", "Nothing").problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(system.select(CardId("{nothing}"), "Auxiliary Source", "Combo 3").problem().kind(),
              Problem::Kind::notThere);
}

TEST_F(SystemHardware, NamesTheFailingCallThatHidesASelector)
{
    System& system = start("studio");
    static_cast<void>(system.snapshot());
    const sim::PlannedFault fault = simulation().faults().fail("IDeviceTopology::GetSubunitCount", E_ABORT);

    const Result<Selector> result = system.select("Auxiliary Source", "Combo 3");

    ASSERT_GT(fault.fired(), 0u);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.problem().kind(), Problem::Kind::platform);
    EXPECT_EQ(result.problem().operation(), "IDeviceTopology::GetSubunitCount");
}

/// The selection is published before the selectors are read again, and no other owner has the snapshot before it.
TEST_F(SystemHardware, ChoosesAnInputOfAWatchedCardAmongAllCards)
{
    System& system = start("studio");
    std::vector<Watch> watches;
    for (const Card& card : system.snapshot().cards())
        watches.push_back(system.watch(card.id()).value());

    const Result<Selector> selector = system.select("Auxiliary Source", "Combo 3");

    ASSERT_TRUE(selector);
    EXPECT_THAT(selector->selected()->title(), testing::HasSubstr("Combo 3"));
}

TEST_F(SystemHardware, ReportsTheSelectionThatIsRefused)
{
    System& system = start("studio");
    simulation().faults().fail("IAudioInputSelector::SetSelection", E_ACCESSDENIED);

    const Result<Selector> result = system.select("Auxiliary Source", "Combo 3");

    EXPECT_EQ(result.problem().operation(), "IAudioInputSelector::SetSelection");
    EXPECT_EQ(result.problem().code(), E_ACCESSDENIED);
}

/// A connector has the id that stands for the selector, which has none.
TEST_F(SystemHardware, ReportsASelectorThatAnotherPartHidesByItsId)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Analog Audio");
    static_cast<void>(card.microphone());
    sim::Subunit source;
    source.name = "Source";
    source.subType = KSNODETYPE_MUX;
    source.selector.emplace();
    const std::string selector = card.subunit(source);
    const std::string input = card.connector(sim::OptionalString("Line In"), KSNODETYPE_LINE_CONNECTOR, In);
    card.chain({input, selector});
    sim::Machine machine = builder.build();
    sim::Adapter& adapter = machine.adapters.front();
    std::string standIn;
    for (sim::Subunit& subunit : adapter.topology->subunits)
    {
        if (subunit.id != selector)
            continue;
        subunit.reportsId = false;
        standIn = adapter.id + "#" + std::to_string(subunit.localId);
        std::replace(subunit.incoming.begin(), subunit.incoming.end(), input, standIn);
    }
    for (sim::Connector& connector : adapter.topology->connectors)
    {
        if (connector.id == input)
            connector.id = standIn;
    }
    play(machine);
    m_system = std::make_unique<System>(options());
    ASSERT_EQ(m_system->selectors(m_system->snapshot().cards().at(0).id())->size(), 1u);

    const Result<Selector> result = m_system->select("Source", "Line In");

    ASSERT_FALSE(result);
    EXPECT_EQ(result.problem().operation(), "IPart::GetGlobalId");
    EXPECT_EQ(result.problem().sentence(),
              "the selector cannot be opened in the hardware that can be read: IPart::GetGlobalId failed: 0x80004003, "
              "success without a result");
    EXPECT_EQ(simulation().journal().count("IAudioInputSelector::SetSelection"), 0u);
}

TEST_F(SystemHardware, IsOpenToAnOrdinaryAccount)
{
    System& system = start("studio");
    simulation().setAccount(sim::Account::ordinary);

    EXPECT_TRUE(system.setControl(endpoint("Main Monitors"), "Line Out 1/2", Decibels(-12)));
    EXPECT_TRUE(system.select("Auxiliary Source", "Combo 3"));
}

TEST_F(SystemHardware, ShowsTheVolumeThatAControlImplements)
{
    sim::MachineBuilder builder;
    sim::EndpointBuilder speaker = builder.card("Analog Audio").speaker();
    speaker.hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).volumeInHardware();
    play(builder.build());
    System system(options());
    const EndpointId id(speaker.id());
    const Control control = system.controls(id)->front();

    ASSERT_TRUE(system.setControl(id, control.id, Decibels(-12)));

    EXPECT_EQ(system.snapshot().endpoint(id)->volume()->master.decibels, Decibels(-12));
}
}
