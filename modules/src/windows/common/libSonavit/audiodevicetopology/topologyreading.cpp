#include "libSonavit/audiodevicetopology/topologyreading.h"

#include "libSonavit/audiopart/partview.h"

namespace libSonavit
{
namespace
{
/// Whether a signal path runs from one connector to the other. Its list is released; what comes along with a failure is
/// ignored.
bool pathRuns(IDeviceTopology& topology, IPart* from, IPart* to)
{
    IPartsList* path = nullptr;
    if (FAILED(topology.GetSignalPath(from, to, TRUE, &path)))
        return false;
    if (path != nullptr)
        path->Release();
    return true;
}
}

bool topologyreading::haveSignalPathSilently(IDeviceTopology* topology, const AudioComponent<IConnector>& from,
                                             const AudioComponent<IConnector>& to)
{
    IPart* const fromPart = PartView::partHandle(from).get();
    IPart* const toPart = PartView::partHandle(to).get();
    if (fromPart == nullptr || toPart == nullptr || topology == nullptr)
        return false;
    return pathRuns(*topology, fromPart, toPart) || pathRuns(*topology, toPart, fromPart);
}

bool topologyreading::haveSignalPath(IDeviceTopology* topology, const AudioComponent<IConnector>& from,
                                     const AudioComponent<IConnector>& to)
{
    IPart* const fromPart = PartView::platformPart(PartView::part(from));
    IPart* const toPart = fromPart == nullptr ? nullptr : PartView::platformPart(PartView::part(to));
    if (toPart == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_WARNING, out.append("One of the connectors is invalid"));
        return false;
    }
    if (topology == nullptr)
        return false; // without a message: an initialize() that failed has logged it, an object by default has no
                      // topology

    if (pathRuns(*topology, fromPart, toPart))
        return true;
    SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(from.id()).append(" to ").append(to.id()));
    if (pathRuns(*topology, toPart, fromPart))
        return true;
    SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(to.id()).append(" to ").append(from.id()));
    return false;
}
}
