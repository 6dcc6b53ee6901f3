// Lists of endpoints.
#include "libSonavit/endpointdeviceenumerator.h"
#include "tests/libSonavit/portable/supportnotes.h"
#include "tests/libSonavit/portable/supportoperations.h"

#include <utility>

namespace support
{
namespace
{
void noteStates(Transcript& transcript, const EndpointDeviceEnumeratorCommon& lists)
{
    noteDevices(transcript, "active", lists.activeDevice());
    noteDevices(transcript, "not present", lists.notPresentDevice());
    noteDevices(transcript, "disabled", lists.disabledDevice());
    noteDevices(transcript, "unplugged", lists.unpluggedDevice());
}

void listStatesOf(Transcript& transcript, EDataFlow flow)
{
    EndpointDeviceEnumeratorCommon lists;
    noteThrown(transcript, [&] { transcript.note(lists.enumerate(flow) ? "enumerated" : "not enumerated"); });
    noteStates(transcript, lists);
    if (lists.enumerator().get() == nullptr)
        return;
    noteThrown(transcript, [&] { lists.refresh(flow); });
    noteStates(transcript, lists);
    transcript.noteCensus();
    const EndpointDeviceEnumeratorCommon copy = lists;
    EndpointDeviceEnumeratorCommon assigned(flow == eRender ? eCapture : eRender);
    assigned = copy;
    transcript.note("lists by value");
    noteDevices(transcript, "active", lists.activeDevice());
    noteDevices(transcript, "unplugged", lists.unpluggedDevice());
    transcript.note("the lists go");
}
}

void listByState(sim::Simulation&, Transcript& transcript)
{
    transcript.begin();
    for (const EDataFlow flow : {eRender, eCapture, eAll})
        noteThrown(transcript, [&] { listStatesOf(transcript, flow); });
}

void listFlat(sim::Simulation&, Transcript& transcript)
{
    transcript.begin();
    const libSonavit::EndpointDeviceEnumerator enumerator;
    libSonavit::AudioDeviceEnumerator& shared = *libSonavit::AudioDeviceEnumeratorFactory::enumerator();
    const bool isShared = shared.deviceEnumerator().get() != nullptr;
    qor::Array<AudioDevice> devices;
    for (const EDataFlow flow : {eRender, eCapture, eAll})
    {
        if (enumerator.isInitialized())
            noteThrown(transcript, [&] { enumerator.audioDevices(flow, devices); });
        noteDevices(transcript, "own", devices);
        if (isShared)
            noteThrown(transcript, [&] { shared.audioDevices(flow, devices); });
        noteDevices(transcript, "shared", devices);
    }
    transcript.noteCensus();
}
}
