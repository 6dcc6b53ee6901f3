#include "client/capturing/devicesteps.h"
#include "client/capturing/taken.h"
#include "client/capturing/variant.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <utility>

namespace sonavit::capturing
{
namespace
{
/// No store has more properties.
constexpr DWORD mostProperties = 4096;
/// After so many failures in a row the rest of a store is taken as lost.
constexpr unsigned mostFailures = 16;

/// The keys that are asked for even if the store does not list them.
std::vector<PROPERTYKEY> wellKnownKeys()
{
    std::vector<PROPERTYKEY> keys;
    for (const auto& named : sim::keyNames)
        keys.push_back(named.value);
    keys.push_back(sim::keys::fullName);
    return keys;
}

/// In place of a value that could not be read.
sim::PropertyValue placeholder()
{
    return sim::PropertyValue::ofText(std::nullopt);
}

/// In place of a key that could not be read: one that is not among the properties before @p place.
PROPERTYKEY inventedKey(const sim::Properties& properties, std::size_t place)
{
    PROPERTYKEY key = {GUID{}, static_cast<DWORD>(place)};
    while (sim::findProperty(properties, key) != nullptr)
        ++key.pid;
    return key;
}

/// Records the content of one store.
class StoreSurvey
{
public:
    StoreSurvey(IPropertyStore& store, sim::Device& record, Recorder& recorder)
        : m_store(store),
          m_record(record),
          m_recorder(recorder)
    {
    }

    void run()
    {
        DWORD count = 0;
        m_isCounted = m_recorder.passes(m_store.GetCount(&count), {"IPropertyStore::GetCount", m_record.id});
        listKeys(std::min(count, mostProperties));
        if (count > mostProperties)
            m_recorder.note("The property store of " + m_record.id + " counts " + argument(count) + " properties.");
        askWellKnownKeys();
    }

private:
    void listKeys(DWORD count)
    {
        unsigned failures = 0;
        for (DWORD index = 0; index < count && failures < mostFailures; ++index)
            failures = listKey(index) ? 0 : failures + 1;
        if (failures == mostFailures)
            m_recorder.note("The property store of " + m_record.id + " does not give the keys that it counts.");
    }

    /// A failure is noted at the place that the key has in the record, which may contain fewer keys than the store.
    bool listKey(DWORD index)
    {
        PROPERTYKEY key = {};
        const std::size_t place = m_record.properties.size();
        if (!m_recorder.passes(m_store.GetAt(index, &key), {"IPropertyStore::GetAt", m_record.id, {argument(place)}}))
        {
            m_gaps.push_back(place);
            m_record.properties.push_back({inventedKey(m_record.properties, place), placeholder()});
            return false;
        }
        if (sim::findProperty(m_record.properties, key) != nullptr)
            m_recorder.note("The property store of " + m_record.id + " lists " + sim::keyText(key) + " twice.");
        else if (std::optional<sim::PropertyValue> value = listedValue(key))
            m_record.properties.push_back({key, std::move(*value)});
        return true;
    }

    /// A machine lists no empty values.
    std::optional<sim::PropertyValue> listedValue(const PROPERTYKEY& key)
    {
        bool isRead = false;
        sim::PropertyValue value = ask(key, isRead);
        if (!isRead)
            return placeholder();
        if (value.tag != VT_EMPTY)
            return value;
        m_empty.push_back(key);
        m_recorder.note("The property store of " + m_record.id + " lists " + sim::keyText(key) +
                        ", which it does not have.");
        return std::nullopt;
    }

    void askWellKnownKeys()
    {
        for (const PROPERTYKEY& key : wellKnownKeys())
        {
            const auto isKey = [&](const PROPERTYKEY& other) { return sim::sameKey(key, other); };
            const bool isAsked = sim::findProperty(m_record.properties, key) != nullptr ||
                                 std::any_of(m_empty.begin(), m_empty.end(), isKey);
            bool isRead = false;
            sim::PropertyValue value = isAsked ? sim::PropertyValue() : ask(key, isRead);
            if (value.tag != VT_EMPTY)
                addUnlisted({key, std::move(value)});
        }
    }

    /// The first of them are taken for those whose keys could not be read.
    void addUnlisted(sim::Property property)
    {
        if (!m_isCounted)
            m_record.properties.push_back(std::move(property));
        else if (m_gaps.empty())
            m_record.unlistedProperties.push_back(std::move(property));
        else
        {
            m_record.properties[m_gaps.front()] = std::move(property);
            m_gaps.erase(m_gaps.begin());
        }
    }

    sim::PropertyValue ask(const PROPERTYKEY& key, bool& isRead)
    {
        const Call call = {"IPropertyStore::GetValue", m_record.id, {sim::keyText(key)}};
        Variant variant;
        isRead = m_recorder.passes(m_store.GetValue(key, variant.put()), call);
        if (!isRead)
        {
            variant.forget();
            return {};
        }
        const VARTYPE tag = variant.get().vt;
        RecordedValue value = recorded(variant.get());
        if (!value.isWhole)
            m_recorder.note("Of the property " + sim::keyText(key) + " of " + m_record.id + " the tag alone, " +
                            argument(tag) + ", is recorded.");
        m_recorder.passes(variant.clear(), {"PropVariantClear", "", {argument(tag)}});
        return std::move(value.value);
    }

    IPropertyStore& m_store;
    sim::Device& m_record;
    Recorder& m_recorder;
    bool m_isCounted = false;
    std::vector<std::size_t> m_gaps;  ///< places of listed keys that could not be read
    std::vector<PROPERTYKEY> m_empty; ///< listed keys without a value
};

/// A store that is opened for writing is released at once: opening changes nothing.
void tryToOpenForWriting(IMMDevice& device, const std::string& id, Recorder& recorder)
{
    IPropertyStore* store = nullptr;
    const HRESULT result = device.OpenPropertyStore(STGM_READWRITE, &store);
    const reading::Handle<IPropertyStore> holder = taken(result, store);
    if (SUCCEEDED(result) && store == nullptr)
        recorder.givesNull({"IMMDevice::OpenPropertyStore", id, {argument(STGM_READWRITE)}});
    else
        recorder.opensForWriting(id, result);
}
}

void surveyProperties(IMMDevice& device, sim::Device& record, Recorder& recorder)
{
    IPropertyStore* store = nullptr;
    const HRESULT result = device.OpenPropertyStore(STGM_READ, &store);
    const reading::Handle<IPropertyStore> holder = taken(result, store);
    if (recorder.gives(result, store, {"IMMDevice::OpenPropertyStore", record.id, {argument(STGM_READ)}}))
        StoreSurvey(*store, record, recorder).run();
    tryToOpenForWriting(device, record.id, recorder);
}
}
