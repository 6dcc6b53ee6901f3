#include "sonavit/endpoint.h"

#include "sonavit/contentfields.h"
#include "tests/client/sonavit/supportsnapshots.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

using namespace sonavit;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
Endpoint named(const std::optional<std::string>& description, const std::optional<std::string>& interfaceName)
{
    Endpoint::Content content;
    content.id = EndpointId("{a}");
    content.description = description;
    content.interfaceName = interfaceName;
    return Endpoint(content);
}
}

TEST(EndpointName, IsDescriptionAndInterfaceNameOrTheOneThatThereIs)
{
    EXPECT_EQ("Speakers (Analog Audio)", named("Speakers", "Analog Audio").name());
    EXPECT_EQ("Speakers", named("Speakers", std::nullopt).name());
    EXPECT_EQ("Analog Audio", named(std::nullopt, "Analog Audio").name());
    EXPECT_EQ(std::nullopt, named(std::nullopt, std::nullopt).name());
}

TEST(EndpointTitle, IsNeverEmpty)
{
    Endpoint::Content content;
    content.flow = Flow::input;

    EXPECT_EQ("Speakers (Analog Audio)", named("Speakers", "Analog Audio").title());
    EXPECT_EQ("unnamed output {a}", named(std::nullopt, std::nullopt).title());
    EXPECT_EQ("unnamed output {a}", named("", std::nullopt).title());
    EXPECT_EQ("unnamed input", Endpoint(content).title());
    EXPECT_EQ("a\xEF\xBF\xBD"
              "b",
              named("a\nb", std::nullopt).title());
}

TEST(Endpoint, IsAnOutputWithoutIdAndNameByDefault)
{
    const Endpoint endpoint;

    EXPECT_TRUE(endpoint.id().isEmpty());
    EXPECT_EQ(Flow::output, endpoint.flow());
    EXPECT_EQ(std::nullopt, endpoint.state());
    EXPECT_FALSE(endpoint.isActive());
    EXPECT_EQ(std::nullopt, endpoint.jackKind());
    EXPECT_EQ("unnamed output", endpoint.title());
}

TEST(Endpoint, SharesItsContentWithItsCopies)
{
    const Endpoint endpoint = named("Speakers", std::nullopt);
    const Endpoint copy = endpoint;

    EXPECT_EQ(&endpoint.content(), &copy.content());
    EXPECT_EQ(endpoint, copy);
}

TEST(Endpoint, HasTheKindOfItsFirstJack)
{
    Endpoint::Content content;
    content.jacks.resize(2);
    content.jacks[1].type = guidOf(NodeKind::spdif);
    EXPECT_EQ(std::nullopt, Endpoint(content).jackKind());
    content.jacks[0].type = guidOf(NodeKind::headphones);
    EXPECT_EQ(NodeKind::headphones, Endpoint(content).jackKind());
    content.jacks[0].type = Guid{1, 2, 3, {}};
    EXPECT_EQ(NodeKind::other, Endpoint(content).jackKind());
}

TEST(EndpointProblems, AreFoundByTheirField)
{
    Endpoint::Content content;
    content.problems.push_back({EndpointField::volume, Problem::ofCall("first", "", 1)});
    content.problems.push_back({EndpointField::volume, Problem::ofCall("second", "", 1)});
    const Endpoint endpoint(content);

    EXPECT_EQ("first", endpoint.problemWith(EndpointField::volume)->operation());
    EXPECT_EQ(std::nullopt, endpoint.problemWith(EndpointField::format));
    EXPECT_EQ(2u, endpoint.problems().size());
}

/// The platform is not asked for the volume of an endpoint that may be absent.
TEST(EndpointProblems, AreThatOfTheStateForWhatOnlySomeStatesHave)
{
    const Problem unreadable = Problem::ofCall("IMMDevice::GetState", "{id}", 1);
    Endpoint::Content content;
    content.problems.push_back({EndpointField::state, unreadable});
    const Endpoint unknown(content);
    content.volume.emplace();
    const Endpoint withVolume(content);
    content.state = State::disabled;
    content.volume.reset();
    const Endpoint known(content);

    EXPECT_EQ(unreadable, unknown.problemWith(EndpointField::volume));
    EXPECT_EQ(unreadable, unknown.problemWith(EndpointField::jacks));
    EXPECT_EQ(std::nullopt, unknown.problemWith(EndpointField::format));
    EXPECT_EQ(std::nullopt, withVolume.problemWith(EndpointField::volume));
    EXPECT_EQ(std::nullopt, known.problemWith(EndpointField::volume));
}

TEST(Endpoint, IsEqualIfEachFieldIs)
{
    support::SnapshotGenerator generator(3);
    std::set<EndpointField> different;
    for (int i = 0; i < 200; ++i)
    {
        const Endpoint endpoint = generator.endpoint();
        const Endpoint::Content other = generator.endpoint().content();
        for (const EndpointField field : allEndpointFields)
        {
            Endpoint::Content content = endpoint.content();
            copyField(content, other, field);
            const bool isSame = hasSameField(content, endpoint.content(), field);
            ASSERT_EQ(isSame, Endpoint(content) == endpoint) << field;
            if (!isSame)
                different.insert(field);
        }
    }
    EXPECT_EQ(allEndpointFields.size(), different.size());
}

TEST(Roles, AreASet)
{
    Roles roles;
    EXPECT_TRUE(roles.isEmpty());
    roles.add(Role::communications).add(Role::console).add(Role::console);

    EXPECT_TRUE(roles.contains(Role::console));
    EXPECT_FALSE(roles.contains(Role::multimedia));
    EXPECT_THAT(roles.list(), ElementsAre(Role::console, Role::communications));
    EXPECT_NE(roles, Roles());
}

TEST(Roles, IgnoreNumbersWithoutNames)
{
    Roles roles;
    roles.add(static_cast<Role>(3)).add(static_cast<Role>(-1)).add(static_cast<Role>(1000));

    EXPECT_TRUE(roles.isEmpty());
    EXPECT_FALSE(roles.contains(static_cast<Role>(32)));
    EXPECT_THAT(roles.list(), IsEmpty());
}

TEST(EndpointEnumerations, HaveKeysAndWords)
{
    EXPECT_STREQ("render", keyOf(Flow::output));
    EXPECT_STREQ("capture", keyOf(Flow::input));
    EXPECT_STREQ("output", wordsOf(Flow::output));
    EXPECT_STREQ("notPresent", keyOf(State::notPresent));
    EXPECT_STREQ("not present", wordsOf(State::notPresent));
    EXPECT_STREQ("communications", keyOf(Role::communications));
    EXPECT_STREQ("multimedia", wordsOf(Role::multimedia));
    EXPECT_STREQ("directSoundId", keyOf(EndpointField::directSoundId));
    EXPECT_STREQ("DirectSound id", wordsOf(EndpointField::directSoundId));
    EXPECT_STREQ("problems", keyOf(EndpointField::problems));
}

TEST(EndpointEnumerations, SurviveNumbersWithoutNames)
{
    for (const int number : {-1, 17, 1000})
    {
        EXPECT_STREQ("unknown", keyOf(static_cast<Flow>(number)));
        EXPECT_STREQ("unknown", wordsOf(static_cast<Flow>(number)));
        EXPECT_STREQ("unknown", keyOf(static_cast<State>(number)));
        EXPECT_STREQ("unknown", wordsOf(static_cast<State>(number)));
        EXPECT_STREQ("unknown", keyOf(static_cast<Role>(number)));
        EXPECT_STREQ("unknown", wordsOf(static_cast<Role>(number)));
        EXPECT_STREQ("unknown", keyOf(static_cast<EndpointField>(number)));
        EXPECT_STREQ("unknown", wordsOf(static_cast<EndpointField>(number)));
    }
}

TEST(InternalContainer, IsThatOfTheComputer)
{
    EXPECT_TRUE(isInternalContainer(*Guid::parse("{00000000-0000-0000-FFFF-FFFFFFFFFFFF}")));
    EXPECT_FALSE(isInternalContainer(Guid()));
}

TEST(Endpoint, IsPrintedWithAllFieldsThatHaveAValue)
{
    Endpoint::Content content;
    content.id = EndpointId("{a}");
    content.description = "Speakers";
    content.state = State::active;
    content.roles.add(Role::console);
    content.waveId = 48000;
    content.problems.push_back({EndpointField::volume, Problem(Problem::Kind::internal, "", "", "out of luck")});
    std::ostringstream out;
    out << Endpoint(content);

    EXPECT_EQ("Endpoint(id: \"{a}\", description: \"Speakers\", flow: output, state: active, roles: console, "
              "waveId: 48000, problems: [volume: out of luck])",
              out.str());
}

TEST(Endpoint, IsPrintedWithTheNameOfEachField)
{
    support::SnapshotGenerator generator(4);
    std::set<std::string> missing;
    for (const EndpointField field : allEndpointFields)
        missing.insert(keyOf(field));
    for (int i = 0; i < 50; ++i)
    {
        std::ostringstream out;
        out << generator.endpoint();
        for (const EndpointField field : allEndpointFields)
        {
            if (out.str().find(std::string(keyOf(field)) + ": ") != std::string::npos)
                missing.erase(keyOf(field));
        }
    }
    EXPECT_THAT(missing, IsEmpty());
}

TEST(Endpoint, CanBeAssignedToAndDestroyedAfterItWasMovedFrom)
{
    Endpoint::Content content;
    content.description = "Speakers";
    Endpoint endpoint(content);
    const Endpoint moved = std::move(endpoint);
    Endpoint forgotten(content);
    static_cast<void>(Endpoint(std::move(forgotten)));

    endpoint = moved;

    EXPECT_EQ(moved, endpoint);
}
