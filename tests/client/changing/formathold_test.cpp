#include "platform/propertykeys.h"
#include "simulator/machine/deviceformat.h"
#include "tests/support/clienttest.h"

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace
{
using namespace sonavit;
using Bytes = std::vector<std::uint8_t>;

/// Speakers that have 16/48000/2.
class FormatHoldEnd : public support::ClientTest
{
protected:
    void SetUp() override
    {
        ClientTest::SetUp();
        sim::MachineBuilder builder;
        m_id = EndpointId(builder.card("Analog Audio").speaker().format({16, 48000, 2}).id());
        play(builder.build());
        m_system = std::make_unique<System>(options());
    }

    void TearDown() override
    {
        m_system.reset();
        ClientTest::TearDown();
    }

    Bytes stored()
    {
        const sim::Machine machine = simulation().machine();
        return sim::findProperty(machine.endpoints.front().properties, platform::propertykeys::deviceFormat)->bytes;
    }

    std::optional<Format> shown() { return m_system->snapshot().endpoint(m_id)->format(); }

    const Bytes before = sim::DeviceFormat{16, 48000, 2}.bytes();
    const Bytes after = sim::DeviceFormat{24, 96000, 2}.bytes();
    const Format former = Format::integer(16, 48000, 2);
    const Format wanted = Format::integer(24, 96000, 2);
    EndpointId m_id;
    std::unique_ptr<System> m_system;
};

TEST_F(FormatHoldEnd, PutsTheFormerFormatBack)
{
    Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);

    ASSERT_TRUE(hold);
    EXPECT_EQ(hold->endpoint(), m_id);
    EXPECT_EQ(hold->former(), former);
    EXPECT_EQ(hold->held(), wanted);
    EXPECT_NE(hold.token(), 0u);
    EXPECT_EQ(stored(), after);
    EXPECT_EQ(shown(), wanted);

    EXPECT_TRUE(hold->end());
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(shown(), former);
}

TEST_F(FormatHoldEnd, DoesNothingTheSecondTime)
{
    Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);
    ASSERT_TRUE(hold->end());
    simulation().events().waitForClients();
    ASSERT_TRUE(m_system->refresh()); // what was announced is read before
    simulation().journal().clear();

    EXPECT_TRUE(hold->end());

    EXPECT_EQ(simulation().journal().size(), 0u);
}

TEST_F(FormatHoldEnd, HappensWithTheObject)
{
    {
        const Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);
        EXPECT_EQ(stored(), after);
    }

    EXPECT_EQ(stored(), before);
}

TEST_F(FormatHoldEnd, HappensWithTheSystemIfThatEndsFirst)
{
    Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);
    m_system.reset();
    EXPECT_EQ(stored(), before);
    simulation().journal().clear();

    EXPECT_TRUE(hold->end());

    EXPECT_EQ(simulation().journal().size(), 0u);
}

TEST_F(FormatHoldEnd, HappensOnceForAnObjectThatWasMoved)
{
    FormatHold first = m_system->holdFormat(m_id, wanted).value();
    FormatHold second = std::move(first);
    EXPECT_EQ(stored(), after);

    EXPECT_TRUE(first.end());
    EXPECT_EQ(stored(), after);

    EXPECT_TRUE(second.end());
    EXPECT_EQ(stored(), before);
}

TEST_F(FormatHoldEnd, HappensWhenAnotherHoldIsAssigned)
{
    FormatHold hold = m_system->holdFormat(m_id, wanted).value();
    FormatHold none = std::move(hold);
    hold = std::move(none);
    EXPECT_EQ(stored(), after);

    hold = std::move(none);

    EXPECT_EQ(stored(), before);
}

TEST_F(FormatHoldEnd, LeavesTheFormatOfAnotherProgramAlone)
{
    Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);
    const sim::PropertyValue other = sim::PropertyValue::ofBytes(sim::DeviceFormat{32, 44100, 2}.bytes());
    simulation().events().setProperty(m_id.text(), platform::propertykeys::deviceFormat, other);

    const Result<Done> end = hold->end();

    EXPECT_EQ(end.problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(stored(), other.bytes);
}

TEST_F(FormatHoldEnd, EndsHoldsOfOneEndpointInReverseOrderWithTheSystem)
{
    const Result<FormatHold> first = m_system->holdFormat(m_id, wanted);
    const Result<FormatHold> second = m_system->holdFormat(m_id, Format::integer(32, 44100, 2));
    EXPECT_EQ(second->former(), wanted);

    m_system.reset();

    EXPECT_EQ(stored(), before);
}

TEST_F(FormatHoldEnd, ReportsAStoreThatRefuses)
{
    Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);
    simulation().setAccount(sim::Account::ordinary);

    const Result<Done> end = hold->end();

    EXPECT_EQ(end.problem(), Problem::ofCall("IMMDevice::OpenPropertyStore", m_id.text(), E_ACCESSDENIED));
    EXPECT_EQ(stored(), after);
}

TEST_F(FormatHoldEnd, WorksOnStoresThatALogonHasMadeStale)
{
    Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);
    simulation().events().remoteLogon();

    EXPECT_TRUE(hold->end());

    EXPECT_EQ(stored(), before);
}

TEST_F(FormatHoldEnd, NeedsAnAdministratorForTheHold)
{
    simulation().setAccount(sim::Account::ordinary);

    const Result<FormatHold> hold = m_system->holdFormat(m_id, wanted);

    EXPECT_EQ(hold.problem(), Problem::ofCall("IMMDevice::OpenPropertyStore", m_id.text(), E_ACCESSDENIED));
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(shown(), former);
}

TEST_F(FormatHoldEnd, LeavesNothingHeldIfTheCallerHasStoppedWaiting)
{
    m_system.reset();
    System::Options impatient = options();
    impatient.patience = std::chrono::milliseconds(0);
    std::promise<void> goOn;
    simulation().faults().run("CoCreateInstance", [&] { goOn.get_future().wait(); }).at(1);
    {
        System system(impatient);

        const Result<FormatHold> hold = system.holdFormat(m_id, wanted);

        EXPECT_EQ(hold.problem().kind(), Problem::Kind::noAnswer);
        goOn.set_value();
        while (simulation().journal().count("IPropertyStore::Commit") < 2)
            std::this_thread::yield();
        EXPECT_EQ(stored(), before);
    }
    while (!simulation().census().empty()) // the System has not waited for its end, either
        std::this_thread::yield();
}
}
