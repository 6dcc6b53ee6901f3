// Loads a DLL that uses the library, and ends in one of several ways:
//
//   unloading_host MACHINE END
//
//   MACHINE  simulated     three cards; this program provides Core Audio
//            busy          the same, with a permanent stream of events
//            system        the system's Core Audio
//   END      drop          destroys the cards, keeps the library, returns from main()
//            keep          keeps the cards, returns from main()
//            exit          keeps the cards, calls ExitProcess
//            free          destroys the cards, frees the DLL
//            free-keeping  keeps the cards, frees the DLL
//            free-aside    destroys the cards, frees the DLL on another thread
//            unused        frees the DLL without using it
//
// It prints the library's platform calls from then on, one a line. None of this may crash or hang.

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/simulation.h"
#include "tests/unloading/comspy.h"
#include "tests/unloading/events.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

using unloading::printLine;

namespace
{
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

/// Simulated Core Audio, which exists until the process ends, as the system's does.
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
        { m_simulation->faults().run(operation, [operation] { printLine(operation); }); };
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
            m_simulation->events().waitForClients();
        }
    }

    sim::Simulation* m_simulation = nullptr;
};

/// The DLL, which the constructor loads.
class User
{
public:
    User() : m_module(LoadLibraryW(L"unloading_user.dll")) {}

    bool isLoaded() const { return m_module != nullptr; }
    unsigned keepCards() const { return operation<unsigned()>("keepCards")(); }
    void dropCards() const { operation<void()>("dropCards")(); }

    /// Frees the DLL, and prints whether the library is unloaded as well.
    void free() const
    {
        FreeLibrary(m_module);
        printLine(GetModuleHandleW(L"libSonavit.dll") == nullptr ? "freed" : "the library is still there");
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
    CoInitialize(nullptr); // as programs with windows do
    Platform platform(words[1]);
    unloading::watchCom([] { printLine("CoUninitialize"); });
    const User user;
    if (!user.isLoaded())
        return 3;
    if (end != "unused")
    {
        if (user.keepCards() == 0)
            return 4;
        platform.watch();
        printLine("used");
    }
    endBy(end, user);
    printLine("ends");
    return EXIT_SUCCESS;
}
