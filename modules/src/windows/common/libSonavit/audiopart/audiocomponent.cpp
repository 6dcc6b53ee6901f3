#include "libSonavit/audiopart.h"

#include "COM/interfacequery.h"
#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiopart/log.h"

template<class I>
AudioComponent<I>::AudioComponent(I* component) : m_component(component),
                                                  m_part(component)
{
    SONAVIT_TRACE(partlog, "AudioComponent::AudioComponent");
}

template<class I>
AudioComponent<I>::AudioComponent(const typename COMPtr<I>::pointer& component)
    : m_component(component),
      m_part(component.get())
{
    SONAVIT_TRACE(partlog, "AudioComponent::AudioComponent");
}

/// For PartView: calls no platform function but AddRef, and traces nothing.
template<class I>
AudioComponent<I>::AudioComponent(const typename COMPtr<I>::pointer& component, const AudioPart& part)
    : m_component(component),
      m_part(part)
{
}

// Required behaviour: the label names a connector even for a subunit; readers of the log match it.
template<class I>
AudioComponent<I>::AudioComponent(const COMPtr<IPart>::pointer& part)
{
    SONAVIT_TRACE(partlog, "AudioConnector::AudioConnector(const COMPtr<IPart>::pointer& part)");
    if (part.get() == nullptr)
        return;
    I* component = nullptr;
    interfacequery::query(*part, component); // the HRESULT is ignored on purpose: a null pointer means failure
    if (component == nullptr)
        return;
    m_component = component;
    m_part = part;
}

template<class I>
AudioComponent<I>::AudioComponent(const AudioComponent& other) = default;

template<class I>
AudioComponent<I>::~AudioComponent() = default;

template<class I>
AudioComponent<I>& AudioComponent<I>::operator=(const AudioComponent& other) = default;

template<class I>
unsigned int AudioComponent<I>::incomingPartsList(qor::Array<AudioPart>& list)
{
    return m_part.incomingPartsList(list);
}

template<class I>
unsigned int AudioComponent<I>::outgoingPartsList(qor::Array<AudioPart>& list)
{
    return m_part.outgoingPartsList(list);
}

template<class I>
bool AudioComponent<I>::operator==(const AudioComponent& other) const
{
    return m_part == other.m_part;
}

template<class I>
typename COMPtr<I>::pointer AudioComponent<I>::component() const
{
    SONAVIT_TRACE(partlog, "AudioComponent::component()");
    return m_component;
}

template<class I>
AudioPart AudioComponent<I>::part() const
{
    SONAVIT_TRACE(partlog, "AudioComponent::part()");
    return m_part;
}

template<class I>
qor::String AudioComponent<I>::id() const
{
    return m_part.globalId();
}

template<class I>
qor::String AudioComponent<I>::name() const
{
    return m_part.name();
}

template<class I>
GUID AudioComponent<I>::subType() const
{
    return m_part.subType();
}

template<class I>
qor::String AudioComponent<I>::deviceOwner() const
{
    qor::String owner;
    { // ends before the result is returned: compilers lose a result if a destructor behind it throws
        COMPtr<IDeviceTopology>::pointer handle = m_part.topology();
        const AudioDeviceTopology topology(handle);
        handle = nullptr; // released by a statement of its own: if Release throws, the snapshot is released, too
        owner = topology.deviceOwner();
    }
    return owner;
}

template class AudioComponent<IConnector>;
template class AudioComponent<ISubunit>;
