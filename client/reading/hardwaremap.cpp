#include "client/reading/hardwaremap.h"

#include "client/reading/judge.h"
#include "client/reading/text.h"

#include <algorithm>
#include <utility>

namespace sonavit::reading
{
namespace
{
/// A device with more connectors has no signal paths beyond them: each pair costs up to two calls.
constexpr std::size_t mostLinkedConnectors = 256;

constexpr signed char unknown = -1;
}

std::size_t HardwareMap::find(const PartId& id) const
{
    const auto found = partIndexes.find(id);
    return found == partIndexes.end() ? HardwarePart::none : found->second;
}

PartId HardwareMap::partId(std::size_t part) const
{
    const HardwarePart& known = parts[part];
    if (!known.id.empty())
        return PartId(known.id);
    const std::string number = known.number ? std::to_string(*known.number) : std::string();
    return PartId(devices[known.device].facts.id + "#" + number);
}

const std::string& HardwareMap::objectOf(std::size_t part) const
{
    const HardwarePart& known = parts[part];
    return known.id.empty() ? devices[known.device].facts.id : known.id;
}

template<class I>
I* HardwareMap::activated(std::size_t part, Activation<I> HardwarePart::*activation, const IID& iid, const char* name)
{
    HardwarePart& owner = parts[part];
    Activation<I>& known = owner.*activation;
    if (!known.isAsked && owner.part.get() != nullptr)
    {
        void* object = nullptr;
        const HRESULT result = owner.part->Activate(CLSCTX_ALL, iid, &object);
        if (Judge(objectOf(part), owner.problems).gives(result, object, {"IPart::Activate", name}, {E_NOINTERFACE}))
            known.object = Handle<I>(static_cast<I*>(object));
    }
    known.isAsked = true;
    return known.object.get();
}

IAudioVolumeLevel* HardwareMap::level(std::size_t part)
{
    return activated(part, &HardwarePart::level, IID_IAudioVolumeLevel, "IAudioVolumeLevel");
}

IAudioMute* HardwareMap::mute(std::size_t part)
{
    return activated(part, &HardwarePart::mute, IID_IAudioMute, "IAudioMute");
}

IAudioInputSelector* HardwareMap::selector(std::size_t part)
{
    return activated(part, &HardwarePart::selector, IID_IAudioInputSelector, "IAudioInputSelector");
}

bool HardwareMap::hasPath(HardwareDevice& device, std::size_t from, std::size_t to)
{
    IPartsList* path = nullptr;
    const HRESULT result = device.topology->GetSignalPath(parts[from].part.get(), parts[to].part.get(), TRUE, &path);
    const bool isThere =
        Judge(device.facts.id, device.problems).gives(result, path, {"IDeviceTopology::GetSignalPath"}, {E_NOTFOUND});
    const Handle<IPartsList> holder(isThere ? path : nullptr);
    return isThere;
}

bool HardwareMap::areLinked(std::size_t device, std::size_t first, std::size_t second)
{
    HardwareDevice& owner = devices[device];
    const std::size_t count = std::min(owner.connectors.size(), mostLinkedConnectors);
    if (first > second)
        std::swap(first, second);
    if (first == second || second >= count || owner.topology.get() == nullptr)
        return false;
    if (owner.paths.empty())
    {
        owner.paths.assign(count * count, unknown);
        if (owner.connectors.size() > count)
            owner.problems.push_back(
                Problem(Problem::Kind::outOfRange, "IDeviceTopology::GetSignalPath", owner.facts.id,
                        "the device has " + std::to_string(owner.connectors.size()) +
                            " connectors; signal paths are read between the first " + std::to_string(count)));
    }
    signed char& known = owner.paths[first * count + second];
    if (known == unknown)
    {
        const std::size_t from = owner.connectors[first];
        const std::size_t to = owner.connectors[second];
        known = hasPath(owner, from, to) || hasPath(owner, to, from) ? 1 : 0;
    }
    return known == 1;
}

bool isOfType(const HardwarePart& part, const GUID& type)
{
    return part.type == guidOf(type);
}
}
