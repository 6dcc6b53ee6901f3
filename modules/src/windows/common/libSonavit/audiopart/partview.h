/// Parts and components without the copies that their public operations hand out; included by the library's source
/// files only.
#pragma once

#include "libSonavit/audiopart.h"
#include "libSonavit/audiopart/log.h"
#include "libSonavit/audiopart/passingcomponent.h"

namespace libSonavit
{
/// What the library itself reads of parts and components. What a public operation traces is traced here, too: readers
/// of the log see no difference.
class PartView
{
public:
    /// The id of @p component, as id(); valid while @p component lives.
    template<class I>
    static const qor::String& id(const AudioComponent<I>& component)
    {
        return component.m_part.m_globalId;
    }

    template<class I>
    static const qor::String& id(const PassingComponent<I, KeptTexts>& component)
    {
        return component.texts().globalId;
    }

    /// @p component as one that is kept. Calls no platform function but AddRef, and traces nothing.
    static const AudioComponent<IConnector>& kept(const AudioComponent<IConnector>& component) { return component; }
    static AudioComponent<IConnector> kept(const PassingComponent<IConnector, KeptTexts>& component)
    {
        const AudioPart part(component.part(), component.subType(), component.texts().globalId, component.texts().name);
        return AudioComponent<IConnector>(component.component(), part);
    }

    /// The part of @p component, as part(), by reference.
    template<class I>
    static const AudioPart& part(const AudioComponent<I>& component)
    {
        SONAVIT_TRACE(partlog, "AudioComponent::part()");
        return component.m_part;
    }

    /// The interface of @p component, as component(), without a reference of the caller's; may be null.
    template<class I>
    static I* component(const AudioComponent<I>& component)
    {
        SONAVIT_TRACE(partlog, "AudioComponent::component()");
        return component.m_component.get();
    }

    template<class I, class Texts>
    static I* component(const PassingComponent<I, Texts>& component)
    {
        SONAVIT_TRACE(partlog, "AudioComponent::component()");
        return component.component().get();
    }

    /// The two handles of @p component, by reference and without a trace.
    template<class I>
    static const typename COMPtr<I>::pointer& componentHandle(const AudioComponent<I>& component)
    {
        return component.m_component;
    }
    template<class I>
    static const COMPtr<IPart>::pointer& partHandle(const AudioComponent<I>& component)
    {
        return component.m_part.m_part;
    }

    /// The kind of @p part, as AudioPart::subType(), by reference.
    static const GUID& subType(const AudioPart& part) { return part.m_subType; }

    /// The platform's part, as AudioPart::part(), without a reference of the caller's; may be null.
    static IPart* platformPart(const AudioPart& part) { return part.m_part.get(); }

    /// As incomingPartsList() of an AudioPart that has @p part, but straight into @p list, which is new: there is no
    /// cache, and so no copy of it.
    static void readIncomingParts(IPart& part, qor::Array<AudioPart>& list)
    {
        SONAVIT_TRACE(partlog, "AudioPart::incomingPartsList");
        IPartsList* parts = nullptr;
        if (AudioPart::enumerateIncomingParts(part, parts))
            AudioPart::storeInNewList(parts, list);
    }

    /// As outgoingPartsList(), likewise.
    static void readOutgoingParts(IPart& part, qor::Array<AudioPart>& list)
    {
        SONAVIT_TRACE(partlog, "AudioPart::outgoingPartsList");
        IPartsList* parts = nullptr;
        if (AudioPart::enumerateOutgoingParts(part, parts))
            AudioPart::storeInNewList(parts, list);
    }
};
}
