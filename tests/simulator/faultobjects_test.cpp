// Which calls a fault rule meets: those with the arguments that it lists, and those on an object that it names more
// finely than the journal does.
#include "tests/foundation/supportallocations.h"
#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using testing::ElementsAre;
using testing::IsEmpty;

class FaultPlanNames : public bench::SimulationTest
{
protected:
    Held<IPartsList> incoming(const std::string& partId)
    {
        Held<IPartsList> list;
        EXPECT_EQ(S_OK, part(partId)->EnumPartsIncoming(list.put()));
        return list;
    }

    Held<IPartsList> outgoing(const std::string& partId)
    {
        Held<IPartsList> list;
        EXPECT_EQ(S_OK, part(partId)->EnumPartsOutgoing(list.put()));
        return list;
    }

    Held<IPartsList> path(const std::string& from, const std::string& to)
    {
        Held<IPartsList> list;
        EXPECT_EQ(S_OK, topology(codecId)->GetSignalPath(part(from).get(), part(to).get(), FALSE, list.put()));
        return list;
    }

    Held<IControlInterface> control(const std::string& partId, UINT index)
    {
        Held<IControlInterface> description;
        EXPECT_EQ(S_OK, part(partId)->GetControlInterface(index, description.put()));
        return description;
    }

    static HRESULT countOf(const Held<IPartsList>& list)
    {
        UINT count = 0;
        return list->GetCount(&count);
    }

    static HRESULT nameOf(const Held<IControlInterface>& description)
    {
        LPWSTR name = nullptr;
        const HRESULT result = description->GetName(&name);
        CoTaskMemFree(name);
        return result;
    }

    HRESULT defaultOf(EDataFlow flow, ERole role)
    {
        Held<IMMDevice> found;
        return createdEnumerator()->GetDefaultAudioEndpoint(flow, role, found.put());
    }
};

using FaultPlanArguments = FaultPlanNames;
using FaultPlanFinerNames = FaultPlanNames;

TEST_F(FaultPlanArguments, MeetACallThatBeginsWithAllOfThem)
{
    const sim::PlannedFault fault = simulation.faults()
                                        .fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", E_ABORT)
                                        .with({"eRender", "eMultimedia"});

    EXPECT_EQ(S_OK, defaultOf(eRender, eConsole));
    EXPECT_EQ(S_OK, defaultOf(eCapture, eMultimedia));
    EXPECT_EQ(E_ABORT, defaultOf(eRender, eMultimedia));

    EXPECT_EQ(1u, fault.met());
}

TEST_F(FaultPlanArguments, LeaveFurtherOnesOpen)
{
    const sim::PlannedFault fault =
        simulation.faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", E_ABORT).with({"eRender"});

    EXPECT_EQ(E_ABORT, defaultOf(eRender, eConsole));
    EXPECT_EQ(E_ABORT, defaultOf(eRender, eMultimedia));
    EXPECT_EQ(S_OK, defaultOf(eCapture, eConsole));

    EXPECT_EQ(2u, fault.fired());
}

TEST_F(FaultPlanArguments, MeetNoCallWithFewerOnes)
{
    const std::vector<std::string> three = {"eRender", "eConsole", "more"};
    simulation.faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint").with(three);

    EXPECT_EQ(S_OK, defaultOf(eRender, eConsole));

    EXPECT_THAT(simulation.faults().unmet(),
                ElementsAre("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eConsole, more) on *: met 0 times"));
    simulation.faults().clear();
}

TEST_F(FaultPlanArguments, ReplaceTheFirstOneAndAreReplacedByIt)
{
    sim::PlannedFault fault = simulation.faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", E_ABORT);

    fault.with("eCapture").with({"eRender", "eConsole"});
    EXPECT_EQ("", fault.rule().argument);
    EXPECT_EQ(E_ABORT, defaultOf(eRender, eConsole));

    fault.with("eCapture");
    EXPECT_THAT(fault.rule().arguments, IsEmpty());
    EXPECT_EQ(S_OK, defaultOf(eRender, eConsole));

    fault.with({});
    EXPECT_EQ(E_ABORT, defaultOf(eRender, eConsole));
}

TEST_F(FaultPlanArguments, OfARuleOfTheMachineGoBeforeItsFirstOne)
{
    sim::FaultRule rule;
    rule.operation = "IMMDeviceEnumerator::GetDefaultAudioEndpoint";
    rule.argument = "eCapture";
    rule.arguments = {"eRender", "eConsole"};
    rule.result = E_ABORT;
    simulation.faults().add(rule);

    EXPECT_EQ(E_ABORT, defaultOf(eRender, eConsole));
    EXPECT_EQ(S_OK, defaultOf(eCapture, eConsole));
}

TEST_F(FaultPlanFinerNames, TellTheListsOfAPartsNeighboursApart)
{
    const Held<IPartsList> feeding = incoming(volumeId);
    const Held<IPartsList> fed = outgoing(volumeId);

    simulation.faults().fail("IPartsList::GetCount", E_ABORT).on(volumeId + " incoming");
    EXPECT_EQ(E_ABORT, countOf(feeding));
    EXPECT_EQ(S_OK, countOf(fed));

    simulation.faults().clear();
    simulation.faults().fail("IPartsList::GetCount", E_ABORT).on(volumeId + " outgoing");
    EXPECT_EQ(S_OK, countOf(feeding));
    EXPECT_EQ(E_ABORT, countOf(fed));
}

TEST_F(FaultPlanFinerNames, NameTheListOfASignalPathByItsEnds)
{
    const Held<IPartsList> neighbours = outgoing(speakerStream);
    const Held<IPartsList> parts = path(speakerStream, speakerJack);
    const sim::PlannedFault fault =
        simulation.faults().fail("IPartsList::GetPart", E_ABORT).on(speakerStream + " to " + speakerJack).with("1");
    Held<IPart> found;

    EXPECT_EQ(S_OK, neighbours->GetPart(0, found.put()));
    EXPECT_EQ(S_OK, parts->GetPart(0, found.put()));
    EXPECT_EQ(E_ABORT, parts->GetPart(1, found.put()));

    EXPECT_EQ(1u, fault.met());
}

TEST_F(FaultPlanFinerNames, TellTheControlsOfAPartApart)
{
    simulation.change([&](sim::Machine& machine) { machine.part(volumeId)->mute.emplace(); });
    const Held<IControlInterface> first = control(volumeId, 0);
    const Held<IControlInterface> second = control(volumeId, 1);

    simulation.faults().fail("IControlInterface::GetName", E_ABORT).on(volumeId + " control 1");

    EXPECT_EQ(S_OK, nameOf(first));
    EXPECT_EQ(E_ABORT, nameOf(second));
}

TEST_F(FaultPlanFinerNames, StandBesideTheNameOfTheJournal)
{
    const Held<IPartsList> list = incoming(volumeId);
    simulation.faults().fail("IPartsList::GetCount", E_ABORT).on(volumeId);
    simulation.journal().clear();

    EXPECT_EQ(E_ABORT, countOf(list));

    EXPECT_THAT(simulation.journal().entries().lines(),
                ElementsAre("IPartsList::GetCount() on " + volumeId + " -> 0x80004004"));
}

TEST_F(FaultPlanFinerNames, CountForReferencesToo)
{
    const Held<IPartsList> feeding = incoming(volumeId);
    IPartsList* fed = nullptr;
    ASSERT_EQ(S_OK, part(volumeId)->EnumPartsOutgoing(&fed));
    simulation.faults().fail("IPartsList::QueryInterface", E_ABORT).on(volumeId + " incoming");
    simulation.faults().raise("IPartsList::Release").on(volumeId + " outgoing");
    void* object = poison<void>();

    EXPECT_EQ(E_ABORT, feeding->QueryInterface(sim::InterfaceTraits<IPartsList>::iid(), &object));
    EXPECT_THROW(fed->Release(), sim::InjectedException);

    simulation.faults().clear();
}

TEST_F(FaultPlanFinerNames, AreNeverEmpty)
{
    const sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetState").on("");
    DWORD state = 0;

    EXPECT_EQ(S_OK, device(speakerId)->GetState(&state));

    EXPECT_EQ(0u, fault.met());
}

#if !defined(_WIN32) // there the strings of the standard library come from its own DLL, which the probe does not see
TEST_F(FaultPlanFinerNames, AreNotMadeUnlessThereIsARule)
{
    const Held<IPartsList> list = incoming(volumeId);
    simulation.journal().record(false);
    const auto allocationsOfACall = [&]
    {
        const support::AllocationProbe probe;
        (void)countOf(list);
        return probe.count();
    };

    EXPECT_EQ(0u, allocationsOfACall());
    simulation.faults().fail("IPartsList::GetPart");
    EXPECT_LT(0u, allocationsOfACall());
    simulation.faults().clear();
}
#endif
}
