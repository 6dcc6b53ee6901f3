// Loads a DLL that uses the library, and ends in the way that it is told:
//
//   unloading_host MACHINE END
//
//   MACHINE  simulated     three cards, whose Core Audio is this program's
//            busy          the same, with events on their way all the time
//            system        the system's own Core Audio
//   END      drop          the cards go, the library stays; main() returns
//            keep          the cards stay; main() returns
//            exit          the cards stay; ExitProcess without main()'s return
//            free          the cards go, and the DLL is freed
//            free-keeping  the cards stay, and the DLL is freed
//            free-aside    the cards go, and another thread frees the DLL
//            unused        the DLL is freed without having been used
//
// It writes down, line by line, what the library asks of the platform from then on. Nothing of this may crash or hang.

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/simulation.h"
#include "tests/unloading/events.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

using unloading::say;

namespace
{
/// Says when COM is initialised and uninitialised on this thread.
class ComSpy final : public IInitializeSpy
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IInitializeSpy);
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT result, DWORD, DWORD) override { return result; }

    HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD) override
    {
        say("CoUninitialize");
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }
};

/// Says from now on when COM ends on the calling thread. For good: the process ends with it.
void watchCom()
{
    static ComSpy* const spy = new ComSpy;
    ULARGE_INTEGER cookie = {};
    if (FAILED(CoRegisterInitializeSpy(spy, &cookie)))
        say("COM cannot be watched");
}

sim::Machine threeCards()
{
    sim::MachineBuilder builder("three");
    for (const char* const name : {"First", "Second", "Third"})
    {
        sim::CardBuilder card = builder.card(name);
        card.speaker();
        card.microphone();
    }
    return builder.build();
}

/// Simulated Core Audio, which stays to the end of the process as the system's does.
class Platform
{
public:
    explicit Platform(const std::string& name)
    {
        if (name == "system")
            return;
        m_simulation = new sim::Simulation(threeCards());
        if (name == "busy")
            std::thread([this] { makeEvents(); }).detach();
    }

    void watch()
    {
        if (m_simulation == nullptr)
            return;
        const auto watchOperation = [this](const char* operation)
        { m_simulation->faults().run(operation, [operation] { say(operation); }); };
        watchOperation("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback");
        watchOperation("IMMDeviceEnumerator::Release");
    }

private:
    [[noreturn]] void makeEvents()
    {
        const std::string endpoint = m_simulation->machine().endpoints.front().id;
        for (unsigned i = 0;; ++i)
        {
            m_simulation->events().setState(endpoint, i % 2 == 0 ? sim::stateUnplugged : sim::stateActive);
            m_simulation->events().settle();
        }
    }

    sim::Simulation* m_simulation = nullptr;
};

/// The DLL, loaded.
class User
{
public:
    User() : m_module(LoadLibraryW(L"unloading_user.dll")) {}

    bool isLoaded() const { return m_module != nullptr; }
    unsigned keepCards() const { return operation<unsigned()>("keepCards")(); }
    void dropCards() const { operation<void()>("dropCards")(); }

    /// Frees the DLL, and says so when the library is gone with it.
    void free() const
    {
        FreeLibrary(m_module);
        say(GetModuleHandleW(L"libSonavit.dll") == nullptr ? "freed" : "the library is still there");
    }

private:
    template<class Function>
    Function* operation(const char* name) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

    HMODULE m_module;
};

void endBy(const std::string& end, const User& user)
{
    if (end == "drop" || end == "free" || end == "free-aside")
        user.dropCards();
    if (end == "exit")
        ExitProcess(EXIT_SUCCESS);
    if (end == "free" || end == "free-keeping" || end == "unused")
        user.free();
    if (end == "free-aside")
        std::thread([&] { user.free(); }).join();
}
}

int main(int count, char** words)
{
    if (count != 3)
        return 2;
    const std::string end = words[2];
    CoInitialize(nullptr); // as programs do that show windows
    Platform platform(words[1]);
    watchCom();
    const User user;
    if (!user.isLoaded())
        return 3;
    if (end != "unused")
    {
        if (user.keepCards() == 0)
            return 4;
        platform.watch();
        say("used");
    }
    endBy(end, user);
    say("ends");
    return EXIT_SUCCESS;
}
