#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::taken;
using bench::Wide;
using testing::ElementsAre;
using testing::IsEmpty;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

class FaultPlanOfSimulation : public bench::SimulationTest
{
protected:
    HRESULT activate(const Held<IMMDevice>& device, REFIID iid)
    {
        Held<IUnknown> object;
        return device->Activate(iid, CLSCTX_ALL, nullptr, object.putVoid());
    }

    Held<IMMDevice> speaker = device(speakerId);
    Held<IMMDevice> earphone = device(earphoneId);
};

using FaultPlanMatch = FaultPlanOfSimulation;
using FaultPlanOutcome = FaultPlanOfSimulation;
using FaultPlanReferences = FaultPlanOfSimulation;
using FaultPlanReport = FaultPlanOfSimulation;

TEST_F(FaultPlanMatch, FailsEveryCallOfAnOperation)
{
    const sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetState", E_ACCESSDENIED);
    DWORD state = 99;

    EXPECT_EQ(E_ACCESSDENIED, speaker->GetState(&state));
    EXPECT_EQ(E_ACCESSDENIED, earphone->GetState(&state));

    EXPECT_EQ(99u, state);
    EXPECT_EQ(2u, fault.fired());
    EXPECT_EQ(2u, simulation.journal().of("IMMDevice::GetState").failed().size());
}

TEST_F(FaultPlanMatch, FailsOnOneObjectOnly)
{
    const sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetState").on(speakerId);
    DWORD state = 0;

    EXPECT_EQ(S_OK, earphone->GetState(&state));
    EXPECT_EQ(E_FAIL, speaker->GetState(&state));
    EXPECT_EQ(1u, fault.met());
}

TEST_F(FaultPlanMatch, FailsWithOneArgumentOnly)
{
    simulation.faults().fail("IMMDevice::Activate").with("IAudioEndpointVolume");

    EXPECT_EQ(S_OK, activate(speaker, idOf<IDeviceTopology>()));
    EXPECT_EQ(E_FAIL, activate(speaker, idOf<IAudioEndpointVolume>()));
}

TEST_F(FaultPlanMatch, FailsAtTheNthCallThatFits)
{
    const sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetState").on(speakerId).at(2);
    DWORD state = 0;

    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(S_OK, earphone->GetState(&state));
    EXPECT_EQ(E_FAIL, speaker->GetState(&state));
    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(3u, fault.met());
    EXPECT_EQ(1u, fault.fired());
}

TEST_F(FaultPlanMatch, TakesABareNameForEveryInterface)
{
    const sim::PlannedFault fault = simulation.faults().fail("GetDataFlow");
    EDataFlow flow = eAll;
    DataFlow direction = In;

    EXPECT_EQ(E_FAIL, speaker.as<IMMEndpoint>()->GetDataFlow(&flow));
    EXPECT_EQ(E_FAIL, connector(speakerJack)->GetDataFlow(&direction));
    EXPECT_EQ(2u, fault.fired());
}

TEST_F(FaultPlanMatch, MeetsNoCallWithAMisspeltName)
{
    std::vector<sim::PlannedFault> faults;
    for (const char* const name : {"GetStat", "GetStates", "getState", "State", "etState", ":GetState", "::GetState",
                                   "Device::GetState", "IMMDevice:GetState", "IMMDevice::", "IMMDevice", "*", ""})
        faults.push_back(simulation.faults().fail(name));
    DWORD state = 0;

    EXPECT_EQ(S_OK, speaker->GetState(&state));

    for (const sim::PlannedFault& fault : faults)
        EXPECT_EQ(0u, fault.met()) << fault.rule().operation;
    EXPECT_EQ(faults.size(), simulation.faults().unmet().size());
    simulation.faults().clear();
}

TEST_F(FaultPlanMatch, TakesABareNameForAFunctionToo)
{
    const sim::PlannedFault fault = simulation.faults().fail("CoCreateInstance", E_ABORT);
    void* object = poison<void>();

    EXPECT_EQ(E_ABORT, CoCreateInstance(bench::enumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                                        idOf<IMMDeviceEnumerator>(), &object));

    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(1u, fault.fired());
}

TEST_F(FaultPlanMatch, MeetsNoCallWithoutTheArgumentThatItNames)
{
    const sim::PlannedFault fault = simulation.faults().fail("GetState").with("1");
    DWORD state = 0;

    EXPECT_EQ(S_OK, speaker->GetState(&state));

    EXPECT_EQ(0u, fault.met());
    EXPECT_EQ(1u, simulation.faults().unmet().size());
}

TEST_F(FaultPlanMatch, CountsAnewFromTheCallOfAt)
{
    sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetState").at(99);
    DWORD state = 0;
    EXPECT_EQ(S_OK, speaker->GetState(&state));

    fault.at(2);

    EXPECT_EQ(0u, fault.met());
    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(E_FAIL, speaker->GetState(&state));
    EXPECT_EQ(S_OK, speaker->GetState(&state));
}

TEST_F(FaultPlanMatch, NeverMeetsAnAddRef)
{
    const sim::PlannedFault fault = simulation.faults().fail("AddRef");

    EXPECT_EQ(2u, speaker->AddRef());

    EXPECT_EQ(0u, fault.met());
    speaker->Release();
}

TEST_F(FaultPlanMatch, LetsTheFirstRuleThatFiresDecide)
{
    simulation.faults().fail("IMMDevice::GetState", E_ACCESSDENIED).at(2);
    simulation.faults().fail("IMMDevice::GetState", E_OUTOFMEMORY);
    DWORD state = 0;

    EXPECT_EQ(E_OUTOFMEMORY, speaker->GetState(&state));
    EXPECT_EQ(E_ACCESSDENIED, speaker->GetState(&state));
}

TEST_F(FaultPlanOutcome, StoresNullInThePointersOfAFailingCall)
{
    simulation.faults().fail("IMMDevice::Activate");
    simulation.faults().fail("IMMDevice::GetId");
    void* object = poison<void>();
    auto* id = poison<WCHAR>();

    EXPECT_EQ(E_FAIL, speaker->Activate(idOf<IDeviceTopology>(), CLSCTX_ALL, nullptr, &object));
    EXPECT_EQ(E_FAIL, speaker->GetId(&id));

    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(nullptr, id);
}

TEST_F(FaultPlanOutcome, CanSucceedWithNothing)
{
    simulation.faults().succeedWithNull("IMMDevice::Activate");
    simulation.faults().succeedWithNull("IMMDevice::GetState");
    void* object = poison<void>();
    DWORD state = 99;

    EXPECT_EQ(S_OK, speaker->Activate(idOf<IDeviceTopology>(), CLSCTX_ALL, nullptr, &object));
    EXPECT_EQ(S_OK, speaker->GetState(&state));

    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(0u, state);
}

TEST_F(FaultPlanOutcome, LeavesTheMachineAloneWhereASetterFails)
{
    simulation.faults().fail("IAudioEndpointVolume::SetMute");

    EXPECT_EQ(E_FAIL, volume(speakerId)->SetMute(TRUE, nullptr));

    EXPECT_FALSE(simulation.machine().endpoint(speakerId)->volume->muted);
}

TEST_F(FaultPlanOutcome, CanRunSomethingAheadOfACall)
{
    simulation.faults().run("IMMDevice::GetState", [&] { simulation.events().unplug(speakerId); }).at(2);
    DWORD state = 0;

    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_ACTIVE), state);
    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_UNPLUGGED), state);
}

TEST_F(FaultPlanOutcome, RunsEveryActionAndFailsAllTheSame)
{
    std::vector<std::string> order;
    simulation.faults().run("IMMDevice::GetState", [&] { order.push_back("first"); });
    simulation.faults().fail("IMMDevice::GetState", E_ACCESSDENIED);
    simulation.faults().run("GetState", [&] { order.push_back("second"); });
    DWORD state = 99;

    EXPECT_EQ(E_ACCESSDENIED, speaker->GetState(&state));

    EXPECT_THAT(order, ElementsAre("first", "second"));
    EXPECT_EQ(99u, state);
}

TEST_F(FaultPlanOutcome, DecidesEvenIfAnOutParameterIsNull)
{
    simulation.faults().fail("IMMDevice::GetId", E_ABORT);
    simulation.faults().succeedWithNull("IMMDevice::GetState");

    EXPECT_EQ(E_ABORT, speaker->GetId(nullptr));
    EXPECT_EQ(S_OK, speaker->GetState(nullptr));
}

TEST_F(FaultPlanOutcome, CanMakeAnyOperationThrow)
{
    simulation.faults().raise("IMMDevice::GetId");
    auto* id = poison<WCHAR>();

    EXPECT_THROW(speaker->GetId(&id), sim::InjectedException);

    EXPECT_EQ(nullptr, id);
    EXPECT_EQ("IMMDevice::GetId() on " + speakerId + " -> thrown",
              simulation.journal().of("IMMDevice::GetId").lines().at(0));
    EXPECT_EQ(1u, simulation.journal().entries().failed().size());
}

TEST_F(FaultPlanOutcome, CanFailTheCreationOfTheEnumerator)
{
    simulation.faults().fail("CoCreateInstance", E_OUTOFMEMORY);
    void* enumerator = poison<void>();

    EXPECT_EQ(E_OUTOFMEMORY, CoCreateInstance(bench::enumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                                              idOf<IMMDeviceEnumerator>(), &enumerator));
    EXPECT_EQ(nullptr, enumerator);
}

TEST_F(FaultPlanReferences, CanFailAQueryWithNull)
{
    simulation.faults().fail("IMMDevice::QueryInterface", E_NOINTERFACE).with("IMMEndpoint");
    void* object = poison<void>();

    EXPECT_EQ(E_NOINTERFACE, speaker->QueryInterface(idOf<IMMEndpoint>(), &object));

    EXPECT_EQ(nullptr, object);
    EXPECT_NE(nullptr, speaker.as<IMMDevice>().get());
    EXPECT_EQ(1, simulation.census().byObject.at("IMMDevice " + speakerId));
}

TEST_F(FaultPlanReferences, AreNotRecordedBecauseThereIsARule)
{
    simulation.faults().fail("IMMDevice::GetState");
    simulation.journal().clear();

    speaker->AddRef();
    speaker->Release();
    speaker.as<IMMEndpoint>();

    EXPECT_THAT(simulation.journal().entries(), IsEmpty());
}

TEST_F(FaultPlanReferences, CannotFailARelease)
{
    simulation.faults().fail("Release");
    speaker->AddRef();

    EXPECT_EQ(1u, speaker->Release());

    simulation.faults().clear();
}

TEST_F(FaultPlanReferences, CanMakeReleaseThrowAndTheReferenceIsGoneAllTheSame)
{
    simulation.journal().recordReferences(true);
    simulation.faults().raise("Release").on(speakerId);
    speaker->AddRef();

    EXPECT_THROW(speaker->Release(), sim::InjectedException);
    EXPECT_EQ(1, simulation.census().byObject.at("IMMDevice " + speakerId));
    EXPECT_EQ(sim::CallEnd::thrown, (simulation.journal().of("IMMDevice::Release").end() - 1)->end);

    simulation.faults().clear();
    simulation.journal().recordReferences(false);
}

TEST_F(FaultPlanReferences, CanMakeTheLastReleaseThrow)
{
    IMMDevice* const lineIn = simulation.device(lineInId);
    simulation.faults().raise("IMMDevice::Release").on(lineInId);

    try
    {
        lineIn->Release();
        ADD_FAILURE() << "no exception";
    }
    catch (const std::exception& exception)
    {
        EXPECT_STREQ("planned: IMMDevice::Release", exception.what());
    }

    EXPECT_EQ(0u, simulation.census().byObject.count("IMMDevice " + lineInId));
}

TEST_F(FaultPlanReport, ListsTheRulesThatHaveNotFired)
{
    DWORD state = 0;
    simulation.faults().fail("IMMDevice::GetState");
    simulation.faults().fail("IMMDevice::GetState").on(earphoneId).at(2);
    simulation.faults().fail("IMMDevice::Activate").with("IAudioClient");

    speaker->GetState(&state);
    earphone->GetState(&state);

    EXPECT_THAT(simulation.faults().unmet(),
                ElementsAre("IMMDevice::GetState on " + earphoneId + ", call 2: met 1 times",
                            "IMMDevice::Activate(IAudioClient) on *: met 0 times"));
    EXPECT_EQ(3u, simulation.faults().faults().size());
}

TEST_F(FaultPlanReport, ForgetsRulesButNotTheirCounts)
{
    const sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetState");
    DWORD state = 0;
    speaker->GetState(&state);

    simulation.faults().clear();

    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("IMMDevice::GetState", fault.rule().operation);
    EXPECT_THAT(simulation.faults().unmet(), IsEmpty());
}

TEST_F(FaultPlanReport, DoesNotReviveForgottenRulesWithANewOne)
{
    simulation.faults().fail("IMMDevice::GetState");
    simulation.faults().clear();
    simulation.faults().fail("IMMDevice::GetId");
    DWORD state = 0;

    EXPECT_EQ(S_OK, speaker->GetState(&state));

    EXPECT_EQ(1u, simulation.faults().faults().size());
}

TEST_F(FaultPlanReport, StartsWithTheRulesOfTheMachine)
{
    sim::Machine machine = simulation.machine();
    machine.faults.push_back({"IMMDevice::GetId", speakerId, "", 1, sim::FaultRule::Outcome::result, E_ABORT});
    sim::Simulation other(machine);
    const Held<IMMDevice> found(other.device(speakerId));

    auto* id = poison<WCHAR>();
    EXPECT_EQ(E_ABORT, found->GetId(&id));
    EXPECT_EQ(S_OK, found->GetId(&id));
    EXPECT_EQ(speakerId, taken(id));
}
}
