#include "tests/faults/library/kept.h"

#include "platform/propertykeys.h"
#include "simulator/machine/property.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace faults::library
{
namespace
{
/// Whether this call, the n-th of its operation since act() began, was made to succeed with nothing.
bool foundNothing(const std::string& operation, std::uint32_t number, const std::vector<Fault>& faults)
{
    return std::any_of(faults.begin(), faults.end(),
                       [&](const Fault& fault) {
                           return fault.mode == Mode::null && fault.call.entry.operation == operation &&
                                  fault.call.number == number;
                       });
}

bool isNeighbourWalk(const std::string& operation)
{
    return operation == "IPart::EnumPartsIncoming" || operation == "IPart::EnumPartsOutgoing";
}

/// Whether a variant of that tag, as the journal writes it, has memory of its own.
bool isClearedTag(const std::string& tag)
{
    return tag == std::to_string(VT_LPWSTR) || tag == std::to_string(VT_LPSTR) || tag == std::to_string(VT_BLOB) ||
           tag == std::to_string(VT_CLSID);
}

/// Clients that the platform has taken, less those that it has let go.
void countClient(std::map<std::string, long>& clients, const std::string& operation)
{
    const std::string enumerator = "IMMDeviceEnumerator::";
    const std::string volume = "IAudioEndpointVolume::";
    if (operation == enumerator + "RegisterEndpointNotificationCallback")
        ++clients["IMMNotificationClient"];
    else if (operation == enumerator + "UnregisterEndpointNotificationCallback")
        --clients["IMMNotificationClient"];
    else if (operation == volume + "RegisterControlChangeNotify")
        ++clients["IAudioEndpointVolumeCallback"];
    else if (operation == volume + "UnregisterControlChangeNotify")
        --clients["IAudioEndpointVolumeCallback"];
}

void removeZeroes(std::map<std::string, long>& counts)
{
    for (auto count = counts.begin(); count != counts.end();)
        count = count->second == 0 ? counts.erase(count) : std::next(count);
}

bool hasMemory(const sim::PropertyValue* value)
{
    return value != nullptr && (value->tag == VT_LPWSTR || value->tag == VT_LPSTR) && value->text.has_value();
}

/// Whether a DirectSound GUID of that device is a string.
bool hasDirectSoundText(const sim::Machine& machine, const std::string& device)
{
    const sim::Endpoint* const endpoint = machine.endpoint(device);
    const sim::Adapter* const adapter = machine.adapter(device);
    const sim::Device* const described = endpoint != nullptr ? static_cast<const sim::Device*>(endpoint) : adapter;
    if (described == nullptr)
        return false;
    return hasMemory(sim::findProperty(described->properties, platform::propertykeys::directSoundGuid)) ||
           hasMemory(sim::findProperty(described->unlistedProperties, platform::propertykeys::directSoundGuid));
}

bool isOfReferences(const std::string& operation)
{
    for (const char* const name : {"::AddRef", "::Release", "::QueryInterface"})
    {
        if (operation.find(name) != std::string::npos)
            return true;
    }
    return false;
}
}

sim::Census keptAfter(const Record& run, const sim::Machine& machine)
{
    sim::Census kept;
    std::map<std::string, std::uint32_t> numbers;
    bool answersDefault = false; // the latest call has found the default endpoint
    std::string valueOf;         // the store whose value was read last
    for (std::size_t i = 0; i < run.allCalls.size(); ++i)
    {
        const sim::JournalEntry& call = run.allCalls[i];
        const bool isInAct = i >= run.callsBefore && i < run.callsBefore + run.calls.size();
        const bool isPlanned = isInAct && foundNothing(call.operation, ++numbers[call.operation], run.faults);
        const bool isSuccess = call.end == sim::CallEnd::returned && SUCCEEDED(call.result) && !isPlanned;
        if (call.operation == "PropVariantClear" && !isSuccess && isClearedTag(call.arguments.front()))
            ++kept.taskMemory["IPropertyStore::GetValue " + valueOf];
        if (call.operation == "IPropertyStore::GetValue")
            valueOf = call.object;
        if (isOfReferences(call.operation) || call.operation == "CoTaskMemFree")
            continue;
        if (isNeighbourWalk(call.operation) && isSuccess)
            ++kept.byInterface["IPartsList"];
        if (call.operation == "IPropertyStore::GetValue" && isSuccess && !call.arguments.empty() &&
            call.arguments.front() == "endpointGuid" && hasDirectSoundText(machine, call.object))
            ++kept.taskMemory[call.operation + " " + call.object];
        if (call.operation == "IMMDevice::GetId" && isSuccess && answersDefault)
            ++kept.taskMemory[call.operation + " " + call.object];
        if (isSuccess)
            countClient(kept.clients, call.operation);
        answersDefault = call.operation == "IMMDeviceEnumerator::GetDefaultAudioEndpoint" && isSuccess;
    }
    removeZeroes(kept.clients);
    return kept;
}

sim::Census comparable(sim::Census census)
{
    census.objects.clear();
    census.byObject.clear();
    census.taskBytes = 0;
    return census;
}
}
