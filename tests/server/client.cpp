// A program that uses Core Audio and knows nothing of the simulated machine:
//
//   server_client [MODE]
//
//   list    prints the endpoints, one a line: flow, state, id, name (the default)
//   leak    the same, and keeps a reference on the first endpoint
//   exit    the same, and ends with ExitProcess while another thread uses Core Audio
//   write   opens the default output's store for writing and prints the result
//   waves   asks the wave functions before and after
//
// Its exit code is 0, or 1 if there is no enumerator; then it prints the result.

#include <initguid.h>

#include <windows.h>

#include <functiondiscoverykeys_devpkey.h>
#include <mmdeviceapi.h>
#include <mmsystem.h>

#include <atomic>
#include <cstdio>
#include <cstring>
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

std::string name(IMMDevice& device)
{
    IPropertyStore* store = nullptr;
    if (FAILED(device.OpenPropertyStore(STGM_READ, &store)))
        return "no store";
    PROPVARIANT value;
    PropVariantInit(&value);
    store->GetValue(PKEY_Device_DeviceDesc, &value);
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
                name(device).c_str());
    CoTaskMemFree(id);
}

void list(IMMDeviceEnumerator& all, bool leaks)
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
        print(*device);
        if (!leaks || i > 0)
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
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (mode == "waves")
        std::printf("%u wave devices\n", waveOutGetNumDevs());
    IMMDeviceEnumerator* const all = enumerator();
    if (all == nullptr)
        return 1;
    if (mode == "write")
        openForWriting(*all);
    else
        list(*all, mode == "leak");
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
