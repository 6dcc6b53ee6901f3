// A program that uses Core Audio and knows nothing of the simulated machine:
//
//   server_client [MODE]
//
//   list    prints the endpoints, one a line: flow, state, id, name (the default)
//   leak    the same, and keeps a reference on the first endpoint
//   exit    the same, and ends with ExitProcess while another thread uses Core Audio
//   write   opens the default output's store for writing and prints the result
//   groups  prints the endpoints, one a line: id, instance id of the adapter at the other end of its first connector
//   waves   asks the wave functions before and after
//   timer   prints the endpoints in a callback of a multimedia timer
//
// Its exit code is 0, or 1 if there is no enumerator; then it prints the result.

#include "platform/windows/defineidentifiers.h"

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

namespace
{
std::string utf8(const wchar_t* text)
{
    std::string bytes(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr)),
                      '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.pop_back();
    return bytes;
}

IMMDeviceEnumerator* enumerator()
{
    IMMDeviceEnumerator* result = nullptr;
    const HRESULT code = CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER,
                                          __uuidof(IMMDeviceEnumerator), reinterpret_cast<void**>(&result));
    if (FAILED(code))
        std::printf("no enumerator: 0x%08lX\n", static_cast<unsigned long>(code));
    return result;
}

/// A string of the device's store; empty if the property is no string.
std::string property(IMMDevice& device, const PROPERTYKEY& key)
{
    IPropertyStore* store = nullptr;
    if (FAILED(device.OpenPropertyStore(STGM_READ, &store)))
        return "no store";
    PROPVARIANT value;
    PropVariantInit(&value);
    store->GetValue(key, &value);
    const std::string text = value.vt == VT_LPWSTR ? utf8(value.pwszVal) : std::string();
    PropVariantClear(&value);
    store->Release();
    return text;
}

void print(IMMDevice& device)
{
    IMMEndpoint* endpoint = nullptr;
    EDataFlow flow = eAll;
    if (SUCCEEDED(device.QueryInterface(__uuidof(IMMEndpoint), reinterpret_cast<void**>(&endpoint))))
    {
        endpoint->GetDataFlow(&flow);
        endpoint->Release();
    }
    DWORD state = 0;
    device.GetState(&state);
    LPWSTR id = nullptr;
    device.GetId(&id);
    std::printf("%s %lu %s %s\n", flow == eRender ? "render" : "capture", state, utf8(id).c_str(),
                property(device, PKEY_Device_DeviceDesc).c_str());
    CoTaskMemFree(id);
}

/// The adapter at the other end of the endpoint's first connector; null if it cannot be reached.
IMMDevice* adapterOf(IMMDeviceEnumerator& all, IMMDevice& endpoint)
{
    IDeviceTopology* topology = nullptr;
    IConnector* connector = nullptr;
    LPWSTR id = nullptr;
    IMMDevice* adapter = nullptr;
    endpoint.Activate(__uuidof(IDeviceTopology), CLSCTX_INPROC_SERVER, nullptr, reinterpret_cast<void**>(&topology));
    if (topology != nullptr && SUCCEEDED(topology->GetConnector(0, &connector)))
    {
        if (SUCCEEDED(connector->GetDeviceIdConnectedTo(&id)) && id != nullptr)
            all.GetDevice(id, &adapter);
        CoTaskMemFree(id);
        connector->Release();
    }
    if (topology != nullptr)
        topology->Release();
    return adapter;
}

/// Prints the group of an endpoint as programs form it that show the endpoints of one adapter together.
void printGroup(IMMDeviceEnumerator& all, IMMDevice& device)
{
    constexpr PROPERTYKEY instanceId = {{0x78C34FC8, 0x104A, 0x4ACA, {0x9E, 0xA4, 0x52, 0x4D, 0x52, 0x99, 0x6E, 0x57}},
                                        256};
    LPWSTR id = nullptr;
    device.GetId(&id);
    IMMDevice* const adapter = adapterOf(all, device);
    std::printf("%s %s\n", utf8(id).c_str(), adapter == nullptr ? "" : property(*adapter, instanceId).c_str());
    if (adapter != nullptr)
        adapter->Release();
    CoTaskMemFree(id);
}

void list(IMMDeviceEnumerator& all, const std::string& mode)
{
    IMMDeviceCollection* collection = nullptr;
    UINT count = 0;
    if (FAILED(all.EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, &collection)))
        return;
    collection->GetCount(&count);
    for (UINT i = 0; i < count; ++i)
    {
        IMMDevice* device = nullptr;
        if (FAILED(collection->Item(i, &device)))
            continue;
        if (mode == "groups")
            printGroup(all, *device);
        else
            print(*device);
        if (mode != "leak" || i > 0)
            device->Release();
    }
    collection->Release();
}

void openForWriting(IMMDeviceEnumerator& all)
{
    IMMDevice* device = nullptr;
    IPropertyStore* store = nullptr;
    HRESULT result = all.GetDefaultAudioEndpoint(eRender, eConsole, &device);
    if (device != nullptr)
    {
        result = device->OpenPropertyStore(STGM_READWRITE, &store);
        device->Release();
    }
    if (store != nullptr)
        store->Release();
    std::printf("a store for writing: 0x%08lX\n", static_cast<unsigned long>(result));
}

/// Prints the endpoints on the timer's thread, and sets the event.
void CALLBACK listInTimer(UINT, UINT, DWORD_PTR done, DWORD_PTR, DWORD_PTR)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    IMMDeviceEnumerator* const own = enumerator();
    if (own != nullptr)
    {
        list(*own, "timer");
        own->Release();
    }
    CoUninitialize();
    SetEvent(reinterpret_cast<HANDLE>(done));
}

/// 0 if the timer has called.
int waitForTimer()
{
    const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const MMRESULT timer = timeSetEvent(1, 0, &listInTimer, reinterpret_cast<DWORD_PTR>(done), TIME_ONESHOT);
    const bool hasCalled = timer != 0 && WaitForSingleObject(done, 60000) == WAIT_OBJECT_0;
    CloseHandle(done);
    return hasCalled ? 0 : 1;
}

std::atomic<unsigned> calls{0};

/// Uses Core Audio until the process ends, and counts.
void stayBusy()
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    IMMDeviceEnumerator* const own = enumerator();
    while (own != nullptr)
    {
        IMMDevice* device = nullptr;
        if (SUCCEEDED(own->GetDefaultAudioEndpoint(eRender, eConsole, &device)))
            device->Release();
        ++calls;
    }
}
}

int main(int count, char** words)
{
    const std::string mode = count > 1 ? words[1] : "list";
    if (mode == "timer")
        return waitForTimer();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (mode == "waves")
        std::printf("%u wave devices\n", waveOutGetNumDevs());
    IMMDeviceEnumerator* const all = enumerator();
    if (all == nullptr)
        return 1;
    if (mode == "write")
        openForWriting(*all);
    else
        list(*all, mode);
    if (mode == "exit")
    {
        std::thread(stayBusy).detach();
        while (calls < 100)
            std::this_thread::yield();
        std::fflush(stdout);
        ExitProcess(0);
    }
    all->Release();
    CoUninitialize();
    if (mode == "waves")
        std::printf("%u wave devices\n", waveOutGetNumDevs());
    return 0;
}
