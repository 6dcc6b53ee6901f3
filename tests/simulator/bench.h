/// What the tests of the simulated machine share: a small machine, references that end by themselves, and listeners.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "simulator/core/interfaces.h"
#include "simulator/core/text.h"
#include "simulator/machinebuilder.h"
#include "simulator/machinenodetypes.h"
#include "simulator/simulation.h"

namespace bench
{
/// CLSID_MMDeviceEnumerator, which not every SDK has in its libraries.
inline const CLSID enumeratorClass = {0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};

/// A pointer that no call may leave behind where it must store null.
template<class I>
I* poison()
{
    return reinterpret_cast<I*>(std::uintptr_t{0xDEAD0});
}

/// One counted reference.
template<class I>
class Held
{
public:
    Held() = default;
    /// Adopts @p object.
    explicit Held(I* object) : m_object(object) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Held(Held&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Held& operator=(Held&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Held() { reset(); }

    I* operator->() const { return m_object; }
    I* get() const { return m_object; }
    I** put()
    {
        reset();
        return &m_object;
    }
    void** putVoid() { return reinterpret_cast<void**>(put()); }
    void reset()
    {
        if (m_object != nullptr)
            std::exchange(m_object, nullptr)->Release();
    }

    /// The object's interface J; nothing where it has none.
    template<class J>
    Held<J> as() const
    {
        void* object = nullptr;
        m_object->QueryInterface(sim::InterfaceTraits<J>::iid(), &object);
        return Held<J>(static_cast<J*>(object));
    }

private:
    I* m_object = nullptr;
};

/// The text, whose task memory is freed.
inline std::string taken(LPWSTR text)
{
    const std::string result = text == nullptr ? "null" : sim::utf8(text);
    CoTaskMemFree(text);
    return result;
}

/// The text that a getter such as IMMDevice::GetId stores.
template<class Object, class Getter>
std::string textOf(const Object& object, Getter getter)
{
    LPWSTR text = nullptr;
    EXPECT_EQ(S_OK, (object.get()->*getter)(&text));
    return taken(text);
}

/// @p text for as long as the full expression lasts.
class Wide
{
public:
    explicit Wide(const std::string& text) : m_units(sim::utf16(text)) {}
    operator const WCHAR*() const { return m_units.data(); }

private:
    std::vector<WCHAR> m_units;
};

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

/// A thread of its own with or without COM; ends before the constructor does.
template<class Action>
void onThread(const Action& action)
{
    std::thread thread(action);
    thread.join();
}

/// The bench machine on a thread with COM. At the end nobody may hold anything of it.
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
    }

    ~SimulationTest() override
    {
        EXPECT_EQ(sim::Census(), simulation.census());
        CoUninitialize();
    }

    Held<IMMDeviceEnumerator> createdEnumerator()
    {
        Held<IMMDeviceEnumerator> enumerator;
        EXPECT_EQ(S_OK, CoCreateInstance(enumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                                         sim::InterfaceTraits<IMMDeviceEnumerator>::iid(), enumerator.putVoid()));
        return enumerator;
    }

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
    const HRESULT m_initialized = CoInitialize(nullptr); // ahead of the simulation, which wants to register here

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

/// What COM objects of tests have in common: a count, and an end when it is 0.
template<class I>
class Listener : public I
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    /// Lives on the stack of its test, which looks at the count.
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    /// What was heard, in order.
    std::vector<std::string> heard() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_heard;
    }

    std::thread::id thread() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_thread;
    }

    std::atomic<ULONG> references{1};

protected:
    void hear(const std::string& event)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_heard.push_back(event);
        m_thread = std::this_thread::get_id();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_heard;
    std::thread::id m_thread;
};

class ClientListener : public Listener<IMMNotificationClient>
{
public:
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR id, DWORD state) override
    {
        hear("state " + sim::utf8(id) + " " + std::to_string(state));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR id) override
    {
        hear("added " + sim::utf8(id));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR id) override
    {
        hear("removed " + sim::utf8(id));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR id) override
    {
        hear("default " + std::to_string(flow) + " " + std::to_string(role) + " " +
             (id == nullptr ? "null" : sim::utf8(id)));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR id, const PROPERTYKEY key) override
    {
        hear("property " + sim::utf8(id) + " " + std::to_string(key.pid));
        return S_OK;
    }
};

class VolumeListener : public Listener<IAudioEndpointVolumeCallback>
{
public:
    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) override
    {
        std::string event = data->bMuted ? "muted" : "heard";
        const auto* const levels =
            reinterpret_cast<const char*>(data) + offsetof(AUDIO_VOLUME_NOTIFICATION_DATA, afChannelVolumes);
        for (UINT channel = 0; channel < data->nChannels; ++channel)
        {
            float level = 0.0f;
            std::memcpy(&level, levels + channel * sizeof level, sizeof level);
            event += " " + std::to_string(static_cast<int>(level * 1000.0f + 0.5f));
        }
        hear(event + " master " + std::to_string(static_cast<int>(data->fMasterVolume * 1000.0f + 0.5f)) + " context " +
             std::to_string(data->guidEventContext.Data1));
        return S_OK;
    }
};

class ControlListener : public Listener<IControlChangeNotify>
{
public:
    HRESULT STDMETHODCALLTYPE OnNotify(DWORD, LPCGUID context) override
    {
        hear(context == nullptr ? "null" : std::to_string(context->Data1));
        return S_OK;
    }
};
}
