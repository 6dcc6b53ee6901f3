/// What the tests of the simulated machine share: a small machine, and a fixture on it that leaves nothing behind.
#pragma once

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/operations.h"
#include "simulator/simulation.h"
#include "tests/simulator/held.h"
#include "tests/simulator/listeners.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

namespace bench
{
/// CLSID_MMDeviceEnumerator, which not every SDK has in its libraries.
inline const CLSID enumeratorClass = {0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};

/// A codec with a speaker (volume and mute in hardware, default), an unplugged microphone behind an input selector, and
/// a line in; and a USB headset with an earphone. The speaker gives neither an audio client nor a base filter.
struct BenchMachine
{
    sim::MachineBuilder builder{"bench"};
    sim::CardBuilder codec = builder.card("Analog Audio");
    sim::EndpointBuilder speaker = codec.speaker();
    sim::EndpointBuilder microphone = codec.microphone();
    sim::EndpointBuilder lineIn = codec.lineIn();
    sim::CardBuilder headset = builder.usbCard("USB Headset");
    sim::EndpointBuilder earphone = headset.headphones("Earphone");
    std::string volumeId;
    std::string muteId;
    std::string selectorId;

    BenchMachine()
    {
        speaker.hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).hardwareMute();
        speaker.endpoint().hasAudioClient = false;
        speaker.endpoint().hasBaseFilter = false;
        microphone.unplugged();
        for (const sim::Subunit& subunit : codec.adapter().topology->subunits)
            (subunit.volume ? volumeId : muteId) = subunit.id;

        sim::Subunit selector;
        selector.name = "Input";
        selector.subType = sim::nodetypes::multiplexer;
        selector.incoming = {microphone.jackId(), lineIn.jackId()};
        selector.selector = sim::SelectorControl{1};
        selectorId = codec.subunit(selector);
    }
};

/// Runs @p action on a new thread, without COM, and waits for it.
template<class Action>
void onThread(const Action& action)
{
    std::thread thread(action);
    thread.join();
}

/// The bench machine on a thread with COM. What Windows forbids in a callback fails the test. At the end of a test
/// there may be no reference on any of its objects, and every operation in the journal must be one that a fault rule
/// can name.
class SimulationTest : public testing::Test
{
protected:
    SimulationTest() : SimulationTest(BenchMachine()) {}

    explicit SimulationTest(const BenchMachine& bench)
        : speakerId(bench.speaker.id()),
          microphoneId(bench.microphone.id()),
          lineInId(bench.lineIn.id()),
          earphoneId(bench.earphone.id()),
          codecId(bench.codec.adapter().id),
          speakerConnector(bench.speaker.connectorId()),
          speakerJack(bench.speaker.jackId()),
          speakerStream(bench.speaker.streamId()),
          volumeId(bench.volumeId),
          muteId(bench.muteId),
          selectorId(bench.selectorId),
          microphoneJack(bench.microphone.jackId()),
          lineInJack(bench.lineIn.jackId()),
          simulation(bench.builder.build())
    {
        simulation.onViolation([](const sim::Violation& violation) { ADD_FAILURE() << violation; });
    }

    ~SimulationTest() override
    {
        EXPECT_EQ(sim::Census(), simulation.census());
        const std::vector<std::string> operations = simulation.journal().operations();
        for (const std::string& operation : std::set<std::string>(operations.begin(), operations.end()))
            EXPECT_TRUE(isClientsOperation(operation) || sim::isOperation(operation)) << operation;
        CoUninitialize();
    }

    Held<IMMDeviceEnumerator> createdEnumerator()
    {
        Held<IMMDeviceEnumerator> enumerator;
        EXPECT_EQ(S_OK, CoCreateInstance(enumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                                         sim::InterfaceTraits<IMMDeviceEnumerator>::iid(), enumerator.putVoid()));
        return enumerator;
    }

    /// The test does on purpose what Windows forbids in a callback, and looks at violations() itself.
    void expectViolations() { simulation.onViolation({}); }

    Held<IMMDevice> device(const std::string& id) { return Held<IMMDevice>(simulation.device(id)); }

    Held<IAudioEndpointVolume> volume(const std::string& endpointId)
    {
        return Held<IAudioEndpointVolume>(simulation.endpointVolume(endpointId));
    }

    Held<IPart> part(const std::string& id) { return Held<IPart>(simulation.part(id)); }

    Held<IConnector> connector(const std::string& id) { return Held<IConnector>(simulation.connector(id)); }

    Held<IDeviceTopology> topology(const std::string& deviceId)
    {
        return Held<IDeviceTopology>(simulation.topology(deviceId));
    }

private:
    /// Only the machine calls the operations of clients.
    static bool isClientsOperation(const std::string& operation)
    {
        return operation.compare(0, 23, "IMMNotificationClient::") == 0 ||
               operation == "IAudioEndpointVolumeCallback::OnNotify" || operation == "IControlChangeNotify::OnNotify";
    }

    const HRESULT m_initialized = CoInitialize(nullptr); // before the simulation, which registers on this thread

protected:
    const std::string speakerId;
    const std::string microphoneId;
    const std::string lineInId;
    const std::string earphoneId;
    const std::string codecId;
    const std::string speakerConnector;
    const std::string speakerJack;
    const std::string speakerStream;
    const std::string volumeId;
    const std::string muteId;
    const std::string selectorId;
    const std::string microphoneJack;
    const std::string lineInJack;
    sim::Simulation simulation;
};
}
