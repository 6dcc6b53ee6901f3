// Clients of the enumerator and of an endpoint's volume.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <atomic>

namespace conformity
{
namespace
{
/// Counts what the platform asks of a client.
template<class I>
class CountingClient : public I
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        ++queries;
        const bool isKnown = sim::extends<I>(iid) || IsEqualGUID(iid, sim::InterfaceTraits<IUnknown>::iid());
        *object = isKnown ? this : nullptr;
        if (isKnown)
            AddRef();
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    std::atomic<ULONG> references{1};
    std::atomic<unsigned> queries{0};
};

class EndpointClient final : public CountingClient<IMMNotificationClient>
{
public:
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow, ERole, LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY) override { return S_OK; }
};

class VolumeClient final : public CountingClient<IAudioEndpointVolumeCallback>
{
public:
    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA*) override { return S_OK; }
};

Finding registrationTakesNothing(System& system)
{
    EndpointClient client;
    const HRESULT result = system.enumerator().RegisterEndpointNotificationCallback(&client);
    const std::string found = std::to_string(client.references - 1) + " references, " + std::to_string(client.queries) +
                              " questions for an interface";
    system.enumerator().UnregisterEndpointNotificationCallback(&client);
    return FAILED(result) ? Finding{Verdict::differs, resultName(result)}
                          : compared(found, "0 references, 0 questions for an interface");
}

Finding volumeClientsAreHeld(System& system)
{
    Observation observation;
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            const Held<IAudioEndpointVolume> volume = activated<IAudioEndpointVolume>(*endpoint.device.get());
            VolumeClient client;
            if (!volume || FAILED(volume->RegisterControlChangeNotify(&client)))
                return;
            const bool isHeld = client.references > 1;
            volume->UnregisterControlChangeNotify(&client);
            const bool isReleased = client.references == 1;
            const std::string found =
                std::string(isHeld ? "held" : "not held") + ", " + (isReleased ? "released" : "not released");
            observation.see(isHeld && isReleased, found, endpoint.name);
        });
    return observation.finding("no endpoint with a volume");
}
}

Facts notificationFacts()
{
    return {
        {"A registration takes no reference on the client and asks it for no interface",
         "0 references, 0 questions for an interface",
         "Microsoft's documentation of RegisterEndpointNotificationCallback; Wine's tests of the enumerator, run on "
         "Windows; NAudio issues 849 and 1394",
         registrationTakesNothing},
        {"Registering no client", "E_POINTER", "Microsoft's documentation of RegisterEndpointNotificationCallback",
         [](System& system)
         {
             const HRESULT result = system.enumerator().RegisterEndpointNotificationCallback(nullptr);
             return compared(resultName(result), "E_POINTER");
         }},
        {"Unregistering a client that is not registered", "E_NOTFOUND",
         "Microsoft's documentation of UnregisterEndpointNotificationCallback",
         [](System& system)
         {
             EndpointClient client;
             const HRESULT result = system.enumerator().UnregisterEndpointNotificationCallback(&client);
             return compared(resultName(result), "E_NOTFOUND");
         }},
        {"A client of a volume is held until it is unregistered", "held, released",
         "Microsoft's documentation of IAudioEndpointVolume::RegisterControlChangeNotify", volumeClientsAreHeld},
    };
}
}
