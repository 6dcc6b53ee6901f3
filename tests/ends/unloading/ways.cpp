// A program that loads a module with the library and unloads both, while it runs and at its end.

#include "qor/logging.h"
#include "tests/ends/machine/machine.h"
#include "tests/ends/machine/preparation.h"
#include "tests/unloading/module.h"

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

namespace ends
{
namespace
{
#if defined(_WIN32)
const char* const library = "libSonavit.dll";
#else
const char* const library = "libSonavit.so.0";
#endif

/// What modules keep beyond their own end is not lost: the program has it, to its end.
void keptForGood(const void* objects)
{
    static auto& all = *new std::vector<const void*>;
    all.push_back(objects);
}

/// The module, while it is loaded.
class User
{
public:
    User() : m_module(std::make_unique<unloading::Module>(SONAVIT_ENDS_MODULE))
    {
        if (!m_module->isLoaded())
            printLine("the module is missing");
    }

    void keepCards()
    {
        CoInitialize(nullptr);
        machine().registerOnThisThread();
        const unsigned count = m_module->function<unsigned()>("keepCards")();
        printLine((std::to_string(count) + " cards").c_str());
        keptForGood(m_module->function<const void*()>("keptObjects")());
    }

    void dropCards() { m_module->function<void()>("dropCards")(); }

    void unload()
    {
        m_module->unload();
        printLine(unloading::Module::isLoaded(library) ? "the library is still there" : "unloaded");
    }

private:
    std::unique_ptr<unloading::Module> m_module;
};

/// What the library has left in a process that goes on, without COM's own functions, which the machine does not see on
/// Windows.
void printClients()
{
    const sim::Census census = machine().census();
    const bool hasCards = census.references() != 0;
    printLine(((census.clients.empty() ? "no clients" : "clients") + std::string(hasCards ? ", cards" : "")).c_str());
}

void unloadWithoutCards()
{
    User user;
    user.keepCards();
    user.dropCards();
    user.unload();
    printClients();
}

void unloadWithLivingCards()
{
    User user;
    user.keepCards();
    user.unload();
    printClients();
}

void unloadUnused()
{
    machine();
    User user;
    user.unload();
    printLine(std::to_string(machine().journal().size()).c_str());
}

void unloadOnAnotherThread()
{
    User user;
    user.keepCards();
    user.dropCards();
    std::thread([&] { user.unload(); }).join();
    printClients();
}

/// Each time the library begins anew.
void loadAndUnloadAgain()
{
    for (int count = 0; count < 10; ++count)
    {
        User user;
        user.keepCards();
        user.dropCards();
        user.unload();
    }
    printClients();
}

void loadAgainAndReturn()
{
    {
        User user;
        user.keepCards();
        user.unload();
    }
    static User again;
    again.keepCards();
    tellTheEnd();
}

[[noreturn]] void makeEvents()
{
    const std::string endpoint = speakers();
    for (unsigned i = 0;; ++i)
    {
        machine().events().setState(endpoint, i % 2 == 0 ? sim::stateUnplugged : sim::stateActive);
        machine().events().waitForClients();
    }
}

/// The platform calls the library while it ends.
void unloadWhileEventsArrive()
{
    machine().journal().record(false);
    std::thread(&makeEvents).detach();
    for (int count = 0; count < 5; ++count)
    {
        User user;
        user.keepCards();
        user.unload();
    }
}

void causeEventsAfterUnloading()
{
    User user;
    user.keepCards();
    user.dropCards();
    user.unload();
    machine().events().unplug(speakers());
    machine().events().waitForClients();
    printClients();
}

/// Drops the cards of the module at the end of the program.
class Dropper
{
public:
    Dropper() = default;
    Dropper(const Dropper&) = delete;
    Dropper& operator=(const Dropper&) = delete;

    ~Dropper()
    {
        printLine("drops");
        m_user->dropCards();
    }

    void use(User& user) { m_user = &user; }

private:
    User* m_user = nullptr;
};

/// A static object that is older than the library. Off Windows it ends after the static objects of the library, which
/// is loaded later; there the library ends with the module, after the program.
void dropCardsAfterTheEnd()
{
    static Dropper dropper;
    auto& user = *new User;
    user.keepCards();
    dropper.use(user);
    tellTheEnd();
}

void unloadInAHandler()
{
    static User user;
    std::atexit(
        []
        {
            user.dropCards();
            user.unload();
            printClients();
        });
    user.keepCards();
}
}

/// The machine lacks some properties, which each discovery reports; they are no news here.
void prepareForTheMachine()
{
    qor::LogFactory::setSink([](const qor::LogRecord&) {});
}

Ways allWays()
{
    Lines often;
    for (int count = 0; count < 10; ++count)
        often = often + Lines{"3 cards", "unloaded"};
    Lines fiveTimes(often.begin(), often.begin() + 10);
    return {
        {"unload_without_cards", {"3 cards", "unloaded", "no clients", "ends"}, &unloadWithoutCards},
        {"unload_with_living_cards", {"3 cards", "unloaded", "no clients, cards", "ends"}, &unloadWithLivingCards},
        {"unload_unused", {"unloaded", "0", "ends"}, &unloadUnused},
        {"unload_on_another_thread", {"3 cards", "unloaded", "no clients", "ends"}, &unloadOnAnotherThread},
        {"load_and_unload_again", often + Lines{"no clients", "ends"}, &loadAndUnloadAgain},
        {"load_again_and_return", Lines{"3 cards", "unloaded", "3 cards", "ends"} + regularEnd(1, ", cards", 12),
         &loadAgainAndReturn},
        {"unload_while_events_arrive", fiveTimes + Lines{"ends"}, &unloadWhileEventsArrive, 0, true},
        {"events_after_unloading", {"3 cards", "unloaded", "no clients", "ends"}, &causeEventsAfterUnloading},
        {"cards_that_outlive_the_library", Lines{"3 cards", "ends", "drops"} + regularEnd(), &dropCardsAfterTheEnd},
        {"unload_in_a_handler", {"3 cards", "ends", "unloaded", "no clients"}, &unloadInAHandler},
    };
}
}
