#include "simulator/answering.h"

#include "tests/simulator/bench.h"

namespace
{
using bench::Held;

class Answering : public bench::SimulationTest
{
protected:
    Held<IMMDeviceEnumerator> enumerator{simulation.enumerator()};
};

TEST_F(Answering, IsTheMachinesWorkInACallAndNotOutsideOfIt)
{
    bool isInCall = false;
    simulation.faults().run("IMMDeviceEnumerator::GetDefaultAudioEndpoint", [&] { isInCall = sim::isAnswering(); });
    const bool isBefore = sim::isAnswering();
    Held<IMMDevice> endpoint;

    enumerator->GetDefaultAudioEndpoint(eRender, eConsole, endpoint.put());

    EXPECT_FALSE(isBefore);
    EXPECT_TRUE(isInCall);
    EXPECT_FALSE(sim::isAnswering());
}

TEST_F(Answering, IsTheMachinesWorkInTheOperationsOfIUnknownToo)
{
    const Held<IMMDevice> speaker = device(speakerId);
    bool isInQuery = false;
    bool isInRelease = false;
    simulation.faults().run("IMMDevice::QueryInterface", [&] { isInQuery = sim::isAnswering(); });
    simulation.faults().run("IMMDevice::Release", [&] { isInRelease = sim::isAnswering(); });

    speaker.as<IMMEndpoint>().reset();

    EXPECT_TRUE(isInQuery);
    EXPECT_TRUE(isInRelease);
    EXPECT_FALSE(sim::isAnswering());
    simulation.faults().clear();
}

TEST_F(Answering, EndsWithACallThatThrows)
{
    simulation.faults().raise("IMMDeviceEnumerator::GetDefaultAudioEndpoint");
    Held<IMMDevice> endpoint;

    EXPECT_THROW(enumerator->GetDefaultAudioEndpoint(eRender, eConsole, endpoint.put()), sim::InjectedException);

    EXPECT_FALSE(sim::isAnswering());
}

TEST_F(Answering, IsThatOfOneThread)
{
    bool isElsewhere = true;
    simulation.faults().run("IMMDeviceEnumerator::GetDefaultAudioEndpoint",
                            [&] { bench::onThread([&] { isElsewhere = sim::isAnswering(); }); });
    Held<IMMDevice> endpoint;

    enumerator->GetDefaultAudioEndpoint(eRender, eConsole, endpoint.put());

    EXPECT_FALSE(isElsewhere);
}

TEST_F(Answering, PausesWhileAClientIsCalled)
{
    struct Asking : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
        {
            isAnswering = sim::isAnswering();
            return S_OK;
        }
        bool isAnswering = true;
    } client;
    simulation.deliverAtOnce(true);
    enumerator->RegisterEndpointNotificationCallback(&client);

    for (const bool isRecorded : {true, false})
    {
        client.isAnswering = true;
        simulation.journal().record(isRecorded);
        simulation.events().add(speakerId);
        EXPECT_FALSE(client.isAnswering) << isRecorded;
    }
    simulation.journal().record(true);

    enumerator->UnregisterEndpointNotificationCallback(&client);
}
}
