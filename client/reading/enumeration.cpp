#include "COM/interfacequery.h"
#include "COM/tasktext.h"
#include "client/reading/endpointreading.h"
#include "client/reading/judge.h"
#include "client/reading/text.h"
#include "sonavit/defaultcalls.h"
#include "sonavit/idindex.h"
#include "sonavit/listcalls.h"

#include <array>
#include <string_view>
#include <utility>

namespace sonavit::reading
{
namespace
{
/// No computer has more endpoints.
constexpr UINT mostEndpoints = 0x10000;
/// After so many failures in a row the rest of a list is taken as lost.
constexpr unsigned mostFailures = 16;

/// For calls that name no object. Never destroyed: the worker reads while the static objects of a program are.
const std::string& noObject()
{
    static const std::string& none = *new std::string;
    return none;
}

EDataFlow platformFlow(Flow flow)
{
    return flow == Flow::output ? eRender : eCapture;
}

const char* nameOf(Flow flow)
{
    return flow == Flow::output ? "eRender" : "eCapture";
}

void begin(EndpointReading& reading, EndpointId id, Flow flow, Handle<IMMDevice> device)
{
    reading.content.id = std::move(id);
    reading.content.flow = flow;
    reading.device = std::move(device);
}

/// Lists the endpoints of one flow after the other.
class Lister
{
public:
    explicit Lister(IMMDeviceEnumerator& enumerator) : m_enumerator(enumerator), m_judge(noObject(), m_listing.problems)
    {
    }

    Listing list()
    {
        for (const Flow flow : allFlows)
        {
            if (!listFlow(flow))
                m_listing.isComplete = false;
        }
        m_listing.endpoints.reserve(m_items.size());
        for (Item& item : m_items)
            begin(m_listing.endpoints.emplace_back(), std::move(item.id), item.flow, std::move(item.device));
        return std::move(m_listing);
    }

private:
    struct Item
    {
        EndpointId id;
        Flow flow = Flow::output;
        Handle<IMMDevice> device;
    };

    /// @return whether each item has told its id
    bool listFlow(Flow flow)
    {
        IMMDeviceCollection* list = nullptr;
        const HRESULT result = m_enumerator.EnumAudioEndpoints(platformFlow(flow), DEVICE_STATEMASK_ALL, &list);
        if (!m_judge.gives(result, list, {"IMMDeviceEnumerator::EnumAudioEndpoints", nameOf(flow)}))
            return false;
        const Handle<IMMDeviceCollection> holder(list);
        UINT count = 0;
        if (!m_judge.passes(list->GetCount(&count), {"IMMDeviceCollection::GetCount"}))
            return false;
        if (count > mostEndpoints)
        {
            m_judge.fails(invalidData, {"IMMDeviceCollection::GetCount"});
            return false;
        }
        unsigned failures = 0; // in a row
        bool isComplete = true;
        for (UINT index = 0; index < count && failures < mostFailures; ++index)
        {
            const Answer answer = listItem(*list, index, flow);
            failures = answer == Answer::failure ? failures + 1 : 0;
            isComplete = isComplete && answer == Answer::id;
        }
        return isComplete;
    }

    enum class Answer
    {
        id,
        emptyId,
        failure,
    };

    Answer listItem(IMMDeviceCollection& list, UINT index, Flow flow)
    {
        IMMDevice* item = nullptr;
        if (!m_judge.gives(list.Item(index, &item), item, {"IMMDeviceCollection::Item", nullptr, index}))
            return Answer::failure;
        Handle<IMMDevice> device(item);
        TaskText text(TaskText::NullText::skipped);
        if (!m_judge.gives(device->GetId(text.put()), *text.put(), {callForId}))
            return Answer::failure;
        m_items.push_back({EndpointId(utf8(text.get())), flow, std::move(device)});
        const bool isEmpty = m_items.back().id.isEmpty();
        const auto idAt = [this](std::size_t place) -> std::string_view { return m_items[place].id.text(); };
        if (isEmpty || m_places.add(m_items.size() - 1, idAt) != m_items.size() - 1)
        {
            m_items.pop_back(); // an endpoint without id, or a second one with the same id
            m_judge.fails(invalidData, {callForId, isEmpty ? emptyId : duplicateId});
        }
        return isEmpty ? Answer::emptyId : Answer::id;
    }

    IMMDeviceEnumerator& m_enumerator;
    Listing m_listing;
    Judge m_judge;
    std::vector<Item> m_items;
    IdIndex m_places; ///< of the items
};

/// A failure to open an endpoint. Codes that say that there is no such endpoint are Problem::Kind::notThere.
Problem openingFailure(const Operation& operation, const EndpointId& id, HRESULT code, HRESULT otherCodeOfNone)
{
    Problem problem = failure(operation, id.text(), code);
    if (code != E_NOTFOUND && code != otherCodeOfNone)
        return problem;
    return Problem(Problem::Kind::notThere, problem.operation(), id.text(), "there is no endpoint " + id.text());
}

Result<Flow> readFlow(IMMDevice& device, const EndpointId& id)
{
    const Operation query = {"IMMDevice::QueryInterface", "IMMEndpoint"};
    IMMEndpoint* endpoint = nullptr;
    HRESULT result = interfacequery::query(device, endpoint);
    if (FAILED(result))
        return openingFailure(query, id, result, E_NOINTERFACE); // an adapter is a device, too
    if (endpoint == nullptr)
        return failure(query, id.text(), E_POINTER);
    const Handle<IMMEndpoint> holder(endpoint);
    EDataFlow flow = eAll;
    result = endpoint->GetDataFlow(&flow);
    if (SUCCEEDED(result) && flow != eRender && flow != eCapture)
        result = invalidData;
    if (FAILED(result))
        return failure({"IMMEndpoint::GetDataFlow"}, id.text(), result);
    return flow == eRender ? Flow::output : Flow::input;
}

/// The id of a default; empty if there is none, or if it is not known.
EndpointId readDefault(IMMDeviceEnumerator& enumerator, Flow flow, Role role, Judge& judge)
{
    static constexpr std::array<ERole, 3> platformRoles = {eConsole, eMultimedia, eCommunications};
    const char* const arguments = argumentsOf(flow, role);
    IMMDevice* device = nullptr;
    const HRESULT result =
        enumerator.GetDefaultAudioEndpoint(platformFlow(flow), platformRoles[static_cast<std::size_t>(role)], &device);
    if (!judge.gives(result, device, {callForDefault, arguments}, {E_NOTFOUND}))
        return {};
    const Handle<IMMDevice> holder(device);
    TaskText text(TaskText::NullText::skipped);
    if (!judge.gives(device->GetId(text.put()), *text.put(), {callForIdOfDefault, arguments}))
        return {};
    EndpointId id(utf8(text.get()));
    if (id.isEmpty())
        judge.fails(invalidData, {callForIdOfDefault, arguments});
    return id;
}
}

Result<Enumerator> createEnumerator()
{
    IMMDeviceEnumerator* enumerator = nullptr;
    const HRESULT result = interfacequery::createEnumerator(enumerator);
    if (FAILED(result) || enumerator == nullptr)
        return failure({"CoCreateInstance", "MMDeviceEnumerator"}, noObject(), FAILED(result) ? result : E_POINTER);
    return Enumerator(enumerator);
}

Listing listEndpoints(IMMDeviceEnumerator& enumerator)
{
    return Lister(enumerator).list();
}

Result<EndpointReading> openEndpoint(IMMDeviceEnumerator& enumerator, const EndpointId& id)
{
    IMMDevice* device = nullptr;
    const HRESULT result = enumerator.GetDevice(wide(id.text()).data(), &device);
    if (FAILED(result))
        return openingFailure({"IMMDeviceEnumerator::GetDevice"}, id, result, E_INVALIDARG);
    if (device == nullptr)
        return failure({"IMMDeviceEnumerator::GetDevice"}, id.text(), E_POINTER);
    Handle<IMMDevice> holder(device);
    const Result<Flow> flow = readFlow(*device, id);
    if (!flow)
        return flow.problem();
    EndpointReading reading;
    begin(reading, id, *flow, std::move(holder));
    return reading;
}

Defaults readDefaults(IMMDeviceEnumerator& enumerator)
{
    Defaults defaults;
    Judge judge(noObject(), defaults.problems);
    for (const Flow flow : allFlows)
    {
        for (const Role role : allRoles)
            defaults.ids[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)] =
                readDefault(enumerator, flow, role, judge);
    }
    return defaults;
}
}
