#include "tests/faults/client/failures.h"

#include "platform/coreaudio.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>

namespace faults::client
{
namespace
{
/// Calls that promise an object or an id. The others store numbers, flags or names, where nothing is a value.
bool promisesAnObject(const std::string& operation)
{
    static const std::set<std::string> promising = {"CoCreateInstance",
                                                    "IMMDeviceEnumerator::EnumAudioEndpoints",
                                                    "IMMDeviceEnumerator::GetDefaultAudioEndpoint",
                                                    "IMMDeviceEnumerator::GetDevice",
                                                    "IMMDeviceCollection::Item",
                                                    "IMMDevice::Activate",
                                                    "IMMDevice::GetId",
                                                    "IMMDevice::OpenPropertyStore",
                                                    "IDeviceTopology::GetConnector",
                                                    "IDeviceTopology::GetDeviceId",
                                                    "IDeviceTopology::GetPartById",
                                                    "IDeviceTopology::GetSignalPath",
                                                    "IDeviceTopology::GetSubunit",
                                                    "IConnector::GetConnectedTo",
                                                    "IConnector::GetDeviceIdConnectedTo",
                                                    "IPart::Activate",
                                                    "IPart::EnumPartsIncoming",
                                                    "IPart::EnumPartsOutgoing",
                                                    "IPart::GetGlobalId",
                                                    "IPart::GetTopologyObject",
                                                    "IPartsList::GetPart"};
    const bool isQuery = operation.find("::QueryInterface") != std::string::npos;
    return isQuery || promising.count(operation) != 0;
}

/// Calls that promise an object, an id, a string or a number; the others are setters, registrations and ends.
bool storesSomething(const std::string& operation)
{
    for (const char* const action :
         {"::Set", "::Register", "::Unregister", "::VolumeStep", "::Commit", "PropVariantClear", "CoInitialize"})
    {
        if (operation.find(action) != std::string::npos)
            return false;
    }
    return true;
}

/// Calls whose answer is no code, or that free memory.
bool isWithoutCode(const Fault& fault)
{
    static const std::set<std::string> all = {"PropVariantClear", "CoTaskMemAlloc", "waveOutGetNumDevs",
                                              "waveInGetNumDevs", "getParentDeviceInstanceId"};
    return all.count(fault.call.entry.operation) != 0;
}

/// The bus of a card is known if another of its endpoints reports it.
bool mayStaySilent(const Fault& fault)
{
    const std::vector<std::string>& arguments = fault.call.entry.arguments;
    return isWithoutCode(fault) || (!arguments.empty() && arguments[0] == "enumeratorName");
}

std::int32_t codeOf(const Fault& fault)
{
    return static_cast<std::int32_t>(fault.mode == Mode::null ? E_POINTER : E_FAIL);
}

/// If the device that is a default gives no id, it is the question for the default that cannot be answered.
bool names(const sonavit::Problem& problem, const Fault& fault)
{
    const std::string operation = problem.operation().substr(0, problem.operation().find('('));
    const std::string& call = fault.call.entry.operation;
    const bool isDefault = call == "IMMDevice::GetId" && operation == "IMMDeviceEnumerator::GetDefaultAudioEndpoint";
    return (operation == call || isDefault) && problem.code() == codeOf(fault);
}
}

bool isWithinContract(const Fault& fault)
{
    return fault.mode != Mode::null || storesSomething(fault.call.entry.operation);
}

bool isTold(const std::vector<sonavit::Problem>& problems, const std::vector<Fault>& faults)
{
    const auto isAboutOne = [&](const sonavit::Problem& problem)
    { return std::any_of(faults.begin(), faults.end(), [&](const Fault& fault) { return names(problem, fault); }); };
    return std::any_of(problems.begin(), problems.end(), isAboutOne);
}

bool mustBeTold(const std::vector<Fault>& faults)
{
    return std::none_of(faults.begin(), faults.end(), mayStaySilent);
}

bool liesAboutValues(const std::vector<Fault>& faults)
{
    return std::any_of(faults.begin(), faults.end(),
                       [](const Fault& fault)
                       { return fault.mode == Mode::null && !promisesAnObject(fault.call.entry.operation); });
}

bool onlyReleasesFail(const std::vector<Fault>& faults)
{
    return std::all_of(faults.begin(), faults.end(), [](const Fault& fault) { return fault.mode == Mode::raise; });
}

long refusedUnregistrations(const Record& record)
{
    long count = 0;
    for (std::size_t i = 0; i < record.faults.size(); ++i)
    {
        const std::string& operation = record.faults[i].call.entry.operation;
        count += record.fired.at(i) && operation.find("::Unregister") != std::string::npos ? 1 : 0;
    }
    return count;
}

long registeredClients(const sim::Census& census)
{
    long count = 0;
    for (const auto& [interface, clients] : census.clients)
        count += clients;
    return count;
}

long unfreedValues(const sim::JournalEntries& calls)
{
    const std::set<std::string> withMemory = {std::to_string(VT_LPSTR), std::to_string(VT_LPWSTR),
                                              std::to_string(VT_BLOB), std::to_string(VT_CLSID)};
    const sim::JournalEntries all = calls.of("PropVariantClear");
    return std::count_if(all.begin(), all.end(),
                         [&](const sim::JournalEntry& call)
                         { return FAILED(call.result) && withMemory.count(call.arguments.front()) != 0; });
}
}
