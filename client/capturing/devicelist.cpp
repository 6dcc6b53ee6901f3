#include "client/capturing/devicelist.h"

#include "COM/tasktext.h"
#include "client/capturing/taken.h"
#include "client/reading/text.h"

#include <algorithm>

namespace sonavit::capturing
{
namespace
{
/// No computer has more endpoints.
constexpr UINT mostEndpoints = 0x10000;
/// After so many failures in a row the rest of a list is taken as lost.
constexpr unsigned mostFailures = 16;

std::string nameOf(EDataFlow flow)
{
    if (flow == eAll)
        return "eAll";
    return flow == eRender ? "eRender" : "eCapture";
}
}

bool DeviceList::contains(const std::string& id) const
{
    return std::any_of(items.begin(), items.end(), [&](const ListedDevice& item) { return item.id == id; });
}

bool DeviceList::hasUnknown() const
{
    return std::any_of(items.begin(), items.end(), [](const ListedDevice& item) { return !item.id; });
}

const DeviceList& DeviceLists::list(EDataFlow flow, DWORD states)
{
    const auto place = m_lists.find({flow, states});
    if (place != m_lists.end())
        return place->second;
    return m_lists.emplace(std::make_pair(flow, states), read(flow, states)).first->second;
}

DeviceList DeviceLists::read(EDataFlow flow, DWORD states)
{
    DeviceList list;
    const std::vector<std::string> arguments = {nameOf(flow), argument(states)};
    IMMDeviceCollection* collection = nullptr;
    const HRESULT result = m_enumerator.EnumAudioEndpoints(flow, states, &collection);
    const reading::Handle<IMMDeviceCollection> holder = taken(result, collection);
    if (!m_recorder.gives(result, collection, {"IMMDeviceEnumerator::EnumAudioEndpoints", "enumerator", arguments}))
        return list;
    readItems(*collection, "endpoints(" + arguments[0] + ", " + arguments[1] + ")", list);
    return list;
}

void DeviceLists::readItems(IMMDeviceCollection& collection, const std::string& name, DeviceList& list)
{
    UINT count = 0;
    list.isThere = m_recorder.passes(collection.GetCount(&count), {"IMMDeviceCollection::GetCount", name});
    if (!list.isThere)
        return;
    if (count > mostEndpoints)
        m_recorder.note("The list " + name + " counts " + argument(count) + " endpoints.");
    unsigned failures = 0;
    for (UINT index = 0; index < std::min(count, mostEndpoints) && failures < mostFailures; ++index)
    {
        list.items.push_back(readItem(collection, name, index));
        failures = list.items.back().device.get() != nullptr ? 0 : failures + 1;
    }
    if (failures == mostFailures)
        m_recorder.note("The list " + name + " does not give the endpoints that it counts.");
}

ListedDevice DeviceLists::readItem(IMMDeviceCollection& collection, const std::string& name, UINT index)
{
    ListedDevice item;
    IMMDevice* device = nullptr;
    const HRESULT result = collection.Item(index, &device);
    item.device = taken(result, device);
    if (!m_recorder.gives(result, device, {"IMMDeviceCollection::Item", name, {argument(index)}}))
        return item;
    TaskText text(TaskText::NullText::skipped);
    item.idResult = device->GetId(text.put());
    if (SUCCEEDED(item.idResult) && text.get() != nullptr)
        item.id = reading::utf8(text.get());
    return item;
}
}
