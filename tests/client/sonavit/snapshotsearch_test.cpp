#include "sonavit/snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{
constexpr auto accessDenied = static_cast<std::int32_t>(0x80070005);

Endpoint::Content endpoint(const std::string& id, const std::string& description, const std::string& interfaceName)
{
    Endpoint::Content content;
    content.id = EndpointId(id);
    content.flow = id.find("{0.0.1.") == 0 ? Flow::input : Flow::output;
    if (!description.empty())
        content.description = description;
    if (!interfaceName.empty())
        content.interfaceName = interfaceName;
    return content;
}

class SnapshotSearch : public testing::Test
{
protected:
    SnapshotSearch()
    {
        add("{0.0.0.00000000}.{aaaaaaaa-0000}", "Speakers", "Analog Audio");
        add("{0.0.0.00000000}.{bbbbbbbb-0000}", "Rear Speakers", "Analog Audio");
        add("{0.0.1.00000000}.{cccccccc-0000}", "Microphone", "USB Headset");
        add("{0.0.1.00000000}.{CCCCCCCC-0000}", "Twin", "USB Headset");
        add("{0.0.1.00000000}.{dddddddd-0000}", "", "");
    }

    void add(const std::string& id, const std::string& description, const std::string& interfaceName)
    {
        endpoints.push_back(endpoint(id, description, interfaceName));
    }

    Snapshot snapshot() const
    {
        Card::Content card;
        card.id = CardId("card");
        for (const Endpoint::Content& one : endpoints)
            card.endpoints.emplace_back(one);
        Snapshot::Content content;
        content.cards.emplace_back(card);
        return Snapshot(content);
    }

    std::string found(const std::string& name) const
    {
        const Result<Endpoint> result = snapshot().endpointNamed(name);
        return result ? result->id().text() : result.problem().sentence();
    }

    Problem::Kind problemKind(const std::string& name) const { return snapshot().endpointNamed(name).problem().kind(); }

    std::vector<Endpoint::Content> endpoints;
};
}

TEST_F(SnapshotSearch, FindsAWholeIdInAnyCase)
{
    EXPECT_EQ(endpoints[0].id.text(), found("{0.0.0.00000000}.{aaaaaaaa-0000}"));
    EXPECT_EQ(endpoints[0].id.text(), found("{0.0.0.00000000}.{AAAAAAAA-0000}"));
}

TEST_F(SnapshotSearch, PrefersTheExactSpelling)
{
    EXPECT_EQ(endpoints[2].id.text(), found("{0.0.1.00000000}.{cccccccc-0000}"));
    EXPECT_EQ(endpoints[3].id.text(), found("{0.0.1.00000000}.{CCCCCCCC-0000}"));
}

TEST_F(SnapshotSearch, PrefersAWholeNameToAPartOfOne)
{
    EXPECT_EQ(endpoints[0].id.text(), found("speakers"));
    EXPECT_EQ(endpoints[0].id.text(), found("Speakers (Analog Audio)"));
}

TEST_F(SnapshotSearch, FindsAPartThatNoOtherHas)
{
    EXPECT_EQ(endpoints[1].id.text(), found("rear"));
    EXPECT_EQ(endpoints[4].id.text(), found("dddd"));
    EXPECT_EQ(endpoints[2].id.text(), found("phone (USB"));
}

TEST_F(SnapshotSearch, NamesTheCandidatesForWhatIsAmbiguous)
{
    EXPECT_EQ(Problem::Kind::ambiguous, problemKind("Analog"));
    EXPECT_EQ("\"Analog\" matches 2 endpoints: Speakers (Analog Audio) {0.0.0.00000000}.{aaaaaaaa-0000} (output) and "
              "Rear Speakers (Analog Audio) {0.0.0.00000000}.{bbbbbbbb-0000} (output)",
              found("Analog"));
}

TEST_F(SnapshotSearch, NamesNoMoreThanSixCandidates)
{
    for (int i = 0; i < 8; ++i)
        add("{x" + std::to_string(i) + "}", "Output", "Card");

    EXPECT_THAT(found("Output"), StartsWith("\"Output\" matches 8 endpoints: Output (Card) {x0} (output), "));
    EXPECT_THAT(found("Output"), HasSubstr("{x5} (output) and 2 more"));
    EXPECT_THAT(found("Output"), Not(HasSubstr("{x6}")));
}

TEST_F(SnapshotSearch, CutsLongNamesOfCandidates)
{
    add("{one}", std::string(200, 'x'), "");
    add("{two}", std::string(200, 'x'), "");

    EXPECT_EQ("\"xxxx\" matches 2 endpoints: " + std::string(59, 'x') + "\xE2\x80\xA6 {one} (output) and " +
                  std::string(59, 'x') + "\xE2\x80\xA6 {two} (output)",
              found("xxxx"));
}

TEST_F(SnapshotSearch, ConsidersOneFlowAloneIfAskedTo)
{
    add("{0.0.0.00000000}.{eeeeeeee-0000}", "Headphones", "USB Headset");
    const auto found = [this](const char* name, std::optional<Flow> flow)
    {
        const Result<Endpoint> result = snapshot().endpointNamed(name, flow);
        return result ? result->description().value_or("") : result.problem().sentence();
    };

    EXPECT_THAT(found("usb headset", std::nullopt), HasSubstr("matches 3 endpoints: "));
    EXPECT_EQ("Headphones", found("usb headset", Flow::output));
    EXPECT_THAT(found("usb headset", Flow::input), HasSubstr("matches 2 inputs: "));
    EXPECT_EQ("there is no input \"Rear\"", found("Rear", Flow::input));
    EXPECT_EQ("there is no output \"{0.0.1.00000000}.{dddddddd-0000}\"",
              found("{0.0.1.00000000}.{dddddddd-0000}", Flow::output));
}

TEST_F(SnapshotSearch, RefusesWhatNamesNothing)
{
    EXPECT_EQ(Problem::Kind::notThere, problemKind("Trumpet"));
    EXPECT_EQ("there is no endpoint \"Trumpet\"", found("Trumpet"));
    EXPECT_EQ(Problem::Kind::notThere, problemKind(""));
    EXPECT_EQ("the name of the endpoint is empty", found(""));
}

TEST_F(SnapshotSearch, SaysThatAnUnreadableEndpointMayBeTheOne)
{
    endpoints.back().problems.push_back(
        {EndpointField::description, Problem::ofCall("IPropertyStore::GetValue", "{d}", accessDenied)});

    const Problem problem = snapshot().endpointNamed("Trum\npet").problem();

    EXPECT_EQ(Problem::Kind::platform, problem.kind());
    EXPECT_EQ(accessDenied, problem.code());
    EXPECT_EQ("IPropertyStore::GetValue", problem.operation());
    EXPECT_EQ("the endpoint \"Trum\\npet\" cannot be found, as the system fails to report the name of 1 endpoint: "
              "0x80070005, access denied",
              problem.sentence());
    EXPECT_EQ(endpoints[0].id.text(), found("speakers"));
}

TEST_F(SnapshotSearch, IgnoresProblemsWithWhatIsNoName)
{
    endpoints.back().problems.push_back(
        {EndpointField::volume, Problem::ofCall("IMMDevice::Activate", "", accessDenied)});

    EXPECT_EQ("there is no endpoint \"Trumpet\"", found("Trumpet"));
}

namespace
{
/// Two cards of the same name, and one without endpoints.
Snapshot threeCards()
{
    Card::Content first;
    first.id = CardId("{1}.USB\\VID_1\\A");
    first.instancePath = "{1}.USB\\VID_1\\A";
    first.instanceId = "USB\\VID_1\\A";
    first.parent = "USB\\ROOT";
    first.title = "Headset";
    Endpoint::Content speakers = endpoint("{out}", "Speakers", "Headset");
    speakers.waveId = 0;
    speakers.container = Guid::parse("{00000000-0000-0000-0000-000000000001}");
    speakers.directSoundId = Guid::parse("{00000000-0000-0000-0000-000000000002}");
    first.endpoints.emplace_back(speakers);
    Endpoint::Content microphone = endpoint("{0.0.1.in}", "Microphone", "Headset");
    microphone.container = speakers.container;
    first.endpoints.emplace_back(microphone);

    Card::Content second;
    second.id = CardId("{1}.USB\\VID_1\\B");
    second.instanceId = "USB\\VID_1\\B";
    second.title = "Headset";
    Endpoint::Content other = endpoint("{0.0.1.other}", "Microphone", "Headset");
    other.waveId = 0;
    other.instancePath = "{1}.USB\\VID_1\\B";
    second.endpoints.emplace_back(other);

    Snapshot::Content content;
    content.cards = {Card(first), Card(second), Card()};
    return Snapshot(content);
}

std::string foundCard(const std::string& name)
{
    const Result<Card> result = threeCards().cardNamed(name);
    return result ? result->id().text() : result.problem().sentence();
}

/// "{id} by kind", one line each.
std::string foundBy(std::string_view id)
{
    std::string result;
    for (const Match& match : threeCards().find(id))
        result += match.place.endpoint.id().text() + " by " + keyOf(match.by) + "\n";
    return result;
}
}

TEST(SnapshotCardNamed, FindsIdsTitlesAndPartsOfThem)
{
    EXPECT_EQ("{1}.USB\\VID_1\\A", foundCard("{1}.usb\\vid_1\\a"));
    EXPECT_EQ("{1}.USB\\VID_1\\B", foundCard("USB\\VID_1\\B"));
    EXPECT_EQ("{1}.USB\\VID_1\\B", foundCard("1\\B"));
    EXPECT_EQ("", foundCard("Unnamed card"));
    EXPECT_EQ("there is no card \"Trumpet\"", foundCard("Trumpet"));
    EXPECT_EQ("the name of the card is empty", foundCard(""));
}

TEST(SnapshotCardNamed, NamesTheCandidatesWithTheirInstanceIds)
{
    EXPECT_EQ("\"headset\" matches 2 cards: Headset USB\\VID_1\\A and Headset USB\\VID_1\\B", foundCard("headset"));
}

TEST(SnapshotFind, FindsAnEndpointByItsOwnIds)
{
    EXPECT_EQ("{out} by endpointId\n", foundBy("{OUT}"));
    EXPECT_EQ("{out} by directSoundId\n", foundBy("{00000000-0000-0000-0000-000000000002}"));
    EXPECT_EQ("{out} by directSoundId\n", foundBy("00000000-0000-0000-0000-000000000002"));
}

TEST(SnapshotFind, FindsTheEndpointsOfBothFlowsByAWaveId)
{
    EXPECT_EQ("{out} by waveId\n{0.0.1.other} by waveId\n", foundBy("0"));
    EXPECT_EQ("", foundBy("4294967296")); // larger than any
    EXPECT_EQ("", foundBy("-0"));
}

TEST(SnapshotFind, FindsAllEndpointsOfACardOrAContainer)
{
    EXPECT_EQ("{out} by cardId\n{0.0.1.in} by cardId\n", foundBy("{1}.USB\\VID_1\\a"));
    EXPECT_EQ("{out} by instanceId\n{0.0.1.in} by instanceId\n", foundBy("USB\\VID_1\\A"));
    EXPECT_EQ("{out} by parent\n{0.0.1.in} by parent\n", foundBy("usb\\root"));
    EXPECT_EQ("{out} by container\n{0.0.1.in} by container\n", foundBy("{00000000-0000-0000-0000-000000000001}"));
}

TEST(SnapshotFind, FindsWholeIdsAlone)
{
    EXPECT_THAT(threeCards().find("{ou"), IsEmpty());
    EXPECT_THAT(threeCards().find("USB"), IsEmpty());
    EXPECT_THAT(threeCards().find(""), IsEmpty());
}
