#include "tests/support/questions.h"

#include "tests/support/questionsdevice.h"
#include "tests/support/questionshardware.h"
#include "tests/support/questionssystem.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

namespace support
{
namespace
{
constexpr DWORD masks[] = {1, 2, 4, 8, 15, 0, 16, 0x80000000};

std::string idOf(IMMDevice& device)
{
    LPWSTR id = nullptr;
    if (FAILED(device.GetId(&id)) || id == nullptr)
        return {};
    return bench::taken(id);
}

/// A to Z in lower case, the others as they are.
std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char each) { return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each; });
    return text;
}

std::string raised(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char each) { return each >= 'a' && each <= 'z' ? static_cast<char>(each - 'a' + 'A') : each; });
    return text;
}

/// One examination. Devices that are met wait until the question that has led to them is finished.
class Examiner
{
public:
    explicit Examiner(IMMDeviceEnumerator& enumerator) : m_enumerator(enumerator) {}

    Transcript ask()
    {
        askLists();
        askDefaults();
        askAllThatWasMet();
        askForDevices();
        askWaveDevices(m_notes);
        askInstances(m_notes, m_instances);
        return std::move(m_notes.transcript());
    }

private:
    struct MetDevice
    {
        std::string name;
        bench::Held<IMMDevice> device;
    };

    void askLists()
    {
        for (const EDataFlow flow : {eRender, eCapture, eAll, static_cast<EDataFlow>(eAll + 1)})
        {
            for (const DWORD mask : masks)
            {
                const std::string arguments = "endpoints(" + answerText(flow) + ", " + answerText(mask) + ")";
                bench::Held<IMMDeviceCollection> list;
                const HRESULT result = m_enumerator.EnumAudioEndpoints(flow, mask, list.put());
                if (m_notes.addObject("IMMDeviceEnumerator::EnumAudioEndpoints", arguments, result, list))
                    askList(arguments, *list.get());
            }
        }
    }

    void askList(const std::string& name, IMMDeviceCollection& list)
    {
        UINT count = 0;
        if (!m_notes.add("IMMDeviceCollection::GetCount", name, list.GetCount(&count), count))
            count = 0;
        for (UINT index = 0; index <= believable(count); ++index)
        {
            const std::string call = callText("IMMDeviceCollection::Item", answerText(index));
            bench::Held<IMMDevice> device;
            const HRESULT result = list.Item(index, device.put());
            meet(call, name, result, std::move(device));
        }
    }

    void askDefaults()
    {
        for (const EDataFlow flow : {eRender, eCapture, eAll})
        {
            for (const ERole role : {eConsole, eMultimedia, eCommunications, static_cast<ERole>(eCommunications + 1)})
            {
                const std::string call =
                    callText("IMMDeviceEnumerator::GetDefaultAudioEndpoint", answerText(flow), answerText(role));
                bench::Held<IMMDevice> device;
                const HRESULT result = m_enumerator.GetDefaultAudioEndpoint(flow, role, device.put());
                meet(call, "enumerator", result, std::move(device));
            }
        }
    }

    /// Notes a device, which is called by its id, otherwise by the way to it.
    void meet(const std::string& call, const std::string& object, HRESULT result, bench::Held<IMMDevice> device)
    {
        const std::string id = SUCCEEDED(result) && device.get() != nullptr ? idOf(*device.get()) : std::string();
        m_notes.add(call, object, result, device.get() == nullptr ? "null" : '"' + id + '"');
        if (FAILED(result) || device.get() == nullptr)
            return;
        const std::string name = id.empty() ? call + " of " + object : id;
        if (!id.empty())
            m_knownIds.push_back(id);
        if (m_notes.isNew("device " + name))
            m_metDevices.push_back({name, std::move(device)});
    }

    void open(const std::string& id)
    {
        if (!m_notes.isNew("question for " + id))
            return;
        m_knownIds.push_back(id);
        bench::Held<IMMDevice> device;
        const HRESULT result = m_enumerator.GetDevice(bench::Wide(id), device.put());
        meet(callText("IMMDeviceEnumerator::GetDevice", id), "enumerator", result, std::move(device));
    }

    /// Devices first: the topology of a device that cannot be opened is reached from the parts at its connectors.
    void askAllThatWasMet()
    {
        while (!m_metDevices.empty() || !m_elsewhere.parts.empty())
        {
            for (MetDevice& met : std::exchange(m_metDevices, {}))
                askMetDevice(met);
            if (m_metDevices.empty())
            {
                for (MetPart& met : std::exchange(m_elsewhere.parts, {}))
                    askMetPart(met);
            }
        }
    }

    void askMetDevice(const MetDevice& met)
    {
        const bench::Held<IDeviceTopology> topology = askDevice(m_notes, met.name, *met.device.get(), m_instances);
        if (topology.get() != nullptr)
            askGraph("topology of " + met.name, *topology.get());
    }

    /// The part has usually been visited in the topology of its device.
    void askMetPart(const MetPart& met)
    {
        if (!m_notes.isNew("met part " + met.id) || m_notes.knows("part " + met.id))
            return;
        bench::Held<IDeviceTopology> topology;
        if (SUCCEEDED(met.part->GetTopologyObject(topology.put())) && topology.get() != nullptr)
            askGraph("topology of part " + met.id, *topology.get());
        if (m_notes.isNew("part " + met.id))
            askPart(m_notes, met.id, met.part, m_elsewhere);
    }

    void askGraph(const std::string& name, IDeviceTopology& topology)
    {
        askTopology(m_notes, name, topology, m_elsewhere);
        for (const std::string& id : std::exchange(m_elsewhere.deviceIds, {}))
            open(id);
    }

    /// Each device by its id, in the id's other cases, and what is no device's id. Of several ids that differ only in
    /// case no further spelling is asked for: which of them it means is known to nothing but the platform.
    void askForDevices()
    {
        std::map<std::string, std::vector<std::string>> byLowerCase;
        for (const std::string& id : std::exchange(m_knownIds, {}))
        {
            std::vector<std::string>& spellings = byLowerCase[lowered(id)];
            if (std::find(spellings.begin(), spellings.end(), id) == spellings.end())
                spellings.push_back(id);
        }
        for (const auto& [inLowerCase, spellings] : byLowerCase)
        {
            for (const std::string& id : spellings)
                open(id);
            if (spellings.size() > 1)
                continue;
            open(inLowerCase);
            open(raised(inLowerCase));
        }
        for (const char* const unknown :
             {"{0.0.0.00000000}.{b5e3c9a2-3c44-4f2d-8e6b-0c617f0d9a04}",
              "{2}.\\\\?\\nothing#at_all#0#{6994ad04-93ef-11d0-a3cc-00a0c9223196}\\topo", "nothing", ""})
            open(unknown);
        bench::Held<IMMDevice> device;
        const HRESULT result = m_enumerator.GetDevice(nullptr, device.put());
        m_notes.addObject("IMMDeviceEnumerator::GetDevice(null)", "enumerator", result, device);
        askAllThatWasMet();
    }

    IMMDeviceEnumerator& m_enumerator;
    Notes m_notes;
    std::vector<std::string> m_knownIds;
    std::vector<MetDevice> m_metDevices;
    Elsewhere m_elsewhere;
    std::set<std::string> m_instances;
};
}

Transcript askEverything(IMMDeviceEnumerator& enumerator)
{
    return Examiner(enumerator).ask();
}

Examination examine(sim::Simulation& simulation)
{
    simulation.journal().clear();
    Examination examination;
    {
        const bench::Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
        examination.transcript = askEverything(*enumerator.get());
    }
    examination.journal = simulation.journal().entries();
    return examination;
}

Transcript transcriptOf(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.latency().clear();
    simulation.journal().record(false);
    const bench::Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    return askEverything(*enumerator.get());
}

std::string firstDifference(const std::vector<std::string>& expected, const std::vector<std::string>& actual)
{
    const auto [left, right] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    if (left == expected.end() && right == actual.end())
        return {};
    const auto shown = [](const std::vector<std::string>& lines, std::vector<std::string>::const_iterator line)
    { return line == lines.end() ? std::string("the end") : *line; };
    return "line " + std::to_string(left - expected.begin() + 1) + "\n  expected " + shown(expected, left) +
           "\n  actual   " + shown(actual, right) + "\n";
}
}
