#include "client/watching/registrations.h"

#include "client/worker/clock.h"
#include "tests/support/clienttest.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace sonavit;
using namespace sonavit::watching;

namespace
{
class RegistrationEnd : public support::ClientTest
{
protected:
    void SetUp() override
    {
        ClientTest::SetUp();
        play("desktop").deliverAtOnce(true);
        for (const sim::Endpoint& endpoint : simulation().machine().endpoints)
        {
            if (endpoint.volume && m_volume == nullptr)
            {
                m_volume = simulation().endpointVolume(endpoint.id);
                m_endpoint = EndpointId(endpoint.id);
            }
        }
        ASSERT_NE(nullptr, m_volume);
    }

    void TearDown() override
    {
        m_volume->Release();
        ClientTest::TearDown();
    }

    std::shared_ptr<worker::Alarm> m_alarm = std::make_shared<worker::Alarm>();
    std::shared_ptr<Inbox> m_inbox = std::make_shared<Inbox>(m_alarm, worker::currentClock());
    IAudioEndpointVolume* m_volume = nullptr;
    EndpointId m_endpoint;
};

TEST_F(RegistrationEnd, ReleasesTheListener)
{
    const std::size_t kept = keptListeners();
    VolumeRegistration registration = registerForVolume(*m_volume, m_inbox, m_endpoint);
    ASSERT_TRUE(registration);

    registration.end();

    EXPECT_FALSE(registration);
    EXPECT_EQ(kept, keptListeners());
    EXPECT_EQ(1, m_inbox.use_count());
}

TEST_F(RegistrationEnd, KeepsTheListenerForGoodIfThePlatformRefuses)
{
    const std::size_t kept = keptListeners();
    VolumeRegistration registration = registerForVolume(*m_volume, m_inbox, m_endpoint);
    VolumeListener* const listener = registration.m_listener;
    simulation().faults().fail("IAudioEndpointVolume::UnregisterControlChangeNotify");

    registration.end();
    simulation().events().setVolume(m_endpoint.text(), -12.0F);

    EXPECT_EQ(kept + 1, keptListeners());
    EXPECT_TRUE(m_alarm->isRung);
    simulation().faults().clear();
    EXPECT_EQ(S_OK, m_volume->UnregisterControlChangeNotify(listener));
}

TEST_F(RegistrationEnd, KeepsAllListenersWithinReach)
{
    simulation().faults().fail("IAudioEndpointVolume::UnregisterControlChangeNotify");
    std::vector<VolumeListener*> listeners;
    for (int i = 0; i < 2; ++i)
    {
        VolumeRegistration registration = registerForVolume(*m_volume, m_inbox, m_endpoint);
        listeners.push_back(registration.m_listener);
    }

    EXPECT_EQ(listeners[0], listeners[1]->m_nextKept);
    simulation().faults().clear();
    for (VolumeListener* const listener : listeners)
        EXPECT_EQ(S_OK, m_volume->UnregisterControlChangeNotify(listener));
}

TEST_F(RegistrationEnd, DoesNothingIfTheRegistrationHasFailed)
{
    simulation().faults().fail("IAudioEndpointVolume::RegisterControlChangeNotify", E_OUTOFMEMORY);

    VolumeRegistration registration = registerForVolume(*m_volume, m_inbox, m_endpoint);

    EXPECT_FALSE(registration);
    EXPECT_EQ(E_OUTOFMEMORY, registration.result());
    EXPECT_EQ(1, m_inbox.use_count());
    registration.end();
    EXPECT_EQ(0u, simulation().journal().count("IAudioEndpointVolume::UnregisterControlChangeNotify"));
}
}
