// Loads a DLL that uses the client layer on a simulated machine, and ends in one of several ways:
//
//   client_host MACHINE END
//
//   MACHINE  quiet         three cards
//            busy          the same, with a permanent stream of events
//            hanging       the same; after the first reading the platform does not answer until the DLL is freed
//   END      keep          keeps the System, returns from main()
//            exit          keeps the System, calls ExitProcess
//            static        leaves the System to a static object of the DLL, returns from main()
//            free          ends the System, frees the DLL
//            free-keeping  keeps the System, frees the DLL
//            in-turn       does all that "free" does twenty times, each on a thread of its own
//            unused        frees the DLL without using it
//
// It prints what becomes of the layer's library. None of this may crash or hang.

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "tests/unloading/events.h"
#include "tests/unloading/module.h"

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

using unloading::printLine;

namespace
{
constexpr const wchar_t* library = L"libSonavitClient.dll";
constexpr unsigned patience = 10000; // milliseconds
constexpr unsigned shortPatience = 50;

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
    explicit Platform(const std::string& name) : m_simulation(*new sim::Simulation(threeCards()))
    {
        if (name == "busy")
            std::thread([this] { makeEvents(); }).detach();
    }

    /// Makes the layer's worker ask a question that is not answered before answer(), and waits for that question.
    void hang()
    {
        const auto answerLate = [this]
        {
            if (m_asker == nullptr)
                DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &m_asker, SYNCHRONIZE,
                                FALSE, 0);
            SetEvent(m_isAsked);
            WaitForSingleObject(m_answers, INFINITE);
        };
        m_simulation.faults().run("IMMDevice::GetState", answerLate);
        m_simulation.events().setState(m_simulation.machine().endpoints.front().id, sim::stateUnplugged);
        WaitForSingleObject(m_isAsked, INFINITE);
    }

    void answer() { SetEvent(m_answers); }

    /// Waits for the end of the thread that was not answered. It ends after its library, and would end the process if
    /// it had to return into that.
    void waitForTheEndOfTheAsker() const { WaitForSingleObject(m_asker, INFINITE); }

private:
    [[noreturn]] void makeEvents()
    {
        const std::string endpoint = m_simulation.machine().endpoints.front().id;
        for (unsigned i = 0;; ++i)
        {
            m_simulation.events().setState(endpoint, i % 2 == 0 ? sim::stateUnplugged : sim::stateActive);
            m_simulation.events().waitForClients();
        }
    }

    sim::Simulation& m_simulation;
    HANDLE m_asker = nullptr;
    HANDLE m_isAsked = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE m_answers = CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

/// The DLL, which the constructor loads, before the machine.
class User
{
public:
    User()
        : m_module(LoadLibraryW(L"client_user.dll")),
          m_redirection(std::make_unique<sim::Redirection>(GetModuleHandleW(library)))
    {
    }

    bool isLoaded() const { return m_module != nullptr; }
    unsigned keepSystem(unsigned milliseconds) const
    {
        return operation<unsigned(unsigned)>("keepSystem")(milliseconds);
    }
    void call(const char* name) const { operation<void()>(name)(); }

    /// Frees the DLL, and prints whether the layer is unloaded as well.
    void free()
    {
        if (m_isInUse)
            static_cast<void>(m_redirection.release()); // it lasts as long as the layer
        m_redirection.reset();
        FreeLibrary(m_module);
        printLine(GetModuleHandleW(library) == nullptr ? "freed" : "the library is still there");
    }

    /// The layer outlives this DLL.
    void leaveInUse() { m_isInUse = true; }

private:
    template<class Function>
    Function* operation(const char* name) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

    HMODULE m_module;
    std::unique_ptr<sim::Redirection> m_redirection;
    bool m_isInUse = false;
};

/// Twenty times: loads, uses and frees the DLL on a new thread.
void useInTurn()
{
    for (int count = 0; count < 20; ++count)
    {
        std::thread(
            []
            {
                User user;
                if (user.keepSystem(patience) != 3)
                    printLine("not read");
                user.call("startListening");
                user.call("stopListening");
                user.call("endSystem");
                user.free();
            })
            .join();
    }
}

void waitForTheEndOfTheLibrary()
{
    while (GetModuleHandleW(library) != nullptr)
        std::this_thread::yield();
    printLine("freed");
}

void endBy(const std::string& machine, const std::string& end, Platform& platform, User& user)
{
    const bool isHanging = machine == "hanging";
    if (isHanging)
        platform.hang();
    if (end == "free" || end == "free-keeping")
        user.call("stopListening");
    if (end == "free")
        user.call("endSystem");
    if (end == "static")
        user.call("leaveSystemToTheModule");
    if (end == "exit")
        ExitProcess(EXIT_SUCCESS);
    if (end == "free" || end == "free-keeping")
    {
        if (isHanging || end == "free-keeping")
            user.leaveInUse();
        user.free();
    }
    if (isHanging && end == "free")
    {
        platform.answer();
        waitForTheEndOfTheLibrary();
        platform.waitForTheEndOfTheAsker();
    }
}
}

int main(int count, char** words)
{
    if (count != 3)
        return 2;
    const std::string machine = words[1];
    const std::string end = words[2];
    CoInitialize(nullptr); // as programs with windows do
    auto& platform = *new Platform(machine);
    if (end == "in-turn")
    {
        useInTurn();
        printLine("ends");
        return EXIT_SUCCESS;
    }
    auto& user = *new User;
    if (!user.isLoaded())
        return 3;
    if (end == "unused")
        user.free();
    else
    {
        if (user.keepSystem(machine == "hanging" ? shortPatience : patience) != 3)
            return 4;
        user.call("startListening");
        printLine("used");
        endBy(machine, end, platform, user);
    }
    printLine("ends");
    return EXIT_SUCCESS;
}
