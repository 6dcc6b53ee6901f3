#include "tests/client/watching/watchtest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <string>
#include <vector>

using namespace sonavit;
using namespace std::chrono_literals;

namespace
{
/// Changes go before readings: the worker looks for them between the endpoints of a reading.
class SystemReading : public support::WatchTest
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        watch("desktop");
        m_id = audio().defaultEndpoint(Flow::output)->id();
        for (const Endpoint& endpoint : audio().snapshot().endpoints())
            m_ids.push_back(endpoint.id().text());
    }

    /// Lets a change be asked for in the first call of @p operation.
    void changeIn(const std::string& operation)
    {
        simulation().journal().clear();
        simulation()
            .faults()
            .run(operation, [this] { m_changed = begin([this] { return audio().setVolume(m_id, Decibels(-33)); }); })
            .at(1);
    }

    /// Whether the change was made before the last call of @p operation.
    bool isChangedBeforeLast(const std::string& operation)
    {
        EXPECT_TRUE(m_changed.valid() && m_changed.get());
        EXPECT_EQ(Decibels(-33), audio().endpoint(m_id)->volume()->master.decibels);
        const std::vector<std::string> calls = simulation().journal().operations();
        const auto isSetter = [](const std::string& call)
        { return call.find("IAudioEndpointVolume::SetMasterVolumeLevel") == 0; };
        const auto setter = std::find_if(calls.begin(), calls.end(), isSetter);
        return std::find(setter, calls.end(), operation) != calls.end();
    }

    EndpointId m_id;
    std::vector<std::string> m_ids;
    std::future<Result<Volume>> m_changed;
};

TEST_F(SystemReading, OfEverythingLetsAChangePassBetweenTwoEndpoints)
{
    changeIn("IMMDevice::GetState");

    ASSERT_TRUE(audio().refresh(Depth::everything));

    EXPECT_TRUE(isChangedBeforeLast("IMMDevice::GetState"));
}

TEST_F(SystemReading, OfWhatWasAnnouncedLetsAChangePassBetweenTwoEndpoints)
{
    for (const std::string& id : m_ids)
        simulation().events().announceProperty(id, PKEY_Device_DeviceDesc);
    changeIn("IPropertyStore::GetValue");

    ASSERT_TRUE(audio().refresh());

    EXPECT_TRUE(isChangedBeforeLast("IPropertyStore::GetValue"));
}

TEST_F(SystemReading, OfNewEndpointsLetsAChangePassBetweenTwoOfThem)
{
    std::vector<std::string> others = m_ids;
    others.erase(std::remove(others.begin(), others.end(), m_id.text()), others.end());
    for (const std::string& id : others)
        simulation().events().remove(id);
    ASSERT_TRUE(audio().refresh());
    ASSERT_EQ(1u, audio().snapshot().endpoints().size());
    for (const std::string& id : others)
        simulation().events().add(id);
    changeIn("IPropertyStore::GetValue");

    ASSERT_TRUE(audio().refresh());

    EXPECT_TRUE(isChangedBeforeLast("IPropertyStore::GetValue"));
    EXPECT_EQ(m_ids.size(), audio().snapshot().endpoints().size());
}
}
