#include "client/changing/deviceformat.h"

#include "client/reading/properties.h"
#include "platform/propertykeys.h"
#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"
#include "tests/client/changing/supportchanges.h"

#include <cstdint>

namespace
{
using namespace sonavit;
using changing::bytesOf;
using changing::FormatBytes;
using changing::HeldFormat;
using support::setters;
using testing::IsEmpty;

const EndpointId someEndpoint("{0.0.0.00000000}.{x}");

TEST(BytesOf, WritesTheLongFormOfAnIntegerFormat)
{
    const sim::DeviceFormat expected{24, 96000, 2};

    EXPECT_EQ(bytesOf(someEndpoint, Format::integer(24, 96000, 2)).value(), expected.bytes());
}

TEST(BytesOf, WritesTheShortFormOfAFormatWithoutSpeakersAndSubFormat)
{
    Format format = Format::integer(16, 44100, 2);
    format.speakers.reset();
    format.subFormat.reset();

    const FormatBytes bytes = bytesOf(someEndpoint, format).value();

    const FormatBytes expected = {1, 0, 2, 0, 0x44, 0xAC, 0, 0, 0x10, 0xB1, 2, 0, 4, 0, 16, 0, 0, 0};
    EXPECT_EQ(bytes, expected);
}

TEST(BytesOf, WritesWhatTheReaderReads)
{
    Format format = Format::integer(32, 192000, 8);
    format.validBits = 24;
    format.encoding = Format::Encoding::floatingPoint;
    format.subFormat = Guid{3, 0, 0x10, {0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71}};

    const FormatBytes bytes = bytesOf(someEndpoint, format).value();

    EXPECT_EQ(reading::formatOf(bytes.data(), bytes.size()), format);
}

TEST(BytesOf, RefusesWhatTheStructureCannotExpress)
{
    const auto kindOf = [](const Format& format) { return bytesOf(someEndpoint, format).problem().kind(); };
    Format tooValid = Format::integer(16, 48000, 2);
    tooValid.validBits = 24;
    Format unnamed = Format::integer(16, 48000, 2);
    unnamed.encoding = Format::Encoding::other;
    unnamed.subFormat.reset();

    EXPECT_EQ(kindOf(Format::integer(16, 0, 2)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(Format::integer(0, 48000, 2)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(Format::integer(12, 48000, 2)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(Format::integer(16, 48000, 0)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(Format::integer(16, 48000, 70000)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(Format::integer(65536, 48000, 1)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(Format::integer(32, 4000000000u, 8)), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(tooValid), Problem::Kind::outOfRange);
    EXPECT_EQ(kindOf(unnamed), Problem::Kind::outOfRange);
}

/// Holds a format of speakers that have 16/48000/2.
class HoldFormat : public support::ChangingTest
{
protected:
    void playSpeakers(sim::Account account = sim::Account::administrator)
    {
        sim::MachineBuilder builder;
        builder.account(account);
        m_id = builder.card("Analog Audio").speaker().format({16, 48000, 2}).id();
        play(builder.build());
    }

    Result<HeldFormat> hold(const Format& format)
    {
        const reading::EndpointReading reading = open(m_id);
        return HeldFormat::hold(*reading.device, reading.content.id, format);
    }

    Result<Done> putBack(const HeldFormat& held)
    {
        const reading::EndpointReading reading = open(m_id);
        return held.putBack(*reading.device);
    }

    FormatBytes stored()
    {
        const sim::Machine machine = simulation().machine();
        return sim::findProperty(machine.endpoints.front().properties, key)->bytes;
    }

    void store(const FormatBytes& bytes) { store(sim::PropertyValue::ofBytes(bytes)); }

    void store(const sim::PropertyValue& value)
    {
        simulation().change([&](sim::Machine& now) { sim::setProperty(now.endpoints.front().properties, key, value); });
    }

    const PROPERTYKEY& key = platform::propertykeys::deviceFormat;
    const FormatBytes before = sim::DeviceFormat{16, 48000, 2}.bytes();
    const FormatBytes after = sim::DeviceFormat{24, 96000, 2}.bytes();
    const Format wanted = Format::integer(24, 96000, 2);
    std::string m_id;
};

TEST_F(HoldFormat, SetsTheFormatAndPutsTheFormerBytesBack)
{
    playSpeakers();

    const Result<HeldFormat> held = hold(wanted);

    ASSERT_TRUE(held);
    EXPECT_EQ(held->former(), Format::integer(16, 48000, 2));
    EXPECT_EQ(held->held(), wanted);
    EXPECT_EQ(stored(), after);

    EXPECT_TRUE(putBack(*held));
    EXPECT_EQ(stored(), before);
}

TEST_F(HoldFormat, PutsBytesBackThatNoFormatExpresses)
{
    playSpeakers();
    FormatBytes odd = before;
    odd[8] = 0x99; // the number of bytes per second
    odd[16] = 0;   // the number of bytes that follow
    store(odd);

    const Result<HeldFormat> held = hold(wanted);
    EXPECT_EQ(stored(), after);
    EXPECT_TRUE(putBack(held.value()));

    EXPECT_EQ(stored(), odd);
}

TEST_F(HoldFormat, PutsAShortFormBack)
{
    playSpeakers();
    const FormatBytes shortForm = {1, 0, 2, 0, 0x44, 0xAC, 0, 0, 0x10, 0xB1, 2, 0, 4, 0, 16, 0, 0, 0};
    store(shortForm);

    const Result<HeldFormat> held = hold(wanted);

    EXPECT_FALSE(held->former().subFormat);
    EXPECT_TRUE(putBack(*held));
    EXPECT_EQ(stored(), shortForm);
}

TEST_F(HoldFormat, WritesNothingIfTheFormatIsThereAlready)
{
    playSpeakers(sim::Account::ordinary);

    const Result<HeldFormat> held = hold(Format::integer(16, 48000, 2));

    ASSERT_TRUE(held);
    EXPECT_FALSE(held->isWritten());
    EXPECT_THAT(setters(simulation()), IsEmpty());
    EXPECT_TRUE(putBack(*held));
    EXPECT_THAT(setters(simulation()), IsEmpty());
}

TEST_F(HoldFormat, LeavesAFormatAloneThatAnotherProgramHasSetMeanwhile)
{
    playSpeakers();
    const Result<HeldFormat> held = hold(wanted);
    const FormatBytes other = sim::DeviceFormat{32, 44100, 2}.bytes();
    store(other);

    const Result<Done> result = putBack(held.value());

    EXPECT_EQ(result.problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(result.problem().sentence(),
              "the format is not the held one any more: it is 44100 Hz, 32 bit, 2 channels (stereo)");
    EXPECT_EQ(stored(), other);
}

TEST_F(HoldFormat, NeedsAnAdministrator)
{
    playSpeakers(sim::Account::ordinary);

    const Result<HeldFormat> held = hold(wanted);

    EXPECT_EQ(held.problem(), Problem::ofCall("IMMDevice::OpenPropertyStore", m_id, E_ACCESSDENIED));
    EXPECT_EQ(stored(), before);
}

TEST_F(HoldFormat, NeverWritesAFormatThatItCouldNotRead)
{
    playSpeakers();
    const auto problemOf = [&]
    {
        const Result<HeldFormat> held = hold(wanted);
        EXPECT_EQ(simulation().journal().count("IPropertyStore::SetValue"), 0u);
        EXPECT_EQ(simulation().journal().of("IMMDevice::OpenPropertyStore").with("2").size(), 0u);
        return held.problem();
    };

    store(sim::PropertyValue());
    EXPECT_EQ(problemOf().sentence(), "the endpoint has no device format");

    store(FormatBytes{1, 2, 3});
    EXPECT_EQ(problemOf().sentence(), "the device format of the endpoint cannot be understood");

    store(FormatBytes());
    EXPECT_EQ(problemOf().kind(), Problem::Kind::notSupported);

    store(before);
    const reading::EndpointReading reading = open(m_id);
    simulation().faults().fail("IPropertyStore::GetValue", E_UNEXPECTED);
    const Result<HeldFormat> held = HeldFormat::hold(*reading.device, reading.content.id, wanted);
    EXPECT_EQ(held.problem(), Problem::ofCall("IPropertyStore::GetValue(deviceFormat)", m_id, E_UNEXPECTED));
    EXPECT_EQ(stored(), before);
}

TEST_F(HoldFormat, LeavesTheFormerFormatIfAnyCallFails)
{
    playSpeakers();
    const reading::EndpointReading reading = open(m_id);
    struct Failure
    {
        const char* operation;
        unsigned call;
        const char* reported;
    };
    for (const Failure& failure : {Failure{"IMMDevice::OpenPropertyStore", 1, "IMMDevice::OpenPropertyStore"},
                                   Failure{"IPropertyStore::GetValue", 1, "IPropertyStore::GetValue(deviceFormat)"},
                                   Failure{"IMMDevice::OpenPropertyStore", 2, "IMMDevice::OpenPropertyStore"},
                                   Failure{"IPropertyStore::SetValue", 1, "IPropertyStore::SetValue(deviceFormat)"},
                                   Failure{"IPropertyStore::Commit", 1, "IPropertyStore::Commit"},
                                   Failure{"IMMDevice::OpenPropertyStore", 3, "IMMDevice::OpenPropertyStore"},
                                   Failure{"IPropertyStore::GetValue", 2, "IPropertyStore::GetValue(deviceFormat)"}})
    {
        SCOPED_TRACE(std::string(failure.operation) + " " + std::to_string(failure.call));
        simulation().faults().clear();
        simulation().faults().fail(failure.operation, E_UNEXPECTED).at(failure.call);

        const Result<HeldFormat> held = HeldFormat::hold(*reading.device, reading.content.id, wanted);

        EXPECT_EQ(held.problem(), Problem::ofCall(failure.reported, m_id, E_UNEXPECTED));
        EXPECT_EQ(stored(), before);
    }
}

TEST_F(HoldFormat, ReportsWhatKeepsTheFormatFromBeingPutBack)
{
    playSpeakers();
    const Result<HeldFormat> held = hold(wanted);
    const reading::EndpointReading reading = open(m_id);
    for (const char* const operation : {"IPropertyStore::SetValue", "IPropertyStore::GetValue"})
    {
        simulation().faults().fail(operation, E_ACCESSDENIED).at(1);

        EXPECT_EQ(held->putBack(*reading.device).problem(),
                  Problem::ofCall(std::string(operation) + "(deviceFormat)", m_id, E_ACCESSDENIED));
    }
    EXPECT_EQ(stored(), after);
}

TEST_F(HoldFormat, ReportsAStoreThatStoresNothing)
{
    playSpeakers();
    const reading::EndpointReading reading = open(m_id);
    simulation().faults().succeedWithNull("IMMDevice::OpenPropertyStore").at(1);

    const Result<HeldFormat> held = HeldFormat::hold(*reading.device, reading.content.id, wanted);

    EXPECT_EQ(held.problem(), Problem::ofCall("IMMDevice::OpenPropertyStore", m_id, E_POINTER));
}
}
