/// What the platform sees of a copy of a topology; included by the library's source files only.
#pragma once

#include "COM/comptr.h"
#include "libSonavit/audiodevicetopology/topologyview.h"
#include "libSonavit/audiopart/componentreferences.h"

namespace libSonavit
{
/// The references that the copy of AudioDevice::deviceTopology() holds, for as long as it lives; see
/// ComponentReferences. The platform's objects see that copy, so it stays; the rest of it takes more time than all else
/// in a large card.
class TopologyReferences
{
public:
    explicit TopologyReferences(const AudioDeviceTopology& topology)
        : m_topology(TopologyView::handle(topology)),
          m_connectors(TopologyView::connectors(topology)),
          m_subunits(TopologyView::subunits(topology))
    {
    }

private:
    COMPtr<IDeviceTopology>::pointer m_topology;
    ComponentReferences<IConnector> m_connectors;
    ComponentReferences<ISubunit> m_subunits;
};
}
