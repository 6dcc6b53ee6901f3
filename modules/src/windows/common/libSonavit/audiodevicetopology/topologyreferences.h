/// Copies of topologies that nobody reads; included by the library's source files only.
#pragma once

#include "COM/comptr.h"
#include "libSonavit/audiodevicetopology/topologyview.h"
#include "libSonavit/audiopart/partview.h"
#include "qor/array.h"

/// The references that a copy of an AudioDeviceTopology holds, for as long as it lives: the platform's objects see the
/// same AddRef and Release calls in the same order. The rest of a copy, with two lists for each part, is left out.
class TopologyReferences
{
public:
    explicit TopologyReferences(const AudioDeviceTopology& topology) : m_topology(TopologyView::handle(topology))
    {
        add(TopologyView::connectors(topology), m_connectors);
        add(TopologyView::subunits(topology), m_subunits);
    }

    TopologyReferences(const TopologyReferences&) = delete;
    TopologyReferences& operator=(const TopologyReferences&) = delete;

private:
    template<class I>
    struct ComponentReferences
    {
        explicit ComponentReferences(const AudioComponent<I>& source)
            : component(PartView::componentHandle(source)),
              part(PartView::partHandle(source))
        {
        }

        typename COMPtr<I>::pointer component;
        COMPtr<IPart>::pointer part;
    };

    template<class I>
    static void add(const qor::Array<AudioComponent<I>>& source, qor::Array<ComponentReferences<I>>& references)
    {
        references.ensureCapacity(source.size());
        for (unsigned int i = 0; i < source.size(); ++i)
            references.emplace(source[i]);
    }

    COMPtr<IDeviceTopology>::pointer m_topology;
    qor::Array<ComponentReferences<IConnector>> m_connectors;
    qor::Array<ComponentReferences<ISubunit>> m_subunits;
};
