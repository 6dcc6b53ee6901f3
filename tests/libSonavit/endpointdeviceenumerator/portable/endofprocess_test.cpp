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

void showJournal(int, void*)
{
    if (watched == nullptr)
        return;
    std::string lines;
    for (const std::string& operation : watched->journal().operations())
        lines += operation + "\n";
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
    static CallList* const calls = new CallList;
    static std::list<CountedClient>* const list = new std::list<CountedClient>;
    for (unsigned int i = 0; i < clients; ++i)
        AudioDeviceEnumeratorFactory::enumerator()->addNotificationClient(
            list->emplace_back(*calls, "client").handle());
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
                       "CoUninitialize\n"));
}

TEST(AudioDeviceEnumeratorDeathTest, MakesNoCallAtTheEndOfAProcessThatNeverCreatedIt)
{
    EXPECT_EXIT(endWithClients(0), testing::ExitedWithCode(0), testing::StrEq(""));
}
