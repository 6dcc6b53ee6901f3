#include "simulator/core/registrations.h"

#include "simulator/core/state.h"
#include "simulator/core/threads.h"
#include "simulator/mutex.h"
#include "simulator/windows/enumeratorfactory.h"
#include "simulator/windows/systemfunction.h"

#include <mutex>
#include <vector>

namespace sim
{
namespace
{
struct Registration
{
    std::uint64_t machine;
    DWORD thread;
    DWORD cookie;
};

/// Never destroyed: a simulation may be a static object.
struct Registrations
{
    Mutex mutex;
    std::vector<Registration> all;

    static Registrations& instance()
    {
        static Registrations* const registrations = new Registrations;
        return *registrations;
    }

    /// Revokes what @p machine has registered on this thread. The result is ignored on purpose: an apartment that has
    /// ended has revoked its own registrations.
    void revokeHere(std::uint64_t machine)
    {
        std::vector<Registration> kept;
        for (const Registration& registration : all)
        {
            if (registration.machine == machine && registration.thread == GetCurrentThreadId())
                CoRevokeClassObject(registration.cookie);
            else
                kept.push_back(registration);
        }
        all.swap(kept);
    }
};

/// The wave functions read the system's endpoints once, at their first call, and may use a class that is registered
/// here. They cannot use a simulated endpoint: it plays nothing, and Wine's wave functions crash on it. So they are
/// called before the first machine is registered. On a system without endpoints they read them at each call; do not
/// call them there while a machine runs.
void letWaveFunctionsReadTheSystem()
{
    static std::once_flag isDone;
    std::call_once(isDone, [] { systemFunction<decltype(waveOutGetNumDevs)>(L"winmm.dll", "waveOutGetNumDevs")(); });
}
}

HRESULT registerApartment(const std::shared_ptr<State>& state)
{
    if (servesAllApartments())
        return S_OK;
    letWaveFunctionsReadTheSystem();
    Registrations& registrations = Registrations::instance();
    const std::lock_guard<Mutex> lock(registrations.mutex);
    registrations.revokeHere(state->number);
    DWORD cookie = 0;
    const HRESULT result = CoRegisterClassObject(__uuidof(MMDeviceEnumerator), &enumeratorFactory(),
                                                 CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    if (SUCCEEDED(result))
        registrations.all.push_back({state->number, GetCurrentThreadId(), cookie});
    return result;
}

void revokeRegistrations(const State& state)
{
    Registrations& registrations = Registrations::instance();
    const std::lock_guard<Mutex> lock(registrations.mutex);
    registrations.revokeHere(state.number);
}

void enterNotificationThread(const std::weak_ptr<State>& state)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (const std::shared_ptr<State> machine = state.lock())
        registerApartment(machine);
}

void leaveNotificationThread()
{
    CoUninitialize();
}
}
