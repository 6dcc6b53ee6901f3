#include "simulator/redirection.h"

#include "simulator/core/state.h"
#include "simulator/core/wave.h"
#include "simulator/mutex.h"
#include "simulator/windows/enumeratorfactory.h"
#include "simulator/windows/importtable.h"
#include "simulator/windows/systemfunction.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <vector>

namespace sim
{
namespace
{
constexpr const wchar_t* waveLibrary = L"winmm.dll";
constexpr const wchar_t* comLibrary = L"ole32.dll";

bool hasMachine()
{
    return currentState() != nullptr;
}

/// Whether the machine answers for the class.
bool isMachines(REFCLSID clsid)
{
    return IsEqualGUID(clsid, __uuidof(MMDeviceEnumerator)) && hasMachine();
}

HRESULT WINAPI redirectedCreate(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    if (isMachines(clsid))
        return createCurrentEnumerator(outer, context, iid, object);
    static const auto systems = systemFunction<decltype(CoCreateInstance)>(comLibrary, "CoCreateInstance");
    return systems(clsid, outer, context, iid, object);
}

/// Asks @p object for all interfaces and returns what CoCreateInstanceEx returns then.
HRESULT query(IUnknown& object, DWORD count, MULTI_QI* queries)
{
    const auto hasFailed = [&](MULTI_QI& entry)
    {
        entry.hr = object.QueryInterface(*entry.pIID, reinterpret_cast<void**>(&entry.pItf));
        return FAILED(entry.hr);
    };
    const auto failures = std::count_if(queries, queries + count, hasFailed);
    if (failures == 0)
        return S_OK;
    return static_cast<DWORD>(failures) == count ? E_NOINTERFACE : CO_S_NOTALLINTERFACES;
}

HRESULT WINAPI redirectedCreateEx(REFCLSID clsid, IUnknown* outer, DWORD context, COSERVERINFO* server, DWORD count,
                                  MULTI_QI* queries)
{
    if (!isMachines(clsid))
    {
        static const auto systems = systemFunction<decltype(CoCreateInstanceEx)>(comLibrary, "CoCreateInstanceEx");
        return systems(clsid, outer, context, server, count, queries);
    }
    if (count == 0 || queries == nullptr)
        return E_INVALIDARG;
    IUnknown* object = nullptr;
    const HRESULT result =
        createCurrentEnumerator(outer, context, __uuidof(IUnknown), reinterpret_cast<void**>(&object));
    if (object != nullptr)
    {
        const HRESULT answers = query(*object, count, queries);
        object->Release();
        return answers;
    }
    std::for_each(queries, queries + count,
                  [&](MULTI_QI& entry)
                  {
                      entry.pItf = nullptr;
                      entry.hr = result;
                  });
    return result;
}

HRESULT WINAPI redirectedClassObject(REFCLSID clsid, DWORD context, LPVOID server, REFIID iid, LPVOID* object)
{
    if (!isMachines(clsid))
    {
        static const auto systems = systemFunction<decltype(CoGetClassObject)>(comLibrary, "CoGetClassObject");
        return systems(clsid, context, server, iid, object);
    }
    if (object == nullptr)
        return E_INVALIDARG;
    *object = nullptr;
    if (!threadHasCom())
        return CO_E_NOTINITIALIZED;
    return (context & CLSCTX_INPROC_SERVER) == 0 ? REGDB_E_CLASSNOTREG
                                                 : enumeratorFactory().QueryInterface(iid, object);
}

UINT WINAPI redirectedOutputCount()
{
    if (hasMachine())
        return wave::countOutputs();
    static const auto systems = systemFunction<decltype(waveOutGetNumDevs)>(waveLibrary, "waveOutGetNumDevs");
    return systems();
}

UINT WINAPI redirectedInputCount()
{
    if (hasMachine())
        return wave::countInputs();
    static const auto systems = systemFunction<decltype(waveInGetNumDevs)>(waveLibrary, "waveInGetNumDevs");
    return systems();
}

MMRESULT WINAPI redirectedToOutput(HWAVEOUT device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    if (hasMachine())
        return wave::sendToOutput(wave::idOf(device), message, first, second);
    static const auto systems = systemFunction<decltype(waveOutMessage)>(waveLibrary, "waveOutMessage");
    return systems(device, message, first, second);
}

MMRESULT WINAPI redirectedToInput(HWAVEIN device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    if (hasMachine())
        return wave::sendToInput(wave::idOf(device), message, first, second);
    static const auto systems = systemFunction<decltype(waveInMessage)>(waveLibrary, "waveInMessage");
    return systems(device, message, first, second);
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

/// Null if the machine does not answer for the function.
void* replacementOf(const char* name)
{
    static const std::array<Replacement, 7> replacements = {{{"CoCreateInstance", address(redirectedCreate)},
                                                             {"CoCreateInstanceEx", address(redirectedCreateEx)},
                                                             {"CoGetClassObject", address(redirectedClassObject)},
                                                             {"waveOutGetNumDevs", address(redirectedOutputCount)},
                                                             {"waveInGetNumDevs", address(redirectedInputCount)},
                                                             {"waveOutMessage", address(redirectedToOutput)},
                                                             {"waveInMessage", address(redirectedToInput)}}};
    const auto* const found = std::find_if(replacements.begin(), replacements.end(),
                                           [&](const auto& each) { return std::strcmp(name, each.name) == 0; });
    return found == replacements.end() ? nullptr : found->function;
}

/// An import that was replaced, with its address before that.
struct Import
{
    void** place;
    void* before;
};

struct RedirectedModule
{
    void* module;
    unsigned redirections;
    std::vector<Import> imports;
};

/// The modules that are redirected at the moment. Never destroyed: a redirection may be a static object.
struct RedirectedModules
{
    Mutex mutex;
    std::vector<RedirectedModule> all;

    static RedirectedModules& instance()
    {
        static RedirectedModules* const modules = new RedirectedModules;
        return *modules;
    }

    auto find(void* module)
    {
        return std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.module == module; });
    }
};

std::vector<Import> redirect(void* module)
{
    std::vector<Import> imports;
    visitImports(module,
                 [&](const char* name, void** place)
                 {
                     void* const replacement = replacementOf(name);
                     if (replacement == nullptr)
                         return;
                     imports.push_back({place, *place});
                     if (!storeImport(place, replacement))
                         imports.pop_back();
                 });
    return imports;
}

void* moduleOf(const void* code)
{
    HMODULE module = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    return GetModuleHandleExW(flags, static_cast<LPCWSTR>(code), &module) ? module : nullptr;
}
}

Redirection::Redirection(const void* code) : m_module(moduleOf(code))
{
    if (m_module == nullptr)
        return;
    RedirectedModules& modules = RedirectedModules::instance();
    const std::lock_guard<Mutex> lock(modules.mutex);
    const auto known = modules.find(m_module);
    if (known == modules.all.end())
        modules.all.push_back({m_module, 1, redirect(m_module)});
    else
        ++known->redirections;
}

Redirection::~Redirection()
{
    RedirectedModules& modules = RedirectedModules::instance();
    const std::lock_guard<Mutex> lock(modules.mutex);
    const auto known = modules.find(m_module);
    if (known == modules.all.end() || --known->redirections > 0)
        return;
    for (const Import& import : known->imports)
        storeImport(import.place, import.before);
    modules.all.erase(known);
}
}
