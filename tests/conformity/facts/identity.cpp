// The enumerator and the ids of devices.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <cctype>

namespace conformity
{
namespace
{
/// The result of GetDevice in words, and whether it stored null.
std::string opened(System& system, const WCHAR* id)
{
    IMMDevice* device = poison<IMMDevice>();
    const HRESULT result = system.enumerator().GetDevice(id, &device);
    if (SUCCEEDED(result) && device != nullptr)
        device->Release();
    return resultName(result) + (SUCCEEDED(result) ? "" : device == nullptr ? ", null" : ", not null");
}

Finding countsOfFirstCaller(System&)
{
    const Held<IMMDeviceEnumerator> first = System::createEnumerator();
    if (!first)
        return {Verdict::notTried, "no enumerator"};
    const ULONG count = first->AddRef();
    first->Release();
    return compared(std::to_string(count), "3");
}

Finding oneEnumerator(System&)
{
    const Held<IMMDeviceEnumerator> first = System::createEnumerator();
    const Held<IMMDeviceEnumerator> second = System::createEnumerator();
    if (!first || !second)
        return {Verdict::notTried, "no enumerator"};
    const bool isOne = first.as<IUnknown>().get() == second.as<IUnknown>().get();
    return compared(isOne ? "one object" : "two objects", "one object");
}

Finding unknownContext(System&)
{
    IMMDeviceEnumerator* object = poison<IMMDeviceEnumerator>();
    const HRESULT result = CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER,
                                            sim::InterfaceTraits<IMMDevice>::iid(), reinterpret_cast<void**>(&object));
    return compared(resultName(result) + (object == nullptr ? ", null" : ", not null"), "E_NOINTERFACE, null");
}

Finding eachIdIsFound(System& system)
{
    Observation observation;
    for (const EndpointInSystem& endpoint : system.endpoints())
    {
        const Held<IMMDevice> again = system.device(endpoint.id);
        const std::string id = again ? textOf(*again.get(), &IMMDevice::GetId) : std::string("no device");
        observation.see(id == endpoint.id, id == endpoint.id ? "the same id" : id, endpoint.name);
    }
    return observation.finding("no endpoint");
}
}

Facts identityFacts()
{
    return {
        {"The process holds a reference of its own on the enumerator: the first caller's AddRef answers 3", "3",
         "Wine's tests of the enumerator, run on Windows", countsOfFirstCaller},
        {"CoCreateInstance hands out one enumerator per process", "one object",
         "Wine's tests of the enumerator, run on Windows; NAudio issue 421", oneEnumerator},
        {"Creating the enumerator for an interface that it lacks", "E_NOINTERFACE, null",
         "Microsoft's documentation of CoCreateInstance", unknownContext},
        {"GetDevice without an id", "E_POINTER", "Microsoft's documentation of IMMDeviceEnumerator::GetDevice",
         [](System& system)
         {
             IMMDevice* device = nullptr;
             return compared(resultName(system.enumerator().GetDevice(nullptr, &device)), "E_POINTER");
         }},
        {"GetDevice without a place for the device", "E_POINTER",
         "Microsoft's documentation of IMMDeviceEnumerator::GetDevice",
         [](System& system)
         {
             const Wide id("{0.0.0.00000000}.{00000000-0000-0000-0000-000000000001}");
             return compared(resultName(system.enumerator().GetDevice(id, nullptr)), "E_POINTER");
         }},
        {"GetDevice with text that is no id", "E_INVALIDARG, null",
         "Wine's tests of the enumerator, run on Windows; Microsoft's documentation of the null",
         [](System& system) { return compared(opened(system, Wide("notadevice")), "E_INVALIDARG, null"); }},
        {"GetDevice with a well-formed id that no endpoint has", "E_NOTFOUND, null",
         "Microsoft's documentation of IMMDeviceEnumerator::GetDevice",
         [](System& system)
         {
             const Wide id("{0.0.0.00000000}.{00000000-0000-0000-0000-000000000001}");
             return compared(opened(system, id), "E_NOTFOUND, null");
         }},
        {"Each endpoint is found by its id and reports it", "the same id",
         "Microsoft's documentation of IMMDevice::GetId", eachIdIsFound},
    };
}
}
