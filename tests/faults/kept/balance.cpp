#include "tests/faults/kept/balance.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardinterface.h"
#include "libSonavit/soundcardupdater.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/redirection.h"

#include <algorithm>
#include <utility>

namespace faults::kept
{
namespace
{
using libSonavit::AudioDeviceEnumeratorFactory;

void add(Counts& counts, const std::string& name, long count)
{
    if ((counts[name] += count) == 0)
        counts.erase(name);
}

template<class I>
void addComponents(Counts& counts, const char* name, const qor::Array<AudioComponent<I>>& components)
{
    for (unsigned int i = 0; i < components.size(); ++i)
        add(counts, name, components[i].component().get() == nullptr ? 1 : 2); // the component and its part
}

/// The references that an endpoint in a list holds.
void addEndpoint(Counts& counts, const AudioDevice& device)
{
    add(counts, "IMMDevice", device.m_device.get() == nullptr ? 0 : 1);
    add(counts, "IPropertyStore", device.m_propertyStore.get() == nullptr ? 0 : 1);
    add(counts, "IDeviceTopology", device.m_topology.m_topology.get() == nullptr ? 0 : 1);
    addComponents(counts, "IConnector", device.m_topology.m_connectors);
    addComponents(counts, "ISubunit", device.m_topology.m_subunits);
    using Volume = VolumeController<EndpointVolumeController>;
    const auto* const volume = static_cast<const Volume*>(device.m_volumeControl.get());
    const bool hasVolume = volume != nullptr && volume->m_policy.endpointVolume.get() != nullptr;
    add(counts, "IAudioEndpointVolume", hasVolume ? 1 : 0);
}

void addList(Counts& counts, const SharedPointer<qor::Array<AudioDevice>>& list)
{
    for (unsigned int i = 0; list.get() != nullptr && i < list->size(); ++i)
        addEndpoint(counts, (*list)[i]);
}

/// What the lists of all registered updaters hold.
Counts listedEndpoints()
{
    Counts counts;
    const libSonavit::AudioDeviceEnumerator* const shared = AudioDeviceEnumeratorFactory::m_enumerator.get();
    for (unsigned int i = 0; shared != nullptr && i < shared->m_notificationClients.size(); ++i)
    {
        IMMNotificationClient* const client = shared->m_notificationClients[i].get();
        const auto& updater = static_cast<const SoundCard::SoundCardDeviceUpdater&>(*client);
        addList(counts, updater.m_playbackDeviceList);
        addList(counts, updater.m_recordDeviceList);
    }
    return counts;
}

long sharedEnumerators()
{
    const libSonavit::AudioDeviceEnumerator* const shared = AudioDeviceEnumeratorFactory::m_enumerator.get();
    return shared == nullptr || shared->m_deviceEnumerator.get() == nullptr ? 0 : 1;
}

long successes(const sim::JournalEntries& calls)
{
    return static_cast<long>(calls.size()) - static_cast<long>(calls.failed().size());
}

/// How often a DirectSound GUID was read that is a string, which has memory of its own.
long directSoundTexts(const sim::JournalEntries& calls, const sim::Machine& machine)
{
    long count = 0;
    const sim::JournalEntries reads = calls.of("IPropertyStore::GetValue");
    for (std::size_t i = 0; i < reads.size(); ++i)
    {
        if (FAILED(reads[i].result) || reads[i].arguments.front() != "endpointGuid")
            continue;
        const sim::Endpoint* const endpoint = machine.endpoint(reads[i].object);
        const sim::PropertyValue* const value =
            endpoint == nullptr ? nullptr : sim::findProperty(endpoint->properties, sim::keys::endpointGuid);
        count += value != nullptr && value->text.has_value() ? 1 : 0;
    }
    return count;
}

/// State of the process at one moment.
struct Moment
{
    explicit Moment(const sim::Simulation& simulation)
        : counts(countsOf(simulation.census())),
          listed(listedEndpoints()),
          enumerators(sharedEnumerators())
    {
    }

    Counts counts;
    Counts listed;
    long enumerators;
};

Counts difference(Counts now, const Counts& before)
{
    for (const auto& [name, count] : before)
        add(now, name, -count);
    return now;
}

Counts one(const std::string& name, long count)
{
    Counts counts;
    add(counts, name, count);
    return counts;
}

Balance balanceBetween(const Moment& before, const Moment& after, const sim::JournalEntries& calls,
                       const sim::Machine& machine)
{
    const long walks =
        successes(calls.of("IPart::EnumPartsIncoming")) + successes(calls.of("IPart::EnumPartsOutgoing"));
    const long defaults = successes(calls.of("IMMDeviceEnumerator::GetDefaultAudioEndpoint"));
    const long cards = successes(calls.of("IMMDeviceEnumerator::RegisterEndpointNotificationCallback"));
    const long notifications = successes(calls.of("IAudioEndpointVolume::RegisterControlChangeNotify")) -
                               successes(calls.of("IAudioEndpointVolume::UnregisterControlChangeNotify"));
    Balance balance;
    balance.left = difference(after.counts, before.counts);
    balance.explained[Kind::partsLists] = one("IPartsList", walks);
    balance.explained[Kind::directSoundTexts] = one("task memory", directSoundTexts(calls, machine));
    balance.explained[Kind::defaultIds] = one("task memory", defaults);
    balance.explained[Kind::clients] = one("client of IMMNotificationClient", cards);
    balance.explained[Kind::listedEndpoints] = difference(after.listed, before.listed);
    balance.explained[Kind::enumerator] = one("IMMDeviceEnumerator", after.enumerators - before.enumerators);
    balance.explained[Kind::volumeClients] = one("client of IAudioEndpointVolumeCallback", notifications);
    return balance;
}
}

const char* textOf(Kind kind)
{
    switch (kind)
    {
    case Kind::partsLists:
        return "the list of each walk to the neighbours of a part";
    case Kind::directSoundTexts:
        return "the string of each DirectSound GUID";
    case Kind::defaultIds:
        return "the id of each default endpoint that is asked for";
    case Kind::clients:
        return "the registration of each card";
    case Kind::listedEndpoints:
        return "the endpoints of registered cards";
    case Kind::enumerator:
        return "the shared enumerator";
    case Kind::volumeClients:
        return "a notification whose controller has got another interface";
    }
    return "";
}

Counts countsOf(const sim::Census& census)
{
    Counts counts = census.byInterface;
    add(counts, "task memory", census.taskBlocks());
    for (const auto& [name, count] : census.clients)
        add(counts, "client of " + name, count);
    return counts;
}

std::string textOf(const Counts& counts)
{
    std::string text;
    for (const auto& [name, count] : counts)
        text += (text.empty() ? "" : ", ") + name + " " + std::to_string(count);
    return text.empty() ? "nothing" : text;
}

Balance balanceOf(const Row& row, const sim::Machine& machine)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    Balance balance;
    {
        const sim::Redirection library(reinterpret_cast<const void*>(&enumerateSoundCards)); // its wave functions, too
        sim::Simulation simulation(machine);
        simulation.deliverAtOnce(true);
        {
            const std::function<void()> operation = row.prepare(simulation);
            simulation.journal().clear();
            const Moment before(simulation);
            operation();
            const sim::JournalEntries calls = simulation.journal().entries();
            balance = balanceBetween(before, Moment(simulation), calls, machine);
        }
        AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // as the end of the module does
    }
    CoUninitialize();
    return balance;
}

Counts sumOf(const std::map<Kind, Counts>& explained, const std::set<Kind>& kinds)
{
    Counts sum;
    for (const Kind kind : kinds)
    {
        for (const auto& [name, count] : explained.at(kind))
            add(sum, name, count);
    }
    return sum;
}
}
