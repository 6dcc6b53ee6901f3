#include "libSonavit/audiopart.h"

#include "COM/interfacequery.h"
#include "COM/tasktext.h"
#include "libSonavit/audiopart/log.h"
#include "libSonavit/precondition.h"

namespace
{
/// Copies the parts of the latest walk into the caller's list, by way of a copy of their own: in
/// `parts[0].incomingPartsList(parts)` the list holds the part that is asked, and the assignment destroys that part,
/// with its cache, before it copies anything.
unsigned int copyCache(const qor::Array<AudioPart>& cache, qor::Array<AudioPart>& list)
{
    const qor::Array<AudioPart> copy(cache); // NOLINT(performance-unnecessary-copy-initialization): see above
    list = copy;
    return list.size();
}
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
AudioPart::AudioPart(I* component) : m_subType()
{
    if (component == nullptr)
        return;
    IPart* part = nullptr;
    if (SUCCEEDED(interfacequery::query(*component, part)))
        m_part = part; // a pointer along with a failure code is ignored
    initialize();
}

template AudioPart::AudioPart(IConnector* component);
template AudioPart::AudioPart(ISubunit* component);

AudioPart::AudioPart(const AudioPart& other) = default;
AudioPart::~AudioPart() = default;

AudioPart& AudioPart::operator=(const AudioPart& other)
{
    if (this == &other)
        return *this;
    // One of the lists that are replaced may contain the other part.
    const qor::Array<AudioPart> incoming(other.m_incomingParts);
    const qor::Array<AudioPart> outgoing(other.m_outgoingParts);
    m_part = other.m_part;
    m_subType = other.m_subType;
    m_globalId = other.m_globalId;
    m_name = other.m_name;
    m_incomingParts = incoming;
    m_outgoingParts = outgoing;
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
    if (FAILED(m_part->EnumPartsIncoming(&parts)))
    {
        SONAVIT_LOG(partlog, LOG_ERROR, out.append("Unable to enumerate incoming parts"));
        return 0;
    }
    storePartsList(parts, m_incomingParts);
    return copyCache(m_incomingParts, list);
}

unsigned int AudioPart::outgoingPartsList(qor::Array<AudioPart>& list)
{
    SONAVIT_TRACE(partlog, "AudioPart::outgoingPartsList");
    IPartsList* parts = nullptr;
    if (FAILED(m_part->EnumPartsOutgoing(&parts)))
    {
        SONAVIT_LOG(partlog, LOG_ERROR, out.append("Unable to enumerate outgoing parts"));
        return 0;
    }
    storePartsList(parts, m_outgoingParts);
    return copyCache(m_outgoingParts, list);
}

bool AudioPart::operator==(const AudioPart& other) const
{
    return qor::String::compareNoCase(globalId(), other.globalId()) == 0;
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

/// Reads the snapshot. All three HRESULTs are ignored on purpose: only what a call stores counts. Without an id from
/// the platform the id becomes empty, whereas without a name the old name stays.
void AudioPart::initialize()
{
    SONAVIT_TRACE(partlog, "AudioPart::initialize()");
    if (m_part.get() == nullptr)
        return;
    m_part->GetSubType(&m_subType);

    {
        TaskText globalId;
        m_part->GetGlobalId(globalId.put());
        m_globalId = platform::ucs2(globalId.get());
    }
    TaskText name(TaskText::NullText::skipped);
    m_part->GetName(name.put());
    if (name.get() != nullptr)
        m_name = platform::ucs2(name.get());
}

/// Replaces @p parts by the parts of the platform's list, which stays unreleased: see incomingPartsList().
unsigned int AudioPart::storePartsList(IPartsList* list, qor::Array<AudioPart>& parts)
{
    SONAVIT_TRACE(partlog, "AudioPart::storePartsList");
    precondition::check(list != nullptr, __FILE__, __LINE__, "partlist != NULL");
    parts.clear();
    UINT count = 0;
    list->GetCount(&count);
    for (UINT index = 0; index < count; ++index)
    {
        IPart* part = nullptr;
        if (FAILED(list->GetPart(index, &part)))
            continue;
        parts.append(AudioPart(part));
    }
    return parts.size();
}
