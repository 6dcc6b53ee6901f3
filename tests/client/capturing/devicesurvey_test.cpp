#include "client/capturing/devices.h"

#include "client/reading/handle.h"
#include "tests/client/capturing/surveytest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class SurveyDevice : public SurveyTest
{
protected:
    /// Surveys a machine whose only endpoint is @p endpoint, with such failures.
    capturing::Survey surveyOne(sim::Machine machine, const char* operation = nullptr, HRESULT code = E_FAIL,
                                const char* argument = "")
    {
        start(std::move(machine));
        if (operation != nullptr)
            simulation().faults().fail(operation, code).with(argument);
        return survey();
    }

    const std::string id = machineWithOneEndpoint().endpoints[0].id;
};

TEST_F(SurveyDevice, RecordsWhichInterfacesItActivates)
{
    sim::Machine machine = machineWithOneEndpoint();
    machine.endpoints[0].hasMeter = true;

    const capturing::Survey found = surveyOne(machine);

    EXPECT_TRUE(found.machine.endpoints[0].hasAudioClient);
    EXPECT_TRUE(found.machine.endpoints[0].hasMeter);
    EXPECT_FALSE(found.machine.endpoints[0].hasBaseFilter);
    EXPECT_THAT(failuresOf(found), IsEmpty());
}

TEST_F(SurveyDevice, TakesStreamsForGrantedThatAnInactiveEndpointRefuses)
{
    sim::Machine machine = machineWithOneEndpoint();
    machine.endpoints[0].state = sim::stateUnplugged;
    machine.endpoints[0].hasMeter = true;

    const capturing::Survey found = surveyOne(machine);

    EXPECT_TRUE(found.machine.endpoints[0].hasAudioClient);
    EXPECT_TRUE(found.machine.endpoints[0].hasMeter);
    EXPECT_THAT(failuresOf(found), IsEmpty());
    EXPECT_FALSE(found.machine.endpoints[0].mixFormat);
}

TEST_F(SurveyDevice, NotesStreamsThatAnActiveEndpointRefuses)
{
    const capturing::Survey found =
        surveyOne(machineWithOneEndpoint(), "IMMDevice::Activate", AUDCLNT_E_DEVICE_INVALIDATED, "IAudioClient");

    EXPECT_TRUE(found.machine.endpoints[0].hasAudioClient);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::Activate(IAudioClient, 23)", id, "0x88890004")));
    expectSame(found, replay(found));
}

TEST_F(SurveyDevice, RecordsAnAudioClientWithoutAudioService)
{
    start(machineWithOneEndpoint());
    simulation().events().serviceStop();

    const capturing::Survey found = survey();

    EXPECT_TRUE(found.machine.endpoints[0].hasAudioClient);
    EXPECT_THAT(failuresOf(found),
                testing::Contains(failureOf("IMMDevice::Activate(IAudioClient, 23)", id, "0x88890010")));
    expectSame(found, replay(found));
}

TEST_F(SurveyDevice, RecordsNoInterfaceThatFailsOtherwise)
{
    const capturing::Survey found =
        surveyOne(machineWithOneEndpoint(), "IMMDevice::Activate", E_OUTOFMEMORY, "IBaseFilter");

    EXPECT_FALSE(found.machine.endpoints[0].hasBaseFilter);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::Activate(IBaseFilter, 23)", id, "0x8007000E")));
}

TEST_F(SurveyDevice, FindsAnOrdinaryAccountByWhatItIsDenied)
{
    sim::Machine machine = machineWithOneEndpoint();
    machine.account = sim::Account::ordinary;

    const capturing::Survey found = surveyOne(machine);

    EXPECT_EQ(sim::Account::ordinary, found.machine.account);
    EXPECT_THAT(failuresOf(found), IsEmpty());
}

TEST_F(SurveyDevice, NotesADenialOfOneDeviceAmongOthers)
{
    sim::Machine machine = machineWithOneEndpoint();
    machine.endpoints.push_back(machine.endpoints[0]);
    machine.endpoints[1].id = "other";
    start(machine);
    simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED).on("other").with("2");

    const capturing::Survey found = survey();

    EXPECT_EQ(sim::Account::administrator, found.machine.account);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::OpenPropertyStore(2)", "other", "0x80070005")));
    expectSame(found, replay(found));
}

/// An endpoint that no list contains, as a connector may lead to one.
class SurveyUnlistedEndpoint : public SurveyDevice
{
protected:
    sim::Endpoint surveyUnlisted(sim::Endpoint endpoint)
    {
        sim::Machine machine = machineWithOneEndpoint();
        endpoint.id = "unlisted";
        machine.endpoints.push_back(endpoint);
        start(machine);
        const sonavit::reading::Handle<IMMDevice> device(simulation().device(endpoint.id));
        sim::Endpoint found;
        found.id = endpoint.id;
        surveyUnlistedEndpoint(*device, found, recording.recorder);
        return found;
    }

    Recording recording;
};

TEST_F(SurveyUnlistedEndpoint, IsNotInstalled)
{
    sim::Endpoint endpoint = machineWithOneEndpoint().endpoints[0];
    endpoint.flow = eCapture;
    endpoint.state = sim::stateUnplugged;
    endpoint.volume->taper = sim::Taper::linear;
    endpoint.volume->channels = {-10.0f, -20.0f};

    const sim::Endpoint found = surveyUnlisted(endpoint);

    EXPECT_FALSE(found.installed);
    EXPECT_EQ(eCapture, found.flow);
    EXPECT_EQ(sim::stateUnplugged, found.state);
    EXPECT_EQ(endpoint.volume, found.volume);
}

TEST_F(SurveyUnlistedEndpoint, IsInstalledIfNoListCouldContainIt)
{
    sim::Endpoint endpoint;
    endpoint.state = 0;

    EXPECT_TRUE(surveyUnlisted(endpoint).installed);
    EXPECT_THAT(recording.survey.failures, IsEmpty());
}
}
