#include "libSonavit/audiopart.h"

#include "libSonavit/audiopart/log.h"
#include "libSonavit/audiopart/partsnapshot.h"
#include "libSonavit/precondition.h"

namespace
{
/// Where the texts of a part's snapshot go.
struct PartTexts
{
    void globalIdIs(LPCWSTR text) const { globalId = platform::ucs2(text); }
    void nameIs(LPCWSTR text) const { name = platform::ucs2(text); }

    qor::String& globalId;
    qor::String& name;
};
}

AudioPart::AudioPart() : m_subType() {}

AudioPart::AudioPart(IPart* part) : m_part(part), m_subType()
{
    SONAVIT_TRACE(partlog, "AudioConnector::AudioConnector(const IPart* part)");
    initialize();
}

AudioPart::AudioPart(const COMPtr<IPart>::pointer& part) : m_part(part), m_subType()
{
    SONAVIT_TRACE(partlog, "AudioConnector(const COMPtr<IPart>::pointer& part)");
    initialize();
}

template<class I, class>
AudioPart::AudioPart(I* component)
    : m_part(component == nullptr ? nullptr : libSonavit::partsnapshot::partOf(*component)),
      m_subType()
{
    if (component != nullptr)
        initialize();
}

template AudioPart::AudioPart(IConnector* component);
template AudioPart::AudioPart(ISubunit* component);

AudioPart::AudioPart(const COMPtr<IPart>::pointer& part, const GUID& subType, const qor::String& globalId,
                     const qor::String& name)
    : m_part(part),
      m_subType(subType),
      m_globalId(globalId),
      m_name(name)
{
}

AudioPart::AudioPart(const AudioPart& other) = default;
AudioPart::~AudioPart() = default;

AudioPart& AudioPart::operator=(const AudioPart& other)
{
    if (this == &other)
        return *this;
    if (isIn(m_incomingParts, other) || isIn(m_outgoingParts, other) || isIn(other.m_incomingParts, *this) ||
        isIn(other.m_outgoingParts, *this))
        return *this =
                   AudioPart(other); // a list that is replaced holds the other part, or a list that is copied this one
    m_part = other.m_part;
    m_subType = other.m_subType;
    m_globalId = other.m_globalId;
    m_name = other.m_name;
    m_incomingParts = other.m_incomingParts;
    m_outgoingParts = other.m_outgoingParts;
    return *this;
}

AudioPart& AudioPart::operator=(IPart* part)
{
    SONAVIT_TRACE(partlog, "AudioPart::operator=(IPart* part)");
    m_part = part;
    initialize();
    return *this;
}

AudioPart& AudioPart::operator=(const COMPtr<IPart>::pointer& part)
{
    SONAVIT_TRACE(partlog, "AudioPart::operator=(const COMPtr<IPart>::pointer& part)");
    m_part = part;
    initialize();
    return *this;
}

unsigned int AudioPart::incomingPartsList(qor::Array<AudioPart>& list)
{
    SONAVIT_TRACE(partlog, "AudioPart::incomingPartsList");
    IPartsList* parts = nullptr;
    if (!enumerateIncomingParts(*m_part, parts))
        return 0;
    storePartsList(parts, m_incomingParts);
    return copyCache(*this, m_incomingParts, list);
}

unsigned int AudioPart::outgoingPartsList(qor::Array<AudioPart>& list)
{
    SONAVIT_TRACE(partlog, "AudioPart::outgoingPartsList");
    IPartsList* parts = nullptr;
    if (!enumerateOutgoingParts(*m_part, parts))
        return 0;
    storePartsList(parts, m_outgoingParts);
    return copyCache(*this, m_outgoingParts, list);
}

bool AudioPart::operator==(const AudioPart& other) const
{
    return qor::String::equalNoCase(m_globalId, other.m_globalId);
}

COMPtr<IPart>::pointer AudioPart::part() const
{
    return m_part;
}

qor::String AudioPart::name() const
{
    return m_name;
}

qor::String AudioPart::globalId() const
{
    return m_globalId;
}

GUID AudioPart::subType() const
{
    return m_subType;
}

COMPtr<IDeviceTopology>::pointer AudioPart::topology() const
{
    SONAVIT_TRACE(partlog, "AudioPart::topology()");
    if (m_part.get() == nullptr)
        return nullptr;
    IDeviceTopology* topology = nullptr;
    // The HRESULT is ignored on purpose: a null pointer means failure, and one along with a failure code is adopted.
    m_part->GetTopologyObject(&topology);
    if (topology == nullptr)
        SONAVIT_LOG(partlog, LOG_WARNING, out.append("Unable to get topology object from part ").append(m_name));
    return topology;
}

void AudioPart::initialize()
{
    libSonavit::partsnapshot::read(m_part, m_subType, PartTexts{m_globalId, m_name});
}

/// Stores the platform's list of the parts that feed @p part. @return false, with a message, if the platform fails
bool AudioPart::enumerateIncomingParts(IPart& part, IPartsList*& list)
{
    if (SUCCEEDED(part.EnumPartsIncoming(&list)))
        return true;
    SONAVIT_LOG(partlog, LOG_ERROR, out.append("Unable to enumerate incoming parts"));
    return false;
}

/// As enumerateIncomingParts(), for the parts that @p part feeds.
bool AudioPart::enumerateOutgoingParts(IPart& part, IPartsList*& list)
{
    if (SUCCEEDED(part.EnumPartsOutgoing(&list)))
        return true;
    SONAVIT_LOG(partlog, LOG_ERROR, out.append("Unable to enumerate outgoing parts"));
    return false;
}

/// Replaces @p parts by the parts of the platform's list, which stays unreleased: see incomingPartsList().
unsigned int AudioPart::storePartsList(IPartsList* list, qor::Array<AudioPart>& parts)
{
    SONAVIT_TRACE(partlog, "AudioPart::storePartsList");
    precondition::check(list != nullptr, __FILE__, __LINE__, "partlist != NULL");
    parts.clear();
    appendParts(*list, parts);
    return parts.size();
}

/// As storePartsList(), for a list that is new: it has an empty block already.
void AudioPart::storeInNewList(IPartsList* list, qor::Array<AudioPart>& parts)
{
    SONAVIT_TRACE(partlog, "AudioPart::storePartsList");
    precondition::check(list != nullptr, __FILE__, __LINE__, "partlist != NULL");
    appendParts(*list, parts);
}

void AudioPart::appendParts(IPartsList& list, qor::Array<AudioPart>& parts)
{
    UINT count = 0;
    list.GetCount(&count);
    libSonavit::partsnapshot::makeRoom(count, parts);
    for (UINT index = 0; index < count; ++index)
    {
        IPart* part = nullptr;
        if (FAILED(list.GetPart(index, &part)))
            continue;
        libSonavit::partsnapshot::append(part, parts);
    }
}

/// Copies the cache of @p owner into the caller's list. In `parts[0].incomingPartsList(parts)` that list holds the
/// owner, and the assignment destroys the owner, with its cache, before it copies anything: the cache is copied first
/// then.
unsigned int AudioPart::copyCache(const AudioPart& owner, const qor::Array<AudioPart>& cache,
                                  qor::Array<AudioPart>& list)
{
    if (isIn(list, owner))
    {
        qor::Array<AudioPart> copy(cache);
        list.swap(copy);
    }
    else
        list = cache;
    return list.size();
}

/// Whether @p part is an element of @p list or of a list of its elements.
bool AudioPart::isIn(const qor::Array<AudioPart>& list, const AudioPart& part)
{
    for (unsigned int i = 0; i < list.size(); ++i)
    {
        const AudioPart& element = list[i];
        if (&element == &part || isIn(element.m_incomingParts, part) || isIn(element.m_outgoingParts, part))
            return true;
    }
    return false;
}
