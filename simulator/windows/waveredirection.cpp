#include "simulator/waveredirection.h"

#include "simulator/core/state.h"
#include "simulator/core/wave.h"

#include <array>
#include <cstring>

namespace sim
{
namespace
{
bool hasMachine()
{
    return currentState() != nullptr;
}

/// The system's function of that name. A direct call uses the imports of this module, which are redirected themselves
/// if library and simulator are linked into one module.
template<class Function>
Function* systems(Function&, const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"winmm.dll"), name)));
}

UINT WINAPI redirectedCount()
{
    return hasMachine() ? wave::countOutputs() : systems(waveOutGetNumDevs, "waveOutGetNumDevs")();
}

MMRESULT WINAPI redirectedToOutput(HWAVEOUT device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return hasMachine() ? wave::sendToOutput(wave::idOf(device), message, first, second)
                        : systems(waveOutMessage, "waveOutMessage")(device, message, first, second);
}

MMRESULT WINAPI redirectedToInput(HWAVEIN device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return hasMachine() ? wave::sendToInput(wave::idOf(device), message, first, second)
                        : systems(waveInMessage, "waveInMessage")(device, message, first, second);
}

struct Replacement
{
    const char* name;
    void* function;
};

template<class Function>
void* address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

void* replacementOf(const char* name)
{
    static const std::array<Replacement, 3> replacements = {{{"waveOutGetNumDevs", address(redirectedCount)},
                                                             {"waveOutMessage", address(redirectedToOutput)},
                                                             {"waveInMessage", address(redirectedToInput)}}};
    for (const Replacement& replacement : replacements)
    {
        if (std::strcmp(name, replacement.name) == 0)
            return replacement.function;
    }
    return nullptr;
}

/// The object @p offset bytes into a module.
template<class T>
T* at(void* module, std::size_t offset)
{
    return reinterpret_cast<T*>(static_cast<unsigned char*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* importsOf(void* module)
{
    const auto* const headers =
        at<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return directory.VirtualAddress == 0 ? nullptr : at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
}

void store(void** place, void* value)
{
    DWORD protection = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection);
    *place = value;
    VirtualProtect(place, sizeof *place, protection, &protection);
}
}

WaveRedirection::WaveRedirection(const void* code)
{
    HMODULE module = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(flags, static_cast<LPCWSTR>(code), &module))
        redirect(module);
}

WaveRedirection::~WaveRedirection()
{
    for (const Slot& slot : m_slots)
        store(slot.place, slot.before);
}

/// Searches by name in all imported libraries: different linkers find the functions in different ones.
void WaveRedirection::redirect(void* module)
{
    const IMAGE_IMPORT_DESCRIPTOR* import = importsOf(module);
    if (import == nullptr)
        return;
    for (; import->Name != 0; ++import)
    {
        if (import->OriginalFirstThunk == 0)
            continue; // without names
        const auto* name = at<IMAGE_THUNK_DATA>(module, import->OriginalFirstThunk);
        auto* slot = at<IMAGE_THUNK_DATA>(module, import->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot)
        {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto* const byName =
                at<IMAGE_IMPORT_BY_NAME>(module, static_cast<std::size_t>(name->u1.AddressOfData));
            void* const replacement = replacementOf(reinterpret_cast<const char*>(byName->Name));
            if (replacement == nullptr)
                continue;
            auto* const place = reinterpret_cast<void**>(&slot->u1.Function);
            m_slots.push_back({place, *place});
            store(place, replacement);
        }
    }
}
}
