#include "sonavit/change.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;

namespace
{
Endpoint::Content speakers()
{
    Endpoint::Content content;
    content.id = EndpointId("{a}");
    content.description = "Speakers";
    content.interfaceName = "Analog Audio";
    return content;
}

Volume volumeOf(double percent, double decibels)
{
    Volume volume;
    volume.master = {Percent(percent), Decibels(decibels)};
    return volume;
}

Snapshot snapshot(const Endpoint::Content& endpoint)
{
    Card::Content card;
    card.id = CardId("card");
    card.title = "Analog Audio";
    card.endpoints.emplace_back(endpoint);
    Snapshot::Content content;
    content.cards.emplace_back(card);
    return Snapshot(content);
}

/// One line for each event that leads from the speakers to others.
std::string sentences(const Endpoint::Content& before, const Endpoint::Content& after)
{
    std::ostringstream out;
    out << difference(snapshot(before), snapshot(after));
    return out.str();
}

std::string sentences(const Snapshot& before, const Snapshot& after)
{
    std::ostringstream out;
    out << difference(before, after);
    return out.str();
}
}

TEST(EventSentence, ShowsAVolumeBeforeAndAfter)
{
    Endpoint::Content before = speakers();
    before.volume = volumeOf(40, -18);
    Endpoint::Content after = speakers();
    after.volume = volumeOf(45, -16.5);
    after.volume->isMuted = true;

    EXPECT_EQ("Speakers (Analog Audio): volume 40% (-18.00 dB) -> 45% (-16.50 dB), muted\n", sentences(before, after));
}

TEST(EventSentence, SaysIfAVolumeChangedInItsChannelsAlone)
{
    Endpoint::Content before = speakers();
    before.volume = volumeOf(40, -18);
    Endpoint::Content after = before;
    after.volume->channels.emplace(2);

    EXPECT_EQ("Speakers (Analog Audio): volume 40% (-18.00 dB), details changed\n", sentences(before, after));
}

TEST(EventSentence, ShowsEachFieldInWords)
{
    Endpoint::Content after = speakers();
    after.state = State::notPresent;
    after.roles.add(Role::console).add(Role::multimedia);
    after.jacks.resize(2);
    after.jacks[0].type = guidOf(NodeKind::headphones);
    after.format = Format::integer(24, 48000, 2);
    after.speakers = 0x60F;
    after.waveId = 48000;
    after.container = Guid();
    after.driverNode = "line\nbreak";
    after.problems.push_back({EndpointField::volume, Problem::ofCall("IMMDevice::Activate", "", -2147024891)});

    EXPECT_EQ("Speakers (Analog Audio): state - -> not present\n"
              "Speakers (Analog Audio): roles - -> console and multimedia\n"
              "Speakers (Analog Audio): jacks - -> Headphones; Jack\n"
              "Speakers (Analog Audio): format - -> 48000 Hz, 24 bit, 2 channels (stereo)\n"
              "Speakers (Analog Audio): speakers - -> 5.1 surround\n"
              "Speakers (Analog Audio): wave id - -> 48000\n"
              "Speakers (Analog Audio): driver node - -> line\xEF\xBF\xBD"
              "break\n"
              "Speakers (Analog Audio): container - -> {00000000-0000-0000-0000-000000000000}\n"
              "Speakers (Analog Audio): problems - -> volume: IMMDevice::Activate failed: 0x80070005, access denied\n",
              sentences(speakers(), after));
}

TEST(EventSentence, ShowsArrivalsAndDepartures)
{
    Endpoint::Content active = speakers();
    active.state = State::active;

    EXPECT_EQ("Analog Audio: card added\nSpeakers (Analog Audio): added, active\n",
              sentences(Snapshot(), snapshot(active)));
    EXPECT_EQ("Speakers (Analog Audio): removed\nAnalog Audio: card removed\n",
              sentences(snapshot(active), Snapshot()));
    active.incarnation = 1;
    EXPECT_EQ("Speakers (Analog Audio): vanished and came back\nSpeakers (Analog Audio): state - -> active\n",
              sentences(speakers(), active));
}

TEST(EventSentence, ShowsMoves)
{
    Card::Content one;
    one.id = CardId("1");
    one.title = "One";
    one.endpoints.emplace_back(speakers());
    Card::Content two;
    two.id = CardId("2");
    two.title = "Two";
    Snapshot::Content before;
    before.cards = {Card(one), Card(two)};
    Snapshot::Content turned;
    turned.cards = {Card(two), Card(one)};
    Snapshot::Content transferred = before;
    std::swap(one.endpoints, two.endpoints);
    transferred.cards = {Card(one), Card(two)};

    EXPECT_EQ("Two: card moved to place 1\n", sentences(Snapshot(before), Snapshot(turned)));
    EXPECT_EQ("Speakers (Analog Audio): moved to another card\n", sentences(Snapshot(before), Snapshot(transferred)));
}

TEST(EventSentence, ShowsWhatChangedOfACard)
{
    Card::Content card;
    card.id = CardId("1");
    Snapshot::Content before;
    before.cards.emplace_back(card);
    card.instanceId = "USB\\1";
    Snapshot::Content after;
    after.cards.emplace_back(card);

    EXPECT_EQ("Unnamed card: instance id - -> USB\\1\n", sentences(Snapshot(before), Snapshot(after)));
}

TEST(EventSentence, ShowsDefaultsServiceHardwareAndProblems)
{
    const Snapshot before = snapshot(speakers());
    Snapshot::Content after = before.content();
    after.defaults[1][2] = EndpointId("{unknown}");
    after.defaults[0][0] = EndpointId("{a}");
    after.hardware.resize(1);
    after.hardware[0].card = CardId("card");
    after.service = Service::stopped;
    after.problems.emplace_back(Problem::Kind::noAnswer, "snapshot", "", "no answer yet");

    EXPECT_EQ("default output for console: none -> Speakers (Analog Audio)\n"
              "default input for communications: none -> unnamed input {unknown}\n"
              "hardware of card: watched\n"
              "audio service: stopped\n"
              "problems of the computer: no answer yet\n",
              sentences(before, Snapshot(after)));
    EXPECT_EQ("default output for console: Speakers (Analog Audio) -> none\n"
              "default input for communications: unnamed input {unknown} -> none\n"
              "hardware of card: no longer watched\n"
              "audio service: running\n"
              "problems of the computer: none\n",
              sentences(Snapshot(after), before));
}

TEST(EventSentence, SurvivesEventsWithoutMembersAndNumbersWithoutNames)
{
    for (int kind = -1; kind <= static_cast<int>(Event::Kind::problemsChanged) + 1; ++kind)
    {
        Event event;
        event.kind = static_cast<Event::Kind>(kind);
        event.field = static_cast<EndpointField>(99);
        event.flow = static_cast<Flow>(99);

        EXPECT_FALSE(event.sentence().empty()) << kind;
    }
}
