#include "libSonavit/audiopart.h"

#include "COM/interfacequery.h"
#include "libSonavit/audiopart/log.h"
#include "qor/exception.h"

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
        m_part = part; // what stands beside a failure is nobody's
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
    // The other part may stand in one of the lists that are replaced.
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
    return walk(&IPart::EnumPartsIncoming, "Unable to enumerate incoming parts", m_incomingParts, list);
}

unsigned int AudioPart::outgoingPartsList(qor::Array<AudioPart>& list)
{
    SONAVIT_TRACE(partlog, "AudioPart::outgoingPartsList");
    return walk(&IPart::EnumPartsOutgoing, "Unable to enumerate outgoing parts", m_outgoingParts, list);
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
    m_part->GetTopologyObject(&topology); // the pointer decides
    if (topology == nullptr)
        SONAVIT_LOG(partlog, LOG_WARNING, out.append("Unable to get topology object from part ").append(m_name));
    return topology;
}

/// Reads the snapshot. No result is looked at: what a call leaves in its place is what counts. An id that did not come
/// reads as the empty text, whereas a name that did not come leaves the name as it was.
void AudioPart::initialize()
{
    SONAVIT_TRACE(partlog, "AudioPart::initialize()");
    if (m_part.get() == nullptr)
        return;
    m_part->GetSubType(&m_subType);

    LPWSTR globalId = nullptr;
    m_part->GetGlobalId(&globalId);
    m_globalId = platform::ucs2(globalId);
    CoTaskMemFree(globalId);

    LPWSTR name = nullptr;
    m_part->GetName(&name);
    if (name != nullptr)
    {
        m_name = platform::ucs2(name);
        CoTaskMemFree(name);
    }
}

/// Both ways to the neighbours, see incomingPartsList(). The list may hold the very part that is asked, as in
/// `parts[0].incomingPartsList(parts)`. That part goes with the list's old elements, and its cache with it, so the list
/// is filled from a copy.
unsigned int AudioPart::walk(Enumeration enumeration, const char* failure, qor::Array<AudioPart>& cache,
                             qor::Array<AudioPart>& list)
{
    IPartsList* parts = nullptr;
    if (FAILED((m_part.get()->*enumeration)(&parts)))
    {
        SONAVIT_LOG(partlog, LOG_ERROR, out.append(failure));
        return 0;
    }
    storePartsList(parts, cache);
    const qor::Array<AudioPart> copy(cache); // NOLINT(performance-unnecessary-copy-initialization): see above
    list = copy;
    return list.size();
}

/// The list is borrowed and stays with the platform, see incomingPartsList().
unsigned int AudioPart::storePartsList(IPartsList* list, qor::Array<AudioPart>& parts)
{
    SONAVIT_TRACE(partlog, "AudioPart::storePartsList");
    if (list == nullptr)
        throw qor::AssertionFailure(__FILE__, __LINE__, "partlist != NULL");
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
