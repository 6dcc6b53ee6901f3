#include "simulator/core/runtimecall.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/valuetext.h"
#include "simulator/objects/objects.h"
#include "simulator/portable/comapartment.h"

using namespace sim;

namespace
{
/// Frees a string or blob of a property.
void freeMember(void* memory)
{
    if (memory != nullptr)
        TaskMemory::instance().free(memory);
}
}

HRESULT WINAPI CoInitialize(LPVOID)
{
    return runtimeCall("CoInitialize", outputs(),
                       [](const std::shared_ptr<State>&) { return comapartment::enter(false); });
}

HRESULT WINAPI CoInitializeEx(LPVOID, DWORD model)
{
    const auto answer = [&](const std::shared_ptr<State>&)
    { return comapartment::enter((model & COINIT_APARTMENTTHREADED) == 0); };
    return runtimeCall("CoInitializeEx", outputs(), answer, model);
}

void WINAPI CoUninitialize()
{
    runtimeNotice("CoUninitialize",
                  [](State* state)
                  {
                      if (!comapartment::leave() && state != nullptr)
                          ++state->comUnderflows;
                  });
}

HRESULT WINAPI CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    const auto answer = [&](const std::shared_ptr<State>& state) -> HRESULT
    {
        if (comapartment::depth() == 0)
            return CO_E_NOTINITIALIZED;
        if (state == nullptr || !IsEqualGUID(clsid, CLSID_MMDeviceEnumerator) || (context & CLSCTX_INPROC_SERVER) == 0)
            return REGDB_E_CLASSNOTREG;
        if (outer != nullptr)
            return CLASS_E_NOAGGREGATION;
        return createEnumerator(state, iid, object);
    };
    return runtimeCall("CoCreateInstance", outputs(object), answer, clsid, context, iid);
}

LPVOID WINAPI CoTaskMemAlloc(SIZE_T bytes)
{
    void* memory = nullptr;
    const auto answer = [&](const std::shared_ptr<State>& state) -> HRESULT
    {
        const std::uint64_t owner = state == nullptr ? 0 : state->number;
        memory = TaskMemory::instance().allocate(bytes, owner, {"CoTaskMemAlloc", std::nullopt});
        return memory == nullptr ? E_OUTOFMEMORY : S_OK;
    };
    runtimeCall("CoTaskMemAlloc", outputs(), answer, bytes);
    return memory;
}

/// The journal records the origin of the block as the argument.
void WINAPI CoTaskMemFree(LPVOID memory)
{
    const AnsweringScope answering(true);
    const TaskMemory::Origin null = {"null", std::nullopt};
    const TaskMemory::Origin origin = memory == nullptr ? null : TaskMemory::instance().free(memory);
    runtimeNotice(
        "CoTaskMemFree", [](State*) {}, origin);
}

HRESULT WINAPI PropVariantClear(PROPVARIANT* value)
{
    const auto answer = [&](const std::shared_ptr<State>&) -> HRESULT
    {
        if (value == nullptr)
            return S_OK;
        if (value->vt == VT_LPWSTR || value->vt == VT_LPSTR || value->vt == VT_CLSID)
            freeMember(value->pwszVal);
        else if (value->vt == VT_BLOB)
            freeMember(value->blob.pBlobData);
        PropVariantInit(value);
        return S_OK;
    };
    const VARTYPE tag = value == nullptr ? VARTYPE(VT_EMPTY) : value->vt;
    return runtimeCall("PropVariantClear", outputs(), answer, tag);
}

HRESULT WINAPI CLSIDFromString(LPCOLESTR text, LPCLSID clsid)
{
    const auto answer = [&](const std::shared_ptr<State>&) -> HRESULT
    {
        *clsid = GUID{};
        if (text == nullptr)
            return S_OK;
        const std::optional<GUID> parsed = guidFromText(utf8(text));
        if (!parsed)
            return CO_E_CLASSSTRING;
        *clsid = *parsed;
        return S_OK;
    };
    return clsid == nullptr ? E_INVALIDARG : runtimeCall("CLSIDFromString", outputs(), answer, text);
}

BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM first, LPARAM second)
{
    const auto answer = [&](const std::shared_ptr<State>& state) -> HRESULT
    {
        if (state == nullptr)
            return E_HANDLE;
        state->recordMessage({window, message, first, second});
        return S_OK;
    };
    return SUCCEEDED(runtimeCall("PostMessageW", outputs(), answer, message, first, second)) ? TRUE : FALSE;
}
