#include "platform/propertykeys.h"
#include "tests/client/reading/readingtest.h"

namespace
{
namespace keys = platform::propertykeys;
using sonavit::EndpointField;
using sonavit::Guid;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT typeMismatch = static_cast<HRESULT>(0x80020005);
constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000D);

/// One speaker whose properties each test arranges.
class ReadingProperties : public ReadingTest
{
protected:
    ReadingProperties() : m_speaker(m_builder.usbCard("USB Audio").speaker("Desk Speakers")) {}

    void set(const PROPERTYKEY& key, sim::PropertyValue value) { m_speaker.property(key, std::move(value)); }
    void remove(const PROPERTYKEY& key) { m_speaker.withoutProperty(key); }

    /// Starts the machine with what was arranged, and reads the speaker's properties.
    reading::EndpointReading readSpeaker()
    {
        start(m_builder.build());
        reading::EndpointReading endpoint = open(m_speaker.id());
        reading::readProperties(endpoint);
        return endpoint;
    }

    void notPresentNames(sim::NotPresentNames answer) { m_builder.machine().notPresentNames = answer; }

    sim::EndpointBuilder& speaker() { return m_speaker; }

private:
    sim::MachineBuilder m_builder;
    sim::EndpointBuilder m_speaker;
};

TEST_F(ReadingProperties, GivesNamesIdsAndNumbers)
{
    set(keys::driverNodeStrongName, sim::PropertyValue::ofText("usb.inf:model"));
    set(keys::physicalSpeakers, sim::PropertyValue::ofNumber(0x3F));
    set(keys::directSoundGuid, sim::PropertyValue::ofText("{8c7ed206-3f8a-4827-b3ab-ae9e1faefc6c}"));
    set(keys::containerId, sim::PropertyValue::ofGuid(keys::containerId.fmtid));
    set(keys::enumeratorName, sim::PropertyValue::ofText("USB"));

    const reading::EndpointReading endpoint = readSpeaker();

    const Guid guid = *Guid::parse("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}");
    EXPECT_EQ("Desk Speakers", endpoint.content.description);
    EXPECT_EQ("USB Audio", endpoint.content.interfaceName);
    EXPECT_EQ("usb.inf:model", endpoint.content.driverNode);
    EXPECT_EQ(0x3Fu, endpoint.content.speakers);
    EXPECT_EQ(guid, endpoint.content.directSoundId);
    EXPECT_EQ(guid, endpoint.content.container);
    EXPECT_EQ("USB", endpoint.bus);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingProperties, OpensTheStoreForReadingAlone)
{
    static_cast<void>(readSpeaker());

    EXPECT_THAT(simulation().journal().of("IMMDevice::OpenPropertyStore").calls(),
                ElementsAre("IMMDevice::OpenPropertyStore(0)"));
}

TEST_F(ReadingProperties, AreTheSameForAnOrdinaryAccount)
{
    const reading::EndpointReading before = readSpeaker();
    simulation().setAccount(sim::Account::ordinary);

    const reading::EndpointReading after = read(speaker().id());

    EXPECT_EQ(before.content.description, after.content.description);
    EXPECT_EQ(before.content.format, after.content.format);
    EXPECT_THAT(after.content.problems, IsEmpty());
}

TEST_F(ReadingProperties, ThatAreMissingOrEmptyHaveNoValueAndNoProblem)
{
    remove(keys::deviceDescription);
    set(keys::friendlyName, sim::PropertyValue::ofText(""));
    remove(keys::deviceFormat);
    remove(keys::physicalSpeakers);
    set(keys::enumeratorName, sim::PropertyValue::ofText(""));
    set(keys::directSoundGuid, sim::PropertyValue::ofText(""));
    set(keys::jackSubType, sim::PropertyValue::ofText(""));

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_FALSE(endpoint.content.description);
    EXPECT_FALSE(endpoint.content.interfaceName);
    EXPECT_FALSE(endpoint.content.format);
    EXPECT_FALSE(endpoint.content.speakers);
    EXPECT_FALSE(endpoint.content.directSoundId);
    EXPECT_FALSE(endpoint.bus);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
    EXPECT_THAT(endpoint.busProblems, IsEmpty());
}

TEST_F(ReadingProperties, OfAnotherTypeAreProblemsThatNameThem)
{
    set(keys::deviceDescription, sim::PropertyValue::ofNumber(7));
    set(keys::instancePath, sim::PropertyValue::ofGuid(keys::containerId.fmtid));
    set(keys::physicalSpeakers, sim::PropertyValue::ofText("3"));
    set(keys::containerId, sim::PropertyValue::ofText("{8c7ed206-3f8a-4827-b3ab-ae9e1faefc6c}"));
    set(keys::deviceFormat, sim::PropertyValue::ofReal(1.0F));
    set(keys::enumeratorName, sim::PropertyValue::ofBoolean(true));

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_THAT(problemsOf(endpoint, EndpointField::description),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(deviceDescription)", typeMismatch)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::instancePath),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(instancePath)", typeMismatch)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::speakers),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(physicalSpeakers)", typeMismatch)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::container),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(containerId)", typeMismatch)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::format),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(deviceFormat)", typeMismatch)));
    EXPECT_THAT(endpoint.busProblems,
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(enumeratorName)", typeMismatch)));
    EXPECT_EQ(5u, endpoint.content.problems.size());
    EXPECT_EQ(speaker().id(), endpoint.content.problems[0].problem.object());
}

TEST_F(ReadingProperties, WithANullTextAreProblems)
{
    set(keys::friendlyName, sim::PropertyValue::ofText(std::nullopt));
    set(keys::directSoundGuid, sim::PropertyValue::ofText(std::nullopt));

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_FALSE(endpoint.content.interfaceName);
    EXPECT_THAT(problemsOf(endpoint, EndpointField::interfaceName),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(friendlyName)", E_POINTER)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::directSoundId),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(directSoundGuid)", E_POINTER)));
}

TEST_F(ReadingProperties, WithATextThatIsNoGuidAreProblems)
{
    set(keys::directSoundGuid, sim::PropertyValue::ofText("{8c7ed206-3f8a-4827-b3ab-ae9e1faefc6}"));
    set(keys::jackSubType, sim::PropertyValue::ofText("speaker"));

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_THAT(problemsOf(endpoint, EndpointField::directSoundId),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(directSoundGuid)", invalidData)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::jacks),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(jackSubType)", invalidData)));
}

TEST_F(ReadingProperties, CanBeLongAndOfAnyCharacters)
{
    std::string text;
    while (text.size() < 0x10000)
        text += u8"Höhrer \U0001F3A7 ";
    set(keys::deviceDescription, sim::PropertyValue::ofText(text));

    EXPECT_EQ(text, readSpeaker().content.description);
}

/// As some machines do for the names of endpoints that are not present.
TEST_F(ReadingProperties, ThatFailAreProblemsWithTheCode)
{
    constexpr HRESULT noSuchDevice = static_cast<HRESULT>(0xE000020B);
    speaker().notPresent();
    notPresentNames(sim::NotPresentNames::failing);

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_FALSE(endpoint.content.description);
    EXPECT_THAT(problemsOf(endpoint, EndpointField::description),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(deviceDescription)", noSuchDevice)));
    EXPECT_THAT(problemsOf(endpoint, EndpointField::interfaceName),
                ElementsAre(IsFailureOf("IPropertyStore::GetValue(friendlyName)", noSuchDevice)));
    EXPECT_EQ(2u, endpoint.content.problems.size());
    EXPECT_TRUE(endpoint.content.instancePath);
}

TEST_F(ReadingProperties, OfAStoreThatCannotBeOpenedAreProblemsOfEachField)
{
    static_cast<void>(readSpeaker());
    simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED);

    const reading::EndpointReading endpoint = read(speaker().id());

    EXPECT_EQ(sonavit::State::active, endpoint.content.state);
    EXPECT_TRUE(endpoint.content.volume);
    EXPECT_EQ(9u, endpoint.content.problems.size());
    for (const sonavit::EndpointProblem& each : endpoint.content.problems)
        EXPECT_THAT(each.problem, IsFailureOf("IMMDevice::OpenPropertyStore", E_ACCESSDENIED));
    EXPECT_THAT(endpoint.busProblems, ElementsAre(IsFailureOf("IMMDevice::OpenPropertyStore", E_ACCESSDENIED)));
}

TEST_F(ReadingProperties, ReplaceWhatWasReadBefore)
{
    set(keys::driverNodeStrongName, sim::PropertyValue::ofText("usb.inf:model"));
    set(keys::physicalSpeakers, sim::PropertyValue::ofText("3"));
    reading::EndpointReading endpoint = readSpeaker();
    const std::string id = speaker().id();
    simulation().change(
        [&](sim::Machine& machine)
        {
            removeProperty(machine.endpoint(id)->properties, keys::driverNodeStrongName);
            setProperty(machine.endpoint(id)->properties, keys::physicalSpeakers, sim::PropertyValue::ofNumber(4));
        });

    reading::readProperties(endpoint);

    EXPECT_FALSE(endpoint.content.driverNode);
    EXPECT_EQ(4u, endpoint.content.speakers);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

/// Two readings of the same state are equal, in whatever order their steps were done.
TEST_F(ReadingProperties, KeepTheProblemsInTheOrderOfTheFields)
{
    set(keys::deviceDescription, sim::PropertyValue::ofNumber(7));
    set(keys::physicalSpeakers, sim::PropertyValue::ofText("3"));
    reading::EndpointReading first = readSpeaker();
    simulation().faults().fail("IMMDevice::GetState", E_ABORT);
    reading::EndpointReading second = open(speaker().id());

    reading::readState(first);
    reading::readVolume(first);
    reading::readJacks(first);
    reading::readEndpoint(second);

    EXPECT_EQ(3u, first.content.problems.size());
    EXPECT_EQ(first.content.problems, second.content.problems);
    EXPECT_EQ(EndpointField::state, first.content.problems[1].field);
}
}
