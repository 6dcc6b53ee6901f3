#include "tests/client/changing/supportchanges.h"
#include "tests/client/changing/supportsettings.h"

#include <map>
#include <string>

namespace
{
using namespace sonavit;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Not;
using SavedSettings = support::SettingsTest;
using SavedSettingsOfDesk = support::SettingsOfDeskTest;

const Settings::EndpointSetting& settingOf(const Settings& settings, const std::string& name)
{
    for (const Settings::EndpointSetting& setting : settings.endpoints)
    {
        if (setting.name == name)
            return setting;
    }
    throw std::logic_error(name);
}

std::vector<std::string> controlNames(const Settings::EndpointSetting& setting)
{
    std::vector<std::string> names;
    for (const Settings::ControlSetting& control : setting.controls)
        names.push_back(control.name);
    return names;
}

TEST_F(SavedSettingsOfDesk, SayWhichWayTheSoundGoes)
{
    const Settings settings = startDesk().settings().value();

    EXPECT_EQ(settings.endpoints.at(0).flow, Flow::output);
    EXPECT_EQ(settings.endpoints.at(1).flow, Flow::input);
}

/// Else a person who changes the master level wonders why nothing happens: the levels of the channels go before it.
TEST_F(SavedSettingsOfDesk, HaveNoMasterLevelThatTheChannelsTell)
{
    const Settings settings = startDesk().settings().value();

    for (const Settings::EndpointSetting& setting : settings.endpoints)
    {
        EXPECT_FALSE(setting.channels.empty());
        EXPECT_FALSE(setting.master.has_value()) << setting.name;
    }
}

TEST_F(SavedSettingsOfDesk, HaveTheMasterLevelIfTheChannelsCannotBeRead)
{
    System& system = startDesk();
    simulation().faults().fail("IAudioEndpointVolume::GetChannelVolumeLevel", E_FAIL);
    simulation().faults().fail("IAudioEndpointVolume::GetChannelVolumeLevelScalar", E_FAIL);

    EXPECT_EQ(system.settings()->endpoints.at(0).master, Decibels(-20));
}

TEST_F(SavedSettings, ContainEachControlOnceWhereItIsNearestToTheJack)
{
    System& system = start(sim::findMachine("studio"));
    std::map<std::string, unsigned> counts;
    for (const Endpoint& endpoint : system.snapshot().endpoints())
    {
        for (const Control& control : system.controls(endpoint.id()).value())
            counts[control.id.text()] = 0;
    }
    const std::size_t all = counts.size();

    const Settings settings = system.settings().value();

    for (const Settings::EndpointSetting& setting : settings.endpoints)
    {
        for (const Settings::ControlSetting& control : setting.controls)
            ++counts[control.id];
    }
    EXPECT_EQ(counts.size(), all);
    for (const auto& [id, count] : counts)
        EXPECT_EQ(count, 1u) << id;
    EXPECT_THAT(controlNames(settingOf(settings, "Microphone 3 (Studio Interface)")),
                ElementsAre("Combo 3: Preamp 3", "Trim 3"));
    EXPECT_THAT(controlNames(settingOf(settings, "Microphone 4 (Studio Interface)")),
                ElementsAre("Combo 4: Preamp 4", "Trim 4"));
    EXPECT_THAT(controlNames(settingOf(settings, "Line 3/4 (Studio Interface)")),
                ElementsAre("Line In 3/4: Line Trim 3/4"));
}

/// The line input is first in the list, and the boost of the microphone is the only level that acts on either of them.
TEST_F(SavedSettings, ContainALevelBetweenNodesWhereTheWayFromTheJackLeadsToIt)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder lineIn = card.lineIn();
    sim::EndpointBuilder microphone = card.microphone();
    sim::Subunit node;
    node.subType = KSNODETYPE_SUM;
    microphone.node(node);
    sim::Subunit boost;
    boost.name = sim::OptionalString("Boost");
    boost.subType = KSNODETYPE_VOLUME;
    boost.volume = sim::VolumeControl{{sim::ChannelLevel{0, 30, 10, 20}}};
    microphone.node(boost);
    microphone.node(node);
    const std::string last = card.adapter().topology->subunits[2].id;
    builder.machine().part(lineIn.jackId())->outgoing.push_back(last);
    card.adapter().topology->signalPaths.push_back({lineIn.jackId(), microphone.streamId(), {}, false});
    System& system = start(builder.build());
    ASSERT_EQ(system.controls(EndpointId(lineIn.id()))->size(), 1u);

    const Settings settings = system.settings().value();

    EXPECT_THAT(controlNames(settingOf(settings, "Microphone (Codec)")), ElementsAre("Boost"));
    EXPECT_THAT(controlNames(settingOf(settings, "Line In (Codec)")), testing::IsEmpty());
}
}
