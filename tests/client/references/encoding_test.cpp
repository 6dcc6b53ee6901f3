#include "client/references/encoding.h"

#include "client/references/base64url.h"
#include "client/references/hash.h"
#include "tests/client/references/computer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace
{
using namespace sonavit;
using namespace sonavit::test;
using testing::HasSubstr;
using testing::StartsWith;

Device studio()
{
    Device device;
    device.instanceId = "USB\\VID_6986&PID_2A88&MI_00\\7&80B5C08&0&0000";
    device.parent = "USB\\VID_6986&PID_2A88\\STUDIO-0001";
    device.container = Guid::parse("{5E2A7C14-0B9D-5F36-8C41-3D6F92A8E705}");
    device.endpoints = {{"{0.0.0.00000000}.{FB7D6D0A-2A3E-4B2C-9C52-0F0A4C6A2B11}"}};
    return device;
}

Reference studioReference()
{
    return referenceTo(computer({studio()}), studio().endpoints[0].id);
}

/// A text with a correct checksum for any bytes.
std::string textWith(const std::string& fields)
{
    const std::uint32_t hash = references::hash32(fields);
    std::string bytes = fields;
    for (unsigned i = 0; i < 4; ++i)
        bytes.push_back(static_cast<char>(static_cast<unsigned char>((hash >> (8 * i)) & 0xFFU)));
    return "snv1:" + references::base64urlOf(bytes);
}

std::string field(char tag, const std::string& value)
{
    return std::string{tag, static_cast<char>(static_cast<unsigned char>(value.size()))} + value;
}

const std::string outputField = field(1, std::string(1, '\0'));

std::string refusalOf(const std::string& text)
{
    const Result<Reference> reference = Reference::parse(text);
    if (reference)
        return "accepted";
    EXPECT_EQ(reference.problem().kind(), Problem::Kind::unreadable);
    EXPECT_EQ(reference.problem().operation(), "Reference::parse");
    return reference.problem().sentence();
}

TEST(ReferenceText, IsTheSameForTheSameEndpoint)
{
    const Snapshot other = computer({studio(), Device()});

    EXPECT_EQ(studioReference(), studioReference());
    EXPECT_EQ(studioReference(), referenceTo(other, studio().endpoints[0].id));
    ASSERT_THAT(studioReference().text(), StartsWith("snv1:"));
    EXPECT_TRUE(references::bytesInBase64url(studioReference().text().substr(5)));
}

/// References are in users' files: this text has the meaning that it has here for good.
TEST(ReferenceText, KeepsItsFormat)
{
    const std::string text = "snv1:AQEAAjd7MC4wLjAuMDAwMDAwMDB9LntGQjdENkQwQS0yQTNFLTRCMkMtOUM1Mi0wRjBBNEM2QTJCMTF9Ayx"
                             "VU0JcVklEXzY5ODYmUElEXzJBODgmTUlfMDBcNyY4MEI1QzA4JjAmMDAwMAQIVVNCOjY5ODYFBDJBODgGAjAwBwt"
                             "TVFVESU8tMDAwMQgQFHwqXp0LNl-MQT1vkqjnBQkQ4Rzy3w_30BG5FwCgySIxlgoCAQAMCFNwZWFrZXJzDQlVU0I"
                             "gQXVkaW8OCJm8JnV749-xNVZz8Q";

    EXPECT_EQ(studioReference().text(), text);
    EXPECT_EQ(resolve(computer({studio()}), Reference::parse(text).value()).kind, Resolution::Kind::exact);
}

TEST(ReferenceText, IsReadAgain)
{
    const Result<Reference> read = Reference::parse(studioReference().text());
    const Result<Reference> readWithBlanks = Reference::parse("\r\n \t" + studioReference().text() + " \r\n");

    EXPECT_EQ(*read, studioReference());
    EXPECT_EQ(*readWithBlanks, studioReference());
}

TEST(ReferenceText, HasAtMost512Characters)
{
    Device device = studio();
    device.instanceId = "VENDORBUS\\VID_" + std::string(300, '1') + "&PID_" + std::string(300, '2') + "&MI_" +
                        std::string(300, '3') + "\\" + std::string(300, '4');
    device.name = std::string(4000, 'n');
    SimpleEndpoint& endpoint = device.endpoints[0];
    endpoint.id = std::string(1000, 'e');
    endpoint.description = std::string(100000, 'd');
    endpoint.geometry = JackGeometry::rear;
    const Snapshot snapshot = computer({device});
    const Reference reference = referenceTo(snapshot, endpoint.id);

    EXPECT_LE(reference.text().size(), 512u);
    EXPECT_GT(reference.text().size(), 480u); // else the strings were not kept
    EXPECT_EQ(*Reference::parse(reference.text()), reference);
    EXPECT_EQ(resolve(snapshot, reference).kind, Resolution::Kind::exact);
}

TEST(ReferenceText, HasExactly512CharactersAtTheLongest)
{
    const auto withBytes = [](std::size_t count) // of all fields
    {
        std::string fields = outputField + field(2, "b.id") + field(98, std::string(200, 'x'));
        return textWith(fields + field(99, std::string(count - fields.size() - 2, 'y')));
    };

    EXPECT_EQ(withBytes(376).size(), 512u);
    EXPECT_EQ(refusalOf(withBytes(376)), "accepted");
    EXPECT_EQ(withBytes(377).size(), 513u);
    EXPECT_EQ(refusalOf(withBytes(377)), "a reference has at most 512 characters");
}

TEST(ReferenceText, DistinguishesLongIdsThatDifferAtTheirEnd)
{
    const auto with = [](const std::string& end)
    {
        Device device = studio();
        device.instanceId.clear();
        device.container.reset();
        device.endpoints[0].id = std::string(200, 'e') + end;
        device.endpoints[0].description = end;
        return device;
    };
    const Snapshot snapshot = computer({with("one"), with("two")});
    const Resolution resolution = resolve(snapshot, referenceTo(snapshot, std::string(200, 'e') + "two"));
    const Resolution inUpperCase =
        resolve(computer({with("ONE")}), referenceTo(snapshot, std::string(200, 'e') + "one"));

    ASSERT_EQ(resolution.candidates.size(), 1u);
    EXPECT_EQ(bestOf(resolution), std::string(200, 'e') + "two");
    EXPECT_EQ(inUpperCase.kind, Resolution::Kind::exact);
}

TEST(ReferenceText, KeepsFieldsThatItDoesNotKnow)
{
    const std::string text =
        textWith(outputField + field(2, "b.id") + field(99, "of a later version") + field(120, ""));
    const Result<Reference> reference = Reference::parse(text);

    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->text(), text);
    Device device = studio();
    device.endpoints[0].id = "b.id";
    EXPECT_EQ(resolve(computer({device}), *reference).kind, Resolution::Kind::exact);
}

TEST(ReferenceText, IsRefusedWithAReason)
{
    EXPECT_EQ(refusalOf(""), "a reference begins with \"snv1:\"");
    EXPECT_EQ(refusalOf("  \n"), "a reference begins with \"snv1:\"");
    EXPECT_EQ(refusalOf("snv2:AAAA"), "a reference begins with \"snv1:\"");
    EXPECT_EQ(refusalOf("snv1:"), "the reference is incomplete");
    EXPECT_THAT(refusalOf("snv1:AA=="), HasSubstr("A-Z, a-z, 0-9, - and _"));
    EXPECT_THAT(refusalOf("snv1:AA+/"), HasSubstr("A-Z, a-z, 0-9, - and _"));
    EXPECT_THAT(refusalOf("snv1:A A"), HasSubstr("A-Z, a-z, 0-9, - and _"));
    EXPECT_EQ(refusalOf("snv1:AAAAAAAA"), "the reference is incomplete or was changed");
    EXPECT_EQ(refusalOf("snv1:AAAAA"), "the reference is incomplete or was changed"); // the last character is missing
    EXPECT_EQ(refusalOf("snv1:AAAAAB"), "the reference is incomplete or was changed");
    EXPECT_EQ(refusalOf("snv1:" + std::string(508, 'A')), "a reference has at most 512 characters");
    EXPECT_EQ(refusalOf("snv1:" + std::string(10000000, 'A')), "a reference has at most 512 characters");
}

TEST(ReferenceText, IsRefusedIfItsFieldsDoNotFitTogether)
{
    const std::string refusal = "the fields of the reference do not fit together";

    EXPECT_EQ(refusalOf(textWith("")), refusal);                              // no flow
    EXPECT_EQ(refusalOf(textWith(field(2, "id"))), refusal);                  // no flow
    EXPECT_EQ(refusalOf(textWith(field(1, "\2"))), refusal);                  // no such flow
    EXPECT_EQ(refusalOf(textWith(field(1, ""))), refusal);                    // no flow in it
    EXPECT_EQ(refusalOf(textWith(outputField + outputField)), refusal);       // twice
    EXPECT_EQ(refusalOf(textWith(outputField + field(8, "short"))), refusal); // 16 bytes
    EXPECT_EQ(refusalOf(textWith(outputField + field(2, ""))), refusal);      // an empty id
    EXPECT_EQ(refusalOf(textWith(outputField + "\x02")), refusal);            // no length
    EXPECT_EQ(refusalOf(textWith(outputField + std::string("\x02\x05"
                                                           "abcd"))),
              refusal); // too short
    EXPECT_EQ(refusalOf(textWith(outputField)), "accepted");
}

TEST(ReferenceText, IsRefusedIfAnyPartIsMissingOrChanged)
{
    const std::string text = studioReference().text();
    const std::string alphabet = "Aa0-_Zz9 =\n\x80";

    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_NE(refusalOf(text.substr(0, size)), "accepted") << size;
    for (std::size_t i = 0; i < text.size(); ++i)
        for (const char other : alphabet)
        {
            std::string changed = text;
            changed[i] = other;
            const bool isTrimmed = i + 1 == text.size() && (other == ' ' || other == '\n');
            if (other == text[i] || isTrimmed)
                continue;
            EXPECT_NE(refusalOf(changed), "accepted") << i;
        }
}

TEST(ReferenceText, IsReadOrRefusedWhateverItIs)
{
    std::mt19937 random(20261122);
    const Snapshot snapshot = computer({studio()});
    unsigned accepted = 0;

    for (int round = 0; round < 20000; ++round)
    {
        std::string fields;
        for (unsigned count = random() % 6; count > 0; --count)
            fields += field(static_cast<char>(random() % 18), std::string(random() % 20, static_cast<char>(random())));
        if (random() % 4 != 0)
            fields = outputField + fields;
        for (unsigned count = random() % 2; count > 0 && !fields.empty(); --count)
            fields[random() % fields.size()] = static_cast<char>(random());
        const std::string text = textWith(fields);
        const Result<Reference> reference = Reference::parse(text);

        if (!reference)
            continue;
        ++accepted;
        ASSERT_EQ(reference->text(), text);
        ASSERT_LE(resolve(snapshot, *reference).candidates.size(), 1u);
    }

    EXPECT_GT(accepted, 1000u); // else the loop has tested refusals alone
    EXPECT_LT(accepted, 19000u);
}

TEST(ReferenceText, IsRefusedIfItIsNoise)
{
    std::mt19937 random(8);

    for (int round = 0; round < 20000; ++round)
    {
        std::string text = "snv1:";
        for (std::size_t size = random() % 600; size > 0; --size)
            text.push_back(round % 2 == 0 ? static_cast<char>(random()) : "AZaz09-_"[random() % 8]);

        EXPECT_NE(refusalOf(text), "accepted");
    }
}

TEST(Refer, HasNoReferenceToAnEndpointThatIsNotThere)
{
    for (const char* const id : {"", "nothing"})
    {
        const Result<Reference> reference = refer(computer({studio()}), EndpointId(id));

        ASSERT_FALSE(reference);
        EXPECT_EQ(reference.problem().kind(), Problem::Kind::notThere);
        EXPECT_EQ(reference.problem().object(), id);
    }
}

TEST(Resolve, FindsNothingForAReferenceThatWasMovedFrom)
{
    Reference reference = studioReference();
    const Reference other = std::move(reference);

    EXPECT_EQ(resolve(computer({studio()}), reference).kind, Resolution::Kind::none); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(resolve(computer({studio()}), other).kind, Resolution::Kind::exact);
}

TEST(Base64url, GivesBytesOfEveryLengthBack)
{
    std::string bytes;
    for (int i = 0; i < 300; ++i)
    {
        EXPECT_EQ(references::bytesInBase64url(references::base64urlOf(bytes)), bytes);
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(i * 37)));
    }
    EXPECT_EQ(references::base64urlOf("\xFB\xFF"), "-_8");
}

TEST(Base64url, HasOneTextForEachSequenceOfBytes)
{
    EXPECT_EQ(references::bytesInBase64url("QQ"), "A");
    EXPECT_FALSE(references::bytesInBase64url("QR"));
    EXPECT_FALSE(references::bytesInBase64url("Q"));
    EXPECT_FALSE(references::bytesInBase64url("QUFBQ"));
    EXPECT_FALSE(references::bytesInBase64url("Q="));
}
}
