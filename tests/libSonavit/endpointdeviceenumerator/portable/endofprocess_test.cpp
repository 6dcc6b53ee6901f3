// What happens at the end of a process. On Windows tests/windows/unloading_test.cpp covers it.
#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportcountedclient.h"
#include "tests/support/librarytest.h"

#include <unistd.h>

#include <cstdlib>
#include <list>

using libSonavit::AudioDeviceEnumeratorFactory;
using support::CallList;
using support::CountedClient;

namespace
{
/// The machine whose journal the ending process prints; null in all other processes.
sim::Simulation* watched = nullptr;

/// What that process prints after the journal: the clients that the platform still calls before each unregistration.
CallList* calls = nullptr;

void showJournal(int, void*)
{
    if (watched == nullptr)
        return;
    std::string lines;
    for (const std::string& operation :
         watched->journal().entries().without("IMMNotificationClient::OnDeviceAdded").operations())
        lines += operation + "\n";
    for (const std::string& call : *calls)
        lines += call + "\n";
    if (::write(STDERR_FILENO, lines.data(), lines.size()) < 0)
        ::_exit(3);
}

void showJournalLast()
{
    ::on_exit(showJournal, nullptr); // unlike std::atexit, not bound to the executable, which ends before its libraries
}

// Handlers run in the reverse order of their registration. This one is registered before any library is initialized, so
// it runs after the static objects of all libraries are destroyed.
__attribute__((section(".preinit_array"), used)) void (*const beforeAllLibraries)() = showJournalLast;

/// Ends the process with @p clients registered.
[[noreturn]] void endWithClients(unsigned int clients)
{
    watched = new sim::Simulation({}); // outlives the library, as the real platform does; so do the clients
    calls = new CallList;
    static std::list<CountedClient>* const list = new std::list<CountedClient>;
    for (unsigned int i = 0; i < clients; ++i)
        AudioDeviceEnumeratorFactory::enumerator()->addNotificationClient(
            list->emplace_back(*calls, "client " + std::to_string(i + 1)).handle());
    watched->deliverAtOnce(true);
    watched->faults().run("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback",
                          [] { watched->events().announceAdded("arrival"); });
    calls->clear();
    watched->journal().clear();
    watched->journal().recordReferences(true);
    std::exit(0);
}
}

TEST(AudioDeviceEnumeratorDeathTest, IsDestroyedWhenTheProcessEnds)
{
    EXPECT_EXIT(
        {
            CoInitialize(nullptr);
            endWithClients(3);
        },
        testing::ExitedWithCode(0),
        testing::StrEq("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback\n"
                       "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback\n"
                       "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback\n"
                       "IMMDeviceEnumerator::Release\n"
                       "CoUninitialize\n"
                       "client 1 OnDeviceAdded\n"
                       "client 2 OnDeviceAdded\n"
                       "client 3 OnDeviceAdded\n"
                       "client 2 OnDeviceAdded\n"
                       "client 3 OnDeviceAdded\n"
                       "client 3 OnDeviceAdded\n"
                       "client 1 Release\n"
                       "client 2 Release\n"
                       "client 3 Release\n"));
}

TEST(AudioDeviceEnumeratorDeathTest, MakesNoCallAtTheEndOfAProcessThatNeverCreatedIt)
{
    EXPECT_EXIT(endWithClients(0), testing::ExitedWithCode(0), testing::StrEq(""));
}
