#include "simulator/machine/file/shortids.h"

#include <utility>
#include <vector>

namespace sim
{
namespace
{
template<class Change>
void changeAll(std::vector<std::string>& ids, const Change& change)
{
    for (std::string& id : ids)
        change(id);
}

template<class Change>
void changePart(Part& part, const Change& change)
{
    change(part.id);
    changeAll(part.incoming, change);
    changeAll(part.outgoing, change);
}

template<class Change>
Topology changed(Topology topology, const Change& change)
{
    for (Connector& connector : topology.connectors)
        changePart(connector, change);
    for (Subunit& subunit : topology.subunits)
        changePart(subunit, change);
    for (SignalPath& path : topology.signalPaths)
    {
        change(path.from);
        change(path.to);
        changeAll(path.through, change);
    }
    return topology;
}
}

Topology withFullIds(Topology topology, const std::string& deviceId)
{
    const auto lengthen = [&](std::string& id)
    {
        if (!id.empty() && id.front() == '/')
            id.insert(0, deviceId);
    };
    return changed(std::move(topology), lengthen);
}

Topology withShortIds(Topology topology, const std::string& deviceId)
{
    const std::string start = deviceId + "/";
    const auto shorten = [&](std::string& id)
    {
        if (id.compare(0, start.size(), start) == 0)
            id.erase(0, deviceId.size());
    };
    return changed(std::move(topology), shorten);
}
}
