#include "COM/interfacequery.h"
#include "COM/tasktext.h"
#include "client/reading/endpointreading.h"
#include "client/reading/judge.h"
#include "client/reading/steps.h"
#include "client/reading/text.h"

namespace sonavit::reading
{
namespace
{
/// No connector has more jacks.
constexpr UINT mostJacks = 64;

Jack jackOf(const KSJACK_DESCRIPTION& description)
{
    const auto part = [&](unsigned shift) { return static_cast<std::uint8_t>((description.Color >> shift) & 0xFF); };
    Jack jack;
    jack.channels = static_cast<std::uint32_t>(description.ChannelMapping);
    jack.colour = Colour{part(16), part(8), part(0)};
    jack.place = static_cast<JackPlace>(description.GenLocation);
    jack.geometry = static_cast<JackGeometry>(description.GeoLocation);
    jack.connection = static_cast<JackConnection>(description.ConnectionType);
    jack.port = static_cast<JackPort>(description.PortConnection);
    jack.isConnected = description.IsConnected != FALSE;
    return jack;
}

/// Follows the first connector of an endpoint to the jacks on its adapter.
class JackFinder
{
public:
    JackFinder(EndpointReading& reading, Judge& judge) : m_reading(reading), m_judge(judge) {}

    void find()
    {
        IDeviceTopology* topology = nullptr;
        const HRESULT result = interfacequery::activate(*m_reading.device, topology);
        const Operation operation = {"IMMDevice::Activate", "IDeviceTopology"};
        const bool isGiven =
            m_reading.content.state == State::unplugged
                ? m_judge.gives(result, topology, operation, {E_NOINTERFACE, AUDCLNT_E_DEVICE_INVALIDATED})
                : m_judge.gives(result, topology, operation, {E_NOINTERFACE});
        if (!isGiven)
            return;
        const Handle<IDeviceTopology> holder(topology);
        IConnector* connector = nullptr;
        // The code for a number without a connector: the endpoint has none.
        if (!m_judge.gives(topology->GetConnector(0, &connector), connector, {"IDeviceTopology::GetConnector"},
                           {E_INVALIDARG}))
            return;
        const Handle<IConnector> connectorHolder(connector);
        readAdapter(*connector);
        crossJoin(*connector);
    }

private:
    void readAdapter(IConnector& connector)
    {
        TaskText id(TaskText::NullText::skipped);
        if (m_judge.gives(connector.GetDeviceIdConnectedTo(id.put()), *id.put(), {"IConnector::GetDeviceIdConnectedTo"},
                          {E_NOTFOUND}))
            m_reading.adapter = utf8(id.get());
    }

    void crossJoin(IConnector& connector)
    {
        IConnector* jack = nullptr;
        if (!m_judge.gives(connector.GetConnectedTo(&jack), jack, {"IConnector::GetConnectedTo"}, {E_NOTFOUND}))
            return;
        const Handle<IConnector> jackHolder(jack);
        IPart* part = nullptr;
        const HRESULT result = interfacequery::query(*jack, part);
        if (!m_judge.gives(result, part, {"IConnector::QueryInterface", "IPart"}))
            return;
        const Handle<IPart> partHolder(part);
        readType(*part);
        readDescriptions(*part);
        for (Jack& each : m_reading.foundJacks)
            each.type = m_type;
    }

    /// The type is known before the descriptions, which may be missing.
    void readType(IPart& part)
    {
        GUID type = GUID_NULL;
        if (!m_judge.passes(part.GetSubType(&type), {"IPart::GetSubType"}))
            return;
        const Guid guid = guidOf(type);
        if (!guid.isNull())
            m_type = guid;
    }

    void readDescriptions(IPart& part)
    {
        void* object = nullptr;
        const HRESULT result = part.Activate(CLSCTX_INPROC_SERVER, IID_IKsJackDescription, &object);
        if (m_judge.gives(result, object, {"IPart::Activate", "IKsJackDescription"}, {E_NOINTERFACE, E_NOTFOUND}))
        {
            const Handle<IKsJackDescription> descriptions(static_cast<IKsJackDescription*>(object));
            readDescriptions(*descriptions);
        }
        if (m_reading.foundJacks.empty() && m_type)
            m_reading.foundJacks.emplace_back();
    }

    void readDescriptions(IKsJackDescription& descriptions)
    {
        const Operation operation = {"IKsJackDescription::GetJackCount"};
        UINT count = 0;
        if (!m_judge.passes(descriptions.GetJackCount(&count), operation))
            return;
        if (count > mostJacks)
        {
            m_judge.fails(invalidData, operation);
            return;
        }
        for (UINT index = 0; index < count; ++index)
        {
            KSJACK_DESCRIPTION description = {};
            if (m_judge.passes(descriptions.GetJackDescription(index, &description),
                               {"IKsJackDescription::GetJackDescription", nullptr, index}))
                m_reading.foundJacks.push_back(jackOf(description));
        }
    }

    EndpointReading& m_reading;
    Judge& m_judge;
    std::optional<Guid> m_type;
};
}

void readJacks(EndpointReading& reading)
{
    reading.jackProblems.clear();
    reading.foundJacks.clear();
    reading.adapter.reset();
    Judge judge(reading.content.id.text(), reading.jackProblems);
    if (canHaveHardware(reading))
        JackFinder(reading, judge).find();
    gatherJacks(reading);
    gatherProblems(reading);
}
}
