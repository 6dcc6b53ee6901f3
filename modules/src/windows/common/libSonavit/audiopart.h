#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/string.h"

#include <type_traits>

/// One part of a device's hardware graph: a connector on its outside or a subunit within.
///
/// A value that holds a counted reference on the platform's part, and a snapshot of its subtype, global id and name
/// taken when the part was bound. The two lists of neighbours are caches of the latest walk, one level deep. Platform
/// failures are logged and leave empty results. No operation locks, and even walking the graph changes the object: use
/// it from one thread at a time.
class SONAVIT_API AudioPart
{
public:
    /// An empty part.
    AudioPart();

    /// Adopts the reference on @p part, which may be null, and reads the snapshot.
    AudioPart(IPart* part);

    /// Takes a reference of its own on @p part, which may be nil, and reads the snapshot.
    AudioPart(const COMPtr<IPart>::pointer& part);

    /// The part that @p component is, asked for by QueryInterface; @p component keeps its reference. A null component,
    /// or one that does not know IPart, gives an empty part.
    template<class I, class = std::enable_if_t<std::is_same_v<I, IConnector> || std::is_same_v<I, ISubunit>>>
    AudioPart(I* component);

    AudioPart(const AudioPart& other);
    ~AudioPart();

    AudioPart& operator=(const AudioPart& other);

    /// Adopts the reference on @p part, lets go of the old part and reads the snapshot. With null the old snapshot
    /// stays.
    AudioPart& operator=(IPart* part);

    /// As above, with a reference of its own.
    AudioPart& operator=(const COMPtr<IPart>::pointer& part);

    /// Reads the parts that feed this one (IPart::EnumPartsIncoming), in the platform's order; a part that cannot be
    /// had is left out silently. The part must not be empty.
    ///
    /// The platform's list keeps the reference that it came with: it is never released.
    /// @param list replaced by the parts, also where it holds this part; left alone if the enumeration fails
    /// @return the number of parts; 0 if the enumeration fails, which is logged (LOG_ERROR)
    /// @exception qor::AssertionFailure "partlist != NULL" if the platform reports success without a list
    unsigned int incomingPartsList(qor::Array<AudioPart>& list);

    /// Reads the parts that this one feeds (IPart::EnumPartsOutgoing); otherwise as incomingPartsList().
    unsigned int outgoingPartsList(qor::Array<AudioPart>& list);

    /// Whether both have the same global id, without regard to case. All empty parts are equal.
    bool operator==(const AudioPart& other) const;

    /// The platform's part with a new reference, or nil.
    COMPtr<IPart>::pointer part() const;

    qor::String name() const;
    qor::String globalId() const;

    /// A KSNODETYPE_ value; all zero in an empty part.
    GUID subType() const;

    /// The topology that the part lies in (IPart::GetTopologyObject).
    /// @return nil for an empty part; nil and a message (LOG_WARNING) if the platform gives none
    COMPtr<IDeviceTopology>::pointer topology() const;

private:
    typedef HRESULT (STDMETHODCALLTYPE IPart::*Enumeration)(IPartsList**);

    void initialize();
    unsigned int walk(Enumeration enumeration, const char* failure, qor::Array<AudioPart>& cache,
                      qor::Array<AudioPart>& list);
    unsigned int storePartsList(IPartsList* list, qor::Array<AudioPart>& parts);

    COMPtr<IPart>::pointer m_part;
    GUID m_subType;
    qor::String m_globalId;
    qor::String m_name;
    qor::Array<AudioPart> m_incomingParts;
    qor::Array<AudioPart> m_outgoingParts;
};

// The library holds the two forms that there are.
extern template SONAVIT_API AudioPart::AudioPart(IConnector* component);
extern template SONAVIT_API AudioPart::AudioPart(ISubunit* component);

/// A part together with its more specific interface: AudioComponent<IConnector> or AudioComponent<ISubunit>.
///
/// A value with two counted references on the platform object, one for each interface. Identity is the part's global
/// id.
template<class I>
class SONAVIT_API AudioComponent
{
public:
    /// Adopts the reference on @p component, which may be null.
    AudioComponent(I* component);

    /// Takes references of its own.
    AudioComponent(const typename COMPtr<I>::pointer& component);

    /// The component that @p part is; empty, silently, if it is one of the other kind.
    AudioComponent(const COMPtr<IPart>::pointer& part);

    AudioComponent(const AudioComponent& other);
    ~AudioComponent();

    AudioComponent& operator=(const AudioComponent& other);

    /// As AudioPart::incomingPartsList() and AudioPart::outgoingPartsList().
    unsigned int incomingPartsList(qor::Array<AudioPart>& list);
    unsigned int outgoingPartsList(qor::Array<AudioPart>& list);

    /// Whether both have the same id, without regard to case. All empty components are equal.
    bool operator==(const AudioComponent& other) const;

    /// The platform's component with a new reference, or nil.
    typename COMPtr<I>::pointer component() const;

    AudioPart part() const;

    /// The part's global id.
    qor::String id() const;
    qor::String name() const;
    GUID subType() const;

    /// Id of the device that the component belongs to. Reads the whole topology of that device on each call; empty,
    /// with messages, where there is none.
    qor::String deviceOwner() const;

private:
    typename COMPtr<I>::pointer m_component;
    AudioPart m_part;
};

extern template class AudioComponent<IConnector>;
extern template class AudioComponent<ISubunit>;
