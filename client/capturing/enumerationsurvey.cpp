#include "client/capturing/devicesteps.h"
#include "client/capturing/missingdevices.h"
#include "client/capturing/volumeanswers.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

namespace sonavit::capturing
{
namespace
{
constexpr std::array<DWORD, 4> singleStates = {DEVICE_STATE_ACTIVE, DEVICE_STATE_DISABLED, DEVICE_STATE_NOTPRESENT,
                                               DEVICE_STATE_UNPLUGGED};

/// Records all endpoints in the order of their list.
class EndpointsSurvey
{
public:
    EndpointsSurvey(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder)
        : m_lists(enumerator, recorder),
          m_machine(machine),
          m_recorder(recorder)
    {
    }

    std::vector<OpenEndpoint> run(const Pause& pause)
    {
        const std::vector<OrderedDevice> devices = orderedDevices(m_lists, m_recorder);
        for (const OrderedDevice& each : devices)
        {
            if (each.item.id)
                m_ids.insert(*each.item.id);
        }
        for (const OrderedDevice& each : devices)
            open(each);
        for (std::size_t place = 0; place < m_open.size(); ++place)
        {
            if (m_open[place].device.get() != nullptr)
                survey(*m_open[place].device, m_machine.endpoints[place]);
            pause();
        }
        recordVolumes();
        return std::move(m_open);
    }

private:
    struct Volume
    {
        std::size_t place; ///< of the endpoint
        VolumeAnswers answers;
        std::optional<sim::Taper> taper;
    };

    /// Begins the record of an endpoint, under an invented id if it has none. An id that is listed twice counts once.
    void open(const OrderedDevice& device)
    {
        sim::Endpoint endpoint;
        endpoint.flow = device.flow;
        endpoint.id = device.item.id && !device.item.id->empty() ? *device.item.id : inventedId();
        if (!m_taken.insert(endpoint.id).second)
        {
            m_recorder.note("The list of all endpoints has the id " + endpoint.id + " twice.");
            return;
        }
        judgeId(device.item, endpoint.id);
        m_open.push_back({endpoint.id, device.item.device});
        m_machine.endpoints.push_back(std::move(endpoint));
    }

    /// An id that depends on the place alone.
    std::string inventedId() const
    {
        std::string id = "{0.0.0.00000000}.{captured-" + argument(m_open.size()) + "}";
        while (m_ids.count(id) != 0)
            id.insert(id.size() - 1, "x");
        return id;
    }

    void judgeId(const ListedDevice& item, const std::string& id)
    {
        const Call call = {"IMMDevice::GetId", id};
        if (item.device.get() == nullptr || !m_recorder.passes(item.idResult, call))
            return;
        if (!item.id)
            m_recorder.givesNull(call);
        else if (item.id->empty())
            m_recorder.note("An endpoint has an empty id; it is recorded as " + id + ".");
    }

    void survey(IMMDevice& device, sim::Endpoint& endpoint)
    {
        if (!surveyFlow(device, endpoint, m_recorder))
            endpoint.flow = listedFlow(endpoint);
        if (!surveyState(device, endpoint, m_recorder))
            endpoint.state = listedState(endpoint);
        else if ((endpoint.state & DEVICE_STATEMASK_ALL) == 0)
        {
            m_recorder.givesNull({"IMMDevice::GetState", endpoint.id}); // no list would contain it
            endpoint.state = listedState(endpoint);
        }
        surveyProperties(device, endpoint, m_recorder);
        const reading::Handle<IAudioClient> client = surveyInterfaces(device, endpoint, true, m_recorder);
        if (client.get() != nullptr)
            surveyStreams(*client, endpoint, m_recorder);
        if (std::optional<VolumeAnswers> answers = askVolume(device, endpoint.id, m_recorder))
        {
            const std::optional<sim::Taper> taper = shownTaper(*answers);
            const auto place = static_cast<std::size_t>(&endpoint - m_machine.endpoints.data());
            m_volumes.push_back({place, std::move(*answers), taper});
        }
    }

    /// As the lists of single flows say.
    EDataFlow listedFlow(const sim::Endpoint& endpoint)
    {
        for (const EDataFlow flow : {eRender, eCapture})
        {
            if (mayContain(m_lists.list(flow, DEVICE_STATEMASK_ALL), endpoint.id))
                return flow;
        }
        return endpoint.flow;
    }

    /// As the lists of single states say; active if they do not.
    std::uint32_t listedState(const sim::Endpoint& endpoint)
    {
        std::uint32_t states = 0;
        for (const DWORD state : singleStates)
        {
            if (mayContain(m_lists.list(eAll, state), endpoint.id))
                states |= static_cast<std::uint32_t>(state);
        }
        return states == 0 ? sim::stateActive : states;
    }

    /// An endpoint whose id is invented may be any without id.
    bool mayContain(const DeviceList& list, const std::string& id) const
    {
        return m_ids.count(id) != 0 ? list.contains(id) : list.hasUnknown();
    }

    /// Levels that do not tell the taper take that of another endpoint: the linear one, otherwise that of Windows.
    void recordVolumes()
    {
        const auto isLinear = [](const Volume& volume) { return volume.taper == sim::Taper::linear; };
        const bool hasLinear = std::any_of(m_volumes.begin(), m_volumes.end(), isLinear);
        const sim::Taper other = hasLinear ? sim::Taper::linear : sim::Taper::audio;
        for (const Volume& volume : m_volumes)
            m_machine.endpoints[volume.place].volume =
                volumeOf(volume.answers, volume.taper.value_or(other), m_recorder);
    }

    DeviceLists m_lists;
    sim::Machine& m_machine;
    Recorder& m_recorder;
    std::vector<OpenEndpoint> m_open;
    std::vector<Volume> m_volumes;
    std::unordered_set<std::string> m_ids;   ///< those that the platform gave
    std::unordered_set<std::string> m_taken; ///< those of records
};
}

std::vector<OpenEndpoint> surveyEndpoints(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder,
                                          const Pause& pause)
{
    return EndpointsSurvey(enumerator, machine, recorder).run(pause);
}
}
