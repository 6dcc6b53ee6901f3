#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/string.h"

#include <type_traits>

namespace libSonavit
{
class PartView;
}

/// One part of a device's hardware graph: a connector on its outside or a subunit inside.
///
/// A value that holds a counted reference on the platform's part (IPart), and a snapshot of its subtype, global id and
/// name that is read when the part is bound and never refreshed. The two lists of neighbours cache the latest walk, one
/// level deep. Copies hold references and lists of their own. No operation locks, and even a walk of the graph changes
/// the object: use it from one thread at a time.
class SONAVIT_API AudioPart
{
public:
    /// An empty part.
    AudioPart();

    /// Adopts the reference on @p part, which may be null, and reads the snapshot (IPart::GetSubType, GetGlobalId,
    /// GetName). What the platform does not report stays empty, without a message.
    AudioPart(IPart* part);

    /// Adds a reference on @p part, which may be nil, and reads the snapshot.
    AudioPart(const COMPtr<IPart>::pointer& part);

    /// Asks @p component for IPart by QueryInterface and reads the snapshot. The caller keeps its reference on
    /// @p component. A null component, or one that does not implement IPart, gives an empty part without a message.
    template<class I, class = std::enable_if_t<std::is_same_v<I, IConnector> || std::is_same_v<I, ISubunit>>>
    AudioPart(I* component);

    AudioPart(const AudioPart& other);
    ~AudioPart();

    AudioPart& operator=(const AudioPart& other);

    /// Adopts the reference on @p part, releases the old part and reads the snapshot. If @p part is null, the old
    /// snapshot stays.
    AudioPart& operator=(IPart* part);

    /// As above, but adds a reference instead of adopting one.
    AudioPart& operator=(const COMPtr<IPart>::pointer& part);

    /// Reads the parts that feed this one (IPart::EnumPartsIncoming, IPartsList::GetPart), in the platform's order. A
    /// part that the platform does not hand out is omitted without a message. This object must not be empty.
    ///
    /// Required behaviour: the platform's list is never released, so each walk keeps one reference on it for good.
    /// @param list replaced by the parts, even if it contains this part; unchanged if the enumeration fails
    /// @return the number of parts; 0 if the enumeration fails, which is logged (LOG_ERROR)
    /// @exception qor::AssertionFailure "partlist != NULL" if the platform reports success without a list
    /// @exception qor::NullPointer or std::bad_alloc if memory for the parts runs out
    unsigned int incomingPartsList(qor::Array<AudioPart>& list);

    /// Reads the parts that this one feeds (IPart::EnumPartsOutgoing); otherwise like incomingPartsList().
    unsigned int outgoingPartsList(qor::Array<AudioPart>& list);

    /// Whether both have the same global id, compared without regard to case. All empty parts are equal. Does not call
    /// the platform.
    bool operator==(const AudioPart& other) const;

    /// The platform's part with an added reference, or nil.
    COMPtr<IPart>::pointer part() const;

    /// The name in the snapshot; empty if the platform reported none.
    qor::String name() const;

    /// The identity of the part, from the snapshot; empty if the platform reported none.
    qor::String globalId() const;

    /// The KSNODETYPE_ value in the snapshot; all zero in an empty part.
    GUID subType() const;

    /// The topology that contains the part (IPart::GetTopologyObject), with a reference that the caller owns.
    /// @return nil for an empty part; nil and a message (LOG_WARNING) if the platform hands out none
    COMPtr<IDeviceTopology>::pointer topology() const;

private:
    friend class libSonavit::PartView;
    AudioPart(const COMPtr<IPart>::pointer& part, const GUID& subType, const qor::String& globalId,
              const qor::String& name);

    void initialize();
    unsigned int storePartsList(IPartsList* list, qor::Array<AudioPart>& parts);
    static void storeInNewList(IPartsList* list, qor::Array<AudioPart>& parts);
    static void appendParts(IPartsList& list, qor::Array<AudioPart>& parts);
    static bool enumerateIncomingParts(IPart& part, IPartsList*& list);
    static bool enumerateOutgoingParts(IPart& part, IPartsList*& list);
    static bool isIn(const qor::Array<AudioPart>& list, const AudioPart& part);
    static unsigned int copyCache(const AudioPart& owner, const qor::Array<AudioPart>& cache,
                                  qor::Array<AudioPart>& list);

    COMPtr<IPart>::pointer m_part;
    GUID m_subType;
    qor::String m_globalId;
    qor::String m_name;
    qor::Array<AudioPart> m_incomingParts;
    qor::Array<AudioPart> m_outgoingParts;
};

// The library contains both instantiations.
extern template SONAVIT_API AudioPart::AudioPart(IConnector* component);
extern template SONAVIT_API AudioPart::AudioPart(ISubunit* component);

/// A part together with its more specific interface: AudioComponent<IConnector> or AudioComponent<ISubunit>.
///
/// A value with two counted references on the platform object, one for each interface. The part's global id is its
/// identity. Threads: as for AudioPart.
template<class I>
class SONAVIT_API AudioComponent
{
public:
    /// Adopts the reference on @p component, which may be null, and adds one on its IPart.
    AudioComponent(I* component);

    /// Adds a reference on @p component, which may be nil, and one on its IPart.
    AudioComponent(const typename COMPtr<I>::pointer& component);

    /// Asks @p part for the component by QueryInterface; adds a reference on each interface. Empty, without a message,
    /// if @p part is nil or a component of the other kind.
    AudioComponent(const COMPtr<IPart>::pointer& part);

    AudioComponent(const AudioComponent& other);
    ~AudioComponent();

    AudioComponent& operator=(const AudioComponent& other);

    /// Like AudioPart::incomingPartsList() and AudioPart::outgoingPartsList().
    unsigned int incomingPartsList(qor::Array<AudioPart>& list);
    unsigned int outgoingPartsList(qor::Array<AudioPart>& list);

    /// Whether both have the same id, compared without regard to case. All empty components are equal.
    bool operator==(const AudioComponent& other) const;

    /// The platform's component with an added reference, or nil.
    typename COMPtr<I>::pointer component() const;

    /// A copy of the part, with a reference of its own.
    AudioPart part() const;

    /// AudioPart::globalId(), name() and subType() of the part.
    qor::String id() const;
    qor::String name() const;
    GUID subType() const;

    /// Id of the device that contains the component. Reads the whole topology of that device on each call; empty, with
    /// messages (LOG_WARNING, LOG_ERROR), if the platform hands out no topology.
    qor::String deviceOwner() const;

private:
    friend class libSonavit::PartView;

    AudioComponent(const typename COMPtr<I>::pointer& component, const AudioPart& part);

    typename COMPtr<I>::pointer m_component;
    AudioPart m_part;
};

extern template class AudioComponent<IConnector>;
extern template class AudioComponent<ISubunit>;
